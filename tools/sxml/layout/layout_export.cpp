#include "tools/sxml/layout/layout_export.h"

#include <array>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

namespace command {

namespace {

using Json = nlohmann::ordered_json;
using Row = records::Description::Row;

// A number, a text, or nothing where the item has none.
using Value = Json (*)(const Row& row);

Json text_or_nothing(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

bool is_table(const Row& row) {
    return !row.occurs.empty();
}

constexpr std::array<std::pair<const char*, Value>, 14> COLUMNS = {{
    {"level", [](const Row& row) { return Json(row.level); }},
    {"name", [](const Row& row) { return text_or_nothing(row.name); }},
    {"element", [](const Row& row) { return text_or_nothing(row.xml_name); }},
    {"path", [](const Row& row) { return text_or_nothing(row.path); }},
    {"offset", [](const Row& row) { return Json(row.offset); }},
    {"length", [](const Row& row) { return Json(row.length); }},
    {"picture", [](const Row& row) { return text_or_nothing(row.picture); }},
    {"usage", [](const Row& row) { return text_or_nothing(row.usage); }},
    {"min_occurs", [](const Row& row) { return is_table(row) ? Json(row.min_occurs) : Json(); }},
    {"max_occurs", [](const Row& row) { return is_table(row) ? Json(row.max_occurs) : Json(); }},
    {"stride", [](const Row& row) { return is_table(row) ? Json(row.stride) : Json(); }},
    {"depending_on", [](const Row& row) { return text_or_nothing(row.depending_on); }},
    {"redefines", [](const Row& row) { return text_or_nothing(row.redefines); }},
    {"condition", [](const Row& row) { return text_or_nothing(row.condition); }},
}};

// Names in a copybook need not be UTF-8.
std::string dumped(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + "\"";
}

std::string csv_cell(const Json& value) {
    if (value.is_null()) return {};
    return value.is_string() ? quoted(value.get<std::string>()) : value.dump();
}

}  // namespace

std::string layout_json(const records::Description& description) {
    std::string text =
        "{\n  \"name\": " + dumped(description.xfd().name) +
        ",\n  \"record_length\": " + std::to_string(description.record_length()) +
        ",\n  \"min_record_length\": " + std::to_string(description.min_record_length()) +
        ",\n  \"items\": [";
    const char* separator = "\n    ";
    for (const Row& row : description.rows()) {
        Json item = Json::object();
        for (const auto& [name, value] : COLUMNS) item[name] = value(row);
        text += separator + dumped(item);
        separator = ",\n    ";
    }
    return text + "\n  ]\n}\n";
}

std::string layout_csv(const records::Description& description) {
    std::string text;
    for (const auto& column : COLUMNS)
        text += (text.empty() ? "" : ",") + std::string(column.first);
    text += '\n';
    for (const Row& row : description.rows()) {
        std::string line;
        for (const auto& column : COLUMNS) {
            line += (&column == COLUMNS.data() ? "" : ",") + csv_cell(column.second(row));
        }
        text += line + '\n';
    }
    return text;
}

}  // namespace command
