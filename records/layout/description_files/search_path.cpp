#include "records/layout/description_files/search_path.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <system_error>

#include "host/config.h"
#include "platform/paths.h"
#include "records/description.h"

namespace records {
namespace {

namespace fs = std::filesystem;

std::string folded(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

// True for folders of a search path that are not there, or not for this user.
bool is_none(const std::error_code& error) {
    return !error || error == std::errc::no_such_file_or_directory ||
           error == std::errc::not_a_directory || error == std::errc::permission_denied;
}

[[noreturn]] void fail(const fs::path& folder, const std::error_code& error) {
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    throw fs::filesystem_error("folder cannot be read", folder, error);
}

// A folder's file of this name: exactly, or else in any letter case.
std::string file_in(const fs::path& folder, const std::string& name) {
    std::error_code error;
    const fs::path exact = folder / platform::path_of(name);
    if (fs::is_regular_file(exact, error)) return platform::name_of(exact);
    const std::string wanted = folded(name);
    std::string best;
    const fs::path place = folder.empty() ? fs::path(".") : folder;
    for (fs::directory_iterator at(place, error), end; !error && at != end; at.increment(error)) {
        const std::string candidate = platform::name_of(at->path().filename());
        std::error_code ignored;
        if (folded(candidate) != wanted || !at->is_regular_file(ignored)) continue;
        if (best.empty() || candidate < best) best = candidate;
    }
    if (!is_none(error)) fail(place, error);
    return best.empty() ? best : platform::name_of(folder / platform::path_of(best));
}

}  // namespace

std::vector<std::string> search_path() {
    const char* setting = host_config_string("SXML_PATH", nullptr);
    if (setting == nullptr || *setting == '\0') return {};
    std::vector<std::string> folders;
    const std::string text = setting;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end =
            std::min(text.find(platform::FOLDER_LIST_SEPARATOR, start), text.size());
        folders.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return folders;
}

std::string find_description_file(const std::string& data_file) {
    const fs::path path = platform::path_of(data_file);
    std::vector<std::string> names{platform::name_of(path.filename())};
    if (names[0].empty()) return {};
    if (path.has_extension()) names.push_back(platform::name_of(path.stem()));
    std::vector<std::string> folders = search_path();
    if (folders.empty()) {
        folders.push_back(platform::name_of(path.parent_path()));
        if (!folders[0].empty()) folders.emplace_back();
    }
    for (const std::string& folder : folders) {
        for (const char* suffix : {".xfd", ".cpy", ".cbl"}) {
            for (const std::string& name : names) {
                std::string found = file_in(platform::path_of(folder), name + suffix);
                if (!found.empty()) return found;
            }
        }
    }
    return {};
}

}  // namespace records
