// Texts and error numbers between the rest of the program and Windows.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace platform {

// UTF-8 as Windows takes it, and back. Bytes that are not UTF-8 become U+FFFD.
std::wstring wide(std::string_view text);
std::string narrow(std::wstring_view text);

// The name from the drive on; as it was when Windows does not know.
std::wstring absolute(const std::wstring& name);

// The name of a file: one that is too long for Windows's usual limit is made absolute and marked as
// one without a limit.
std::wstring wide_file_name(const std::string& name);

// The number that errno has for a failure; the last one of this thread by default.
int error_number(DWORD error = GetLastError());

// True for the names that stand for devices in every folder, NUL and CON for example.
bool is_device_name(const std::string& name);

}  // namespace platform
