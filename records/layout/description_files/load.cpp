#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <system_error>
#include <utility>

#include "platform/paths.h"
#include "records/description.h"

namespace records {
namespace {

// Larger files are not description files; reading stops there.
constexpr std::uintmax_t MAX_FILE_SIZE = std::uintmax_t{256} * 1024 * 1024;

std::optional<std::string> contents(const std::string& file, Diagnostics& diagnostics) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(platform::path_of(file), error);
    if (!error && size > MAX_FILE_SIZE) {
        diagnostics.error({}, file + " is too large for a record description");
        return std::nullopt;
    }
    std::ifstream stream(platform::path_of(file), std::ios::binary);
    std::ostringstream text;
    if (!error && size == 0) return std::string();
    if (error || !stream || !(text << stream.rdbuf()).good()) {
        const std::string why = error ? error.message() : std::strerror(errno);
        diagnostics.error({}, file + " cannot be read: " + why);
        return std::nullopt;
    }
    return std::move(text).str();
}

bool has_suffix(const std::string& file, std::string_view suffix) {
    std::string found = platform::name_of(platform::path_of(file).extension());
    for (char& c : found) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return found == suffix;
}

// A description file starts with a brace, which no COBOL source does. Nothing, and told, when the
// file cannot be read.
std::optional<bool> looks_like_json(const std::string& file, Diagnostics& diagnostics) {
    errno = 0;
    std::ifstream stream(platform::path_of(file), std::ios::binary);
    char c = 0;
    stream >> c;
    if (stream.is_open() && !stream.bad()) return c == '{';
    const std::error_code error(errno != 0 ? errno : EIO, std::generic_category());
    std::error_code ignored;
    const bool is_folder = std::filesystem::is_directory(platform::path_of(file), ignored);
    Place place;
    place.file = std::make_shared<const std::string>(file);
    diagnostics.error(std::move(place),
                      "cannot read the file: " + (is_folder ? "it is a folder" : error.message()));
    return std::nullopt;
}

std::optional<Description> compile(std::optional<RecordSource> source,
                                   const CopybookOptions& copybook, const LayoutOptions& layout,
                                   Diagnostics& diagnostics) {
    if (source) complete_source(*source, copybook, diagnostics);
    if (!source || diagnostics.has_errors()) return std::nullopt;
    return compile_description(*source, layout, diagnostics);
}

std::optional<Description> from_json(std::string_view text, const std::string& file,
                                     const CopybookOptions& copybook, const LayoutOptions& layout,
                                     Diagnostics& diagnostics) {
    if (!copybook.more_files.empty() || !copybook.directives.empty()) {
        diagnostics.error({}, file +
                                  " is a description file; conditions, names, hidden items and "
                                  "more copybooks are for making one (sxml compile)");
        return std::nullopt;
    }
    if (!copybook.for_sources.empty()) {
        std::string names;
        for (const std::string& name : copybook.for_sources) {
            names += (names.empty() ? "" : ", ") + name;
        }
        diagnostics.error({}, file + " is a description file, whose layout is settled; " + names +
                                  ": for making one (sxml compile)");
        return std::nullopt;
    }
    return description_from_json(text, file, layout, diagnostics);
}

}  // namespace

std::optional<Description> load_description(const std::string& file,
                                            const CopybookOptions& copybook,
                                            const LayoutOptions& layout, Diagnostics& diagnostics) {
    diagnostics.add_file(file);
    const bool is_source =
        has_suffix(file, ".cpy") || has_suffix(file, ".cbl") || has_suffix(file, ".cob");
    std::optional<bool> is_json = has_suffix(file, ".xfd");
    if (!*is_json && !is_source) is_json = looks_like_json(file, diagnostics);
    if (!is_json) return std::nullopt;
    if (*is_json) {
        const std::optional<std::string> text = contents(file, diagnostics);
        if (!text) return std::nullopt;
        return from_json(*text, file, copybook, layout, diagnostics);
    }
    return compile(parse_copybook_file(file, copybook, diagnostics), copybook, layout, diagnostics);
}

std::optional<Description> description_from_text(std::string_view text, const std::string& name,
                                                 const CopybookOptions& copybook,
                                                 const LayoutOptions& layout,
                                                 Diagnostics& diagnostics) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start != std::string_view::npos && text[start] == '{') {
        return from_json(text, name, copybook, layout, diagnostics);
    }
    return compile(parse_copybook_text(text, name, copybook, diagnostics), copybook, layout,
                   diagnostics);
}

}  // namespace records
