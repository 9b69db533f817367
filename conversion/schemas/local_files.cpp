#include "conversion/schemas/local_files.h"

#include <cerrno>
#include <cstdint>
#include <string_view>

#include "conversion/documents/document_source.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace conversion {

namespace {

constexpr std::uint64_t MOST_BYTES = 64U * 1024U * 1024U;

}  // namespace

std::string file_at(const std::string& location, const std::string& from) {
    constexpr std::string_view SCHEME = "file://";
    std::string name = location.starts_with(SCHEME) ? location.substr(SCHEME.size()) : location;
    const std::string folder = platform::folder_of(from);
    if (platform::path_of(name).has_root_directory() || folder == ".") return name;
    return folder + (folder.ends_with('/') ? "" : "/") + name;
}

Done check_part(const std::string& file) {
    const auto state = platform::state_of(file);
    if (!state) return system_problem(file, errno);
    if (state->kind != platform::FileKind::regular) {
        return Problem{Cause::not_permitted, {.file = file}, "not a regular file", ""};
    }
    if (state->size > MOST_BYTES) {
        return Problem{Cause::document, {.file = file}, "larger than 64 MiB", ""};
    }
    return {};
}

Result<std::string> local_file(const std::string& location, const std::string& from) {
    if (is_url(location) || is_url(from))
        return Problem{Cause::not_found, {}, "it is not a local file", ""};
    std::string file = file_at(location, from);
    if (Done problem = check_part(file)) return *std::move(problem);
    return file;
}

}  // namespace conversion
