#include "records/source/text/copy_library.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <new>
#include <system_error>
#include <utility>

#include "platform/paths.h"
#include "records/source/text/text_case.h"

namespace records {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t MAX_FILE_SIZE = std::size_t{64} << 20;
constexpr std::size_t CHUNK = std::size_t{64} << 10;
constexpr std::string_view SUFFIXES[] = {"", ".cpy", ".cbl", ".cob", ".copy"};

std::string join(const std::string& folder, const std::string& name) {
    if (folder.empty()) return name;
    return folder.back() == '/' ? folder + name : folder + "/" + name;
}

}  // namespace

std::optional<std::string> read_text_file(const std::string& path, std::string& why) {
    std::error_code error;
    if (fs::is_directory(platform::path_of(path), error)) {
        why = "it is a folder";
        return std::nullopt;
    }
    errno = 0;
    std::ifstream in(platform::path_of(path), std::ios::binary);
    if (!in) {
        why = std::generic_category().message(errno != 0 ? errno : EIO);
        return std::nullopt;
    }
    std::string text;
    while (in) {
        const std::size_t size = text.size();
        if (size > MAX_FILE_SIZE) {
            why = "it is larger than 64 MiB";
            return std::nullopt;
        }
        text.resize(size + CHUNK);
        in.read(text.data() + size, CHUNK);
        text.resize(size + static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad()) {
        why = std::generic_category().message(errno != 0 ? errno : EIO);
        return std::nullopt;
    }
    return text;
}

std::string folder_of(const std::string& path) {
    return platform::name_of(platform::path_of(path).parent_path());
}

CopyLibrary::CopyLibrary(std::vector<std::string> folders, int tab_width)
    : folders_(std::move(folders)), tab_width_(tab_width) {}

// A folder that is not there is none that had to be read.
void CopyLibrary::note_unread(const std::string& folder, std::error_code error) {
    if (!error || error == std::errc::no_such_file_or_directory ||
        error == std::errc::not_a_directory) {
        return;
    }
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    unread_folders_ +=
        "; '" + (folder.empty() ? "." : folder) + "' cannot be read: " + error.message();
}

const CopyLibrary::Listing& CopyLibrary::list(const std::string& folder) {
    const auto [entry, is_new] = listings_.try_emplace(folder);
    if (!is_new) return entry->second;
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator files(platform::path_of(folder.empty() ? "." : folder), error);
    for (; !error && files != fs::directory_iterator(); files.increment(error)) {
        names.push_back(platform::name_of(files->path().filename()));
    }
    note_unread(folder, error);
    // Of names that differ in case only, the first in byte order is taken.
    std::sort(names.begin(), names.end());
    for (std::string& name : names) entry->second.try_emplace(to_lower(name), std::move(name));
    return entry->second;
}

// An entry of a folder, spelled exactly or in any letter case. Devices and pipes are ignored: a
// COPY must not wait for one.
std::optional<std::string> CopyLibrary::find_entry(const std::string& folder,
                                                   const std::string& name, bool want_folder) {
    const auto is_wanted = [want_folder](const std::string& path) {
        std::error_code error;
        return want_folder ? fs::is_directory(platform::path_of(path), error)
                           : fs::is_regular_file(platform::path_of(path), error);
    };
    std::string exact = join(folder, name);
    if (is_wanted(exact)) return exact;
    const Listing& listing = list(folder);
    const auto found = listing.find(to_lower(name));
    if (found == listing.end()) return std::nullopt;
    std::string path = join(folder, found->second);
    if (is_wanted(path)) return path;
    return std::nullopt;
}

std::optional<std::string> CopyLibrary::find_in_folder(const std::string& folder,
                                                       const std::string& name) {
    const std::string subfolder = folder_of(name);
    const std::string place = subfolder.empty() ? folder : join(folder, subfolder);
    const std::string file = name.substr(name.rfind('/') + 1);
    if (file.empty()) return std::nullopt;
    for (const std::string_view suffix : SUFFIXES) {
        if (auto path = find_entry(place, file + std::string(suffix), false)) return path;
    }
    return std::nullopt;
}

std::optional<std::string> CopyLibrary::find(const std::string& name, const std::string& library,
                                             const std::string& first_folder) {
    const auto [entry, is_new] = found_.try_emplace({name, library, first_folder});
    if (is_new) entry->second = look_up(name, library, first_folder);
    return entry->second;
}

std::optional<std::string> CopyLibrary::look_up(const std::string& name, const std::string& library,
                                                const std::string& first_folder) {
    std::string path = name;
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.find('\0') != std::string::npos) return std::nullopt;
    if (platform::path_of(path).has_root_directory())
        return find_in_folder(folder_of(path), path.substr(path.rfind('/') + 1));
    std::vector<std::string> places{first_folder};
    places.insert(places.end(), folders_.begin(), folders_.end());
    if (!library.empty()) {
        for (const std::string& place : places) {
            const auto folder = find_entry(place, library, true);
            if (!folder) continue;
            if (auto found = find_in_folder(*folder, path)) return found;
        }
    }
    for (const std::string& place : places) {
        if (auto found = find_in_folder(place, path)) return found;
    }
    return std::nullopt;
}

std::shared_ptr<const SourceFile> CopyLibrary::read(const std::string& path, std::string& why) {
    const auto found = files_.find(path);
    if (found != files_.end()) return found->second;
    auto text = read_text_file(path, why);
    if (!text) return nullptr;
    auto file = make_source_file(path, std::move(*text), tab_width_);
    files_.emplace(path, file);
    return file;
}

}  // namespace records
