#include "gnucobol/layout.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "gnucobol/file_name.h"
#include "host/config.h"

namespace gnucobol {

namespace {

namespace fs = std::filesystem;

// A source of a description, and which of its files is meant (empty: to be found out).
struct LayoutSource {
    std::string file;
    std::string fd;
};

std::vector<std::string> search_path() {
    std::vector<std::string> folders;
    const char* setting = host_config_string("SXML_PATH", nullptr);
    std::istringstream text(setting != nullptr ? setting : "");
    for (std::string folder; std::getline(text, folder, ':');) folders.push_back(folder);
    return folders;
}

// The file as named, or in a folder of SXML_PATH; empty when it is in none.
std::string find_file(const std::string& name) {
    std::error_code error;
    if (fs::is_regular_file(name, error)) return name;
    for (const std::string& folder : search_path()) {
        const fs::path place = fs::path(folder) / name;
        if (fs::is_regular_file(place, error)) return place.string();
    }
    return {};
}

std::optional<LayoutSource> named_by_setting(const LayoutRequest& request) {
    std::string setting = "SXML_LAYOUT_" + stem_of(request.path);
    for (char& c : setting) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    }
    const char* value = host_config_string(setting.c_str(), nullptr);
    if (value == nullptr || *value == '\0') return std::nullopt;
    LayoutSource source{find_file(value), {}};
    const std::string text = value;
    const std::size_t colon = text.rfind(':');
    if (source.file.empty() && colon != std::string::npos) {
        source = {find_file(text.substr(0, colon)), text.substr(colon + 1)};
    }
    if (source.file.empty())
        throw std::runtime_error(setting + " names " + text + ", which is no file");
    return source;
}

LayoutSource find_source(const LayoutRequest& request) {
    if (auto source = named_by_setting(request)) return *source;
    std::string file = records::find_description_file(request.path);
    if (file.empty() && !request.source.empty()) {
        file = find_file(fs::path(request.source).filename().string());
        if (file.empty()) file = find_file(request.source);
    }
    if (file.empty()) {
        const std::string stem = stem_of(request.path);
        throw std::runtime_error("there is no record description: " + stem + ".xfd, " + stem +
                                 ".cpy or " + stem + ".cbl on SXML_PATH or beside the file, " +
                                 "SXML_LAYOUT_" + stem + ", or the program's source");
    }
    return {file, {}};
}

// The first message of a severity; empty when there is none.
std::string first_message(const std::string& file, const records::Diagnostics& diagnostics,
                          records::Severity severity) {
    for (const records::Diagnostic& diagnostic : diagnostics.all()) {
        if (diagnostic.severity != severity) continue;
        const records::Place& place = diagnostic.place;
        if (!place.file || place.line == 0) return file + ": " + diagnostic.message;
        return *place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) +
               ": " + diagnostic.message;
    }
    return {};
}

// Whether every record of the source has elements.
bool is_whole(const records::Description& description) {
    const auto& rows = description.rows();
    return std::none_of(rows.begin(), rows.end(), [](const records::Description::Row& row) {
        return row.level == 1 && row.xml_name.empty();
    });
}

std::optional<records::Description> load(const LayoutSource& source, const std::string& program,
                                         records::Diagnostics& diagnostics) {
    records::CopybookOptions copybook;
    copybook.copy_path = search_path();
    copybook.fd = source.fd;
    copybook.program = program;
    records::LayoutOptions layout;
    layout.name_case = records::configured_name_case();
    auto description = records::load_description(source.file, copybook, layout, diagnostics);
    if (diagnostics.has_errors()) description.reset();
    return description;
}

// A file's name as a COBOL name: orders_2026 can only be ORDERS-2026.
std::string cobol_name(std::string stem) {
    std::replace(stem.begin(), stem.end(), '_', '-');
    return stem;
}

// The names under which a description may be found in a source, best first; empty for the only one.
std::vector<std::string> possible_names(const LayoutSource& source, const LayoutRequest& request) {
    if (!source.fd.empty()) return {source.fd};
    std::vector<std::string> names;
    if (!request.fd.empty()) names.push_back(request.fd);
    names.push_back(cobol_name(stem_of(request.path)));
    names.emplace_back();
    return names;
}

}  // namespace

FileLayout find_layout(const LayoutRequest& request) {
    LayoutSource source = find_source(request);
    std::string error;
    for (const std::string& name : possible_names(source, request)) {
        source.fd = name;
        records::Diagnostics diagnostics;
        auto description = load(source, request.program, diagnostics);
        if (description && description->record_length() > 0) {
            const bool whole = is_whole(*description);
            return {std::move(*description), source.file,
                    first_message(source.file, diagnostics, records::Severity::warning), whole};
        }
        error = first_message(source.file, diagnostics, records::Severity::error);
        if (error.empty()) error = source.file + ": it describes no record";
    }
    throw std::runtime_error(error);
}

}  // namespace gnucobol
