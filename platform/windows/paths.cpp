#include "platform/paths.h"

#include "platform/windows/system_texts.h"

namespace platform {

namespace {

constexpr std::string_view UNLIMITED = "\\\\?\\";
constexpr std::string_view SHARE = "UNC\\";

}  // namespace

const char FOLDER_LIST_SEPARATOR = ';';

std::filesystem::path path_of(const std::string& name) {
    return wide_file_name(name);
}

std::string name_of(const std::filesystem::path& path) {
    std::string name = narrow(path.native());
    if (!name.starts_with(UNLIMITED)) return name;
    name.erase(0, UNLIMITED.size());
    return name.starts_with(SHARE) ? "\\\\" + name.substr(SHARE.size()) : name;
}

// The standard library takes names that are marked as unlimited for relative ones.
std::string absolute_name(const std::string& name) {
    return narrow(absolute(wide(name)));
}

std::string folder_of(const std::string& name) {
    const std::string folder = narrow(std::filesystem::path(wide(name)).parent_path().native());
    return folder.empty() ? "." : folder;
}

std::string file_name_of(const std::string& name) {
    return narrow(std::filesystem::path(wide(name)).filename().native());
}

}  // namespace platform
