#include "platform/paths.h"

namespace platform {

const char FOLDER_LIST_SEPARATOR = ':';

std::filesystem::path path_of(const std::string& name) {
    return name;
}

std::string name_of(const std::filesystem::path& path) {
    return path.string();
}

std::string absolute_name(const std::string& name) {
    return std::filesystem::absolute(name).string();
}

std::string folder_of(const std::string& name) {
    const std::string folder = std::filesystem::path(name).parent_path().string();
    return folder.empty() ? "." : folder;
}

std::string file_name_of(const std::string& name) {
    return std::filesystem::path(name).filename().string();
}

}  // namespace platform
