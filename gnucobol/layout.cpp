#include "gnucobol/layout.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "gnucobol/file_name.h"
#include "gnucobol/select_clause.h"
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
    if (file.empty() && !request.program.empty()) {
        file = find_file(fs::path(request.program).filename().string());
        if (file.empty()) file = find_file(request.program);
    }
    if (file.empty()) {
        const std::string stem = stem_of(request.path);
        throw std::runtime_error("there is no record description: " + stem + ".xfd, " + stem +
                                 ".cpy or " + stem + ".cbl on SXML_PATH or beside the file, " +
                                 "SXML_LAYOUT_" + stem + ", or the program's source");
    }
    return {file, {}};
}

records::NameCase configured_name_case() {
    switch (host_config_number("4GL_COLUMN_CASE", 0)) {
        case 1:
            return records::NameCase::upper;
        case 2:
            return records::NameCase::unchanged;
        default:
            return records::NameCase::lower;
    }
}

std::string first_error(const records::Diagnostics& diagnostics) {
    for (const records::Diagnostic& diagnostic : diagnostics.all()) {
        if (diagnostic.severity != records::Severity::error) continue;
        const records::Place& place = diagnostic.place;
        if (!place.file) return diagnostic.message;
        return *place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) +
               ": " + diagnostic.message;
    }
    return "it describes no record";
}

std::optional<records::Description> load(const LayoutSource& source,
                                         records::Diagnostics& diagnostics) {
    records::CopybookOptions copybook;
    copybook.copy_path = search_path();
    copybook.fd = source.fd;
    records::LayoutOptions layout;
    layout.name_case = configured_name_case();
    auto description = records::load_description(source.file, copybook, layout, diagnostics);
    if (diagnostics.has_errors()) description.reset();
    return description;
}

std::string contents(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return std::move(text).str();
}

// A file's name as a COBOL name: orders_2026 can only be ORDERS-2026.
bool is_called_like(const std::string& cobol_name, std::string file_stem) {
    std::replace(file_stem.begin(), file_stem.end(), '_', '-');
    return strcasecmp(cobol_name.c_str(), file_stem.c_str()) == 0;
}

// The only file of the program whose records are as long as those that it reads and writes.
std::string file_of_length(const LayoutSource& program, const std::vector<SelectClause>& files,
                           std::uint32_t length) {
    std::string found;
    for (const SelectClause& clause : files) {
        records::Diagnostics ignored;
        const auto description = load({program.file, clause.file}, ignored);
        if (!description || description->record_length() != static_cast<std::int64_t>(length))
            continue;
        if (!found.empty()) return {};
        found = clause.file;
    }
    return found;
}

std::string choose_file(const LayoutSource& source, const LayoutRequest& request) {
    const std::vector<SelectClause> files = select_clauses(contents(source.file));
    if (files.size() < 2) return {};
    for (const SelectClause& clause : files) {
        if (strcasecmp(clause.target.c_str(), request.assigned.c_str()) == 0) return clause.file;
    }
    for (const SelectClause& clause : files) {
        if (is_called_like(clause.file, stem_of(request.path))) return clause.file;
    }
    return file_of_length(source, files, request.record_length);
}

}  // namespace

FileLayout find_layout(const LayoutRequest& request) {
    LayoutSource source = find_source(request);
    if (source.fd.empty() && !source.file.ends_with(".xfd")) {
        source.fd = choose_file(source, request);
    }
    records::Diagnostics diagnostics;
    auto description = load(source, diagnostics);
    if (!description || description->record_length() <= 0) {
        throw std::runtime_error(source.file + ": " + first_error(diagnostics));
    }
    return {std::move(*description), source.file};
}

}  // namespace gnucobol
