// What differs between operating systems, for tests.
#pragma once

#include <string>

// Sets a variable of the process's environment; null takes it away.
void set_variable(const char* name, const char* value);
// Whether a judge, xmllint, is content. Where it is not there, it is: it judges the same on Linux.
bool is_judged_well(const std::string& command);
// What GoogleTest captures when `text` goes to a standard stream: on Windows it reads CR LF as LF.
std::string as_captured(std::string text);
// The file of the module that was built.
std::string built_module();
