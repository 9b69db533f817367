#include "gnucobol/layout.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <optional>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "gnucobol/file_name.h"
#include "gnucobol/trusted_settings.h"
#include "records/source/text/text_case.h"

namespace gnucobol {

namespace {

namespace fs = std::filesystem;

// A source of a description, and which of its files is meant (empty: the only one).
struct LayoutSource {
    std::string file;
    std::string fd;
};

bool is_file(const std::string& name) {
    std::error_code error;
    return fs::is_regular_file(name, error);
}

// The file as named, or in a folder of SXML_PATH; empty when it is in none.
std::string find_file(const std::string& name) {
    if (is_file(name)) return name;
    std::istringstream folders(trusted_setting("SXML_PATH"));
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string place = (fs::path(folder) / name).string();
        if (is_file(place)) return place;
    }
    return {};
}

std::optional<LayoutSource> named_by_setting(const std::string& path) {
    std::string setting = "SXML_LAYOUT_" + stem_of(path);
    for (char& c : setting) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    }
    const std::string value = trusted_setting(setting.c_str());
    if (value.empty()) return std::nullopt;
    LayoutSource source{find_file(value), {}};
    const std::size_t colon = value.rfind(':');
    if (source.file.empty() && colon != std::string::npos) {
        source = {find_file(value.substr(0, colon)), value.substr(colon + 1)};
    }
    if (!source.file.empty()) return source;
    throw std::runtime_error(setting + " names " + value + ", which is not a file");
}

std::optional<LayoutSource> beside_document(const std::string& path) {
    const fs::path beside = fs::path(path).replace_extension(".xfd");
    if (!is_file(beside.string())) return std::nullopt;
    return LayoutSource{beside.string(), {}};
}

// The first error, in a line.
std::string first_error(const std::string& file, const records::Diagnostics& diagnostics) {
    for (const records::Diagnostic& diagnostic : diagnostics.all()) {
        if (diagnostic.severity != records::Severity::error) continue;
        const records::Place& place = diagnostic.place;
        if (!place.file || place.line == 0) return file + ": " + diagnostic.message;
        return *place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) +
               ": " + diagnostic.message;
    }
    return file + ": it describes no record";
}

records::LayoutOptions layout_options() {
    records::LayoutOptions options;
    options.name_case = records::configured_name_case();
    options.every_record = true;
    options.moving_data = records::MovingData::fixed;
    return options;
}

records::Description load(const LayoutSource& source) {
    records::CopybookOptions copybook;
    copybook.fd = source.fd;
    records::Diagnostics diagnostics;
    auto description =
        records::load_description(source.file, copybook, layout_options(), diagnostics);
    const bool is_usable = description && !diagnostics.has_errors();
    if (!is_usable || description->record_length() <= 0) {
        throw std::runtime_error(first_error(source.file, diagnostics));
    }
    return std::move(*description);
}

records::Description bound_description(const sxml_cob_file& bound) {
    records::Diagnostics diagnostics;
    auto description = records::description_from_json(bound.description, bound.name,
                                                      layout_options(), diagnostics);
    if (!description) throw std::runtime_error(first_error(bound.name, diagnostics));
    return std::move(*description);
}

// Layouts come in the order of the records; those that are not described come last.
std::vector<FileLayout::Record> records_of(const records::Description& description,
                                           std::string_view plain_records) {
    std::vector<FileLayout::Record> records;
    for (const records::Description::Row& row : description.rows()) {
        if (row.level != 1) continue;
        const std::string name = records::to_upper(row.name);
        const bool is_plain =
            (" " + std::string(plain_records)).find(" " + name + " ") != std::string::npos;
        records.push_back({name, !is_plain});
    }
    return records;
}

const sxml_cob_source* find_source(const Where& where) {
    for (const sxml_cob_source* source = where.sources; source->name != nullptr; ++source) {
        if (std::strcmp(source->name, where.source) == 0) return source;
    }
    return nullptr;
}

const sxml_cob_file* find_file_of(const sxml_cob_source& source, std::string_view program,
                                  const std::string& name) {
    const std::span files(source.files, source.file_count);
    const auto found = std::find_if(files.begin(), files.end(), [&](const sxml_cob_file& file) {
        return program == file.program && name == file.name;
    });
    return found == files.end() ? nullptr : &*found;
}

std::string current_program() {
    const cob_global* const runtime = cob_get_global_ptr();
    if (runtime == nullptr || runtime->cob_current_module == nullptr) return {};
    return records::to_upper(runtime->cob_current_module->module_name);
}

}  // namespace

const sxml_cob_file* find_bound_file(const Where& where, const cob_file& file) {
    const sxml_cob_source* const source = find_source(where);
    if (source == nullptr || file.select_name == nullptr) return nullptr;
    const std::string name = records::to_upper(file.select_name);
    const std::string program = current_program();
    // A file may be one of a program around this one (GLOBAL).
    const std::span programs(source->programs, source->program_count);
    for (int at = static_cast<int>(programs.size()) - 1; at >= 0; --at) {
        if (program != programs[static_cast<std::size_t>(at)].name) continue;
        for (int around = at; around >= 0;
             around = programs[static_cast<std::size_t>(around)].container) {
            const char* const its_name = programs[static_cast<std::size_t>(around)].name;
            if (const auto* const found = find_file_of(*source, its_name, name)) return found;
        }
    }
    return nullptr;
}

FileLayout find_layout(const std::string& path, const sxml_cob_file& bound) {
    std::optional<LayoutSource> source = named_by_setting(path);
    if (!source) source = beside_document(path);
    FileLayout layout{source ? load(*source) : bound_description(bound),
                      source ? source->file : std::string("FD ") + bound.name,
                      !source,
                      {},
                      bound.element,
                      bound.variable_record};
    layout.records = records_of(layout.description, bound.plain_records);
    return layout;
}

std::string record_written(const Where& where, const char* expression, const FileLayout& layout) {
    if (std::strncmp(expression, "COB_SET_FLD", 11) == 0) return layout.variable_record;
    const sxml_cob_source* const source = find_source(where);
    if (source == nullptr) return {};
    for (const sxml_cob_record& record : std::span(source->records, source->record_count)) {
        if (std::strcmp(record.expression, expression) == 0) return record.name;
    }
    return {};
}

}  // namespace gnucobol
