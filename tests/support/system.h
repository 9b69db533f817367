// What differs between operating systems, for tests.
#pragma once

#include <string>

// Sets a variable of the process's environment; null takes it away.
void set_variable(const char* name, const char* value);
// The file of the module that was built.
std::string built_module();
