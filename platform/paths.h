// Names of files: UTF-8 on systems whose own names are not bytes, the system's bytes elsewhere.
#pragma once

#include <filesystem>
#include <string>

namespace platform {

// Separates the folders in a list of folders.
extern const char FOLDER_LIST_SEPARATOR;

// A name as the standard library's functions take it, and back.
std::filesystem::path path_of(const std::string& name);
std::string name_of(const std::filesystem::path& path);

// The name from the root of the file system on. Throws std::filesystem::filesystem_error when the
// current folder cannot be told.
std::string absolute_name(const std::string& name);

// The folder that a name leads through, "." when it has none.
std::string folder_of(const std::string& name);
// The last part of a name.
std::string file_name_of(const std::string& name);

}  // namespace platform
