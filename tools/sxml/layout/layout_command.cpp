// sxml layout: shows a record layout as a table, or as data for other programs.

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <memory>

#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/layout/layout_export.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/setting_options.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/reports/text_table.h"

namespace command {

namespace {

using Row = records::Description::Row;

struct Column {
    const char* title;
    bool right_aligned;
    bool shown_when_empty;
    std::function<std::string(const Row&)> text;
};

std::string level_text(int level) {
    return (level < 10 ? "0" : "") + std::to_string(level);
}

// The COBOL name, indented by depth so that groups are distinguished from their fields.
std::string indented_name(const Row& row) {
    return std::string(static_cast<std::size_t>(row.depth) * 2, ' ') +
           (row.name.empty() ? "FILLER" : row.name);
}

std::vector<Column> columns() {
    return {
        {"Offset", true, true, [](const Row& row) { return std::to_string(row.offset); }},
        {"Length", true, true, [](const Row& row) { return std::to_string(row.length); }},
        {"Level", false, true, [](const Row& row) { return level_text(row.level); }},
        {"Name", false, true, [](const Row& row) { return row.name; }},
        {"Element", false, true, [](const Row& row) { return row.xml_name; }},
        {"Picture", false, true, [](const Row& row) { return row.picture; }},
        {"Usage", false, true, [](const Row& row) { return row.usage; }},
        {"Occurs", false, true, [](const Row& row) { return row.occurs; }},
        {"Redefines", false, false, [](const Row& row) { return row.redefines; }},
        {"Condition", false, true, [](const Row& row) { return row.condition; }},
    };
}

// Leaves a condition out where the enclosing group has the same one. A group without one of its own
// has that of the group around it.
void thin_out_conditions(std::vector<Row>& rows) {
    std::vector<std::string> enclosing;  // of each open group
    for (Row& row : rows) {
        enclosing.resize(static_cast<std::size_t>(row.depth));
        std::string condition = row.condition;
        const bool repeated = !enclosing.empty() && enclosing.back() == condition;
        if (repeated) row.condition.clear();
        if (condition.empty() && !enclosing.empty()) condition = enclosing.back();
        enclosing.push_back(std::move(condition));
    }
}

std::string layout_table(const records::Description& description) {
    std::vector<Row> rows = description.rows();
    thin_out_conditions(rows);
    for (Row& row : rows) row.name = indented_name(row);
    std::vector<Column> shown;
    Table cells(rows.size() + 1);
    for (Column& column : columns()) {
        const bool used = std::any_of(rows.begin(), rows.end(),
                                      [&](const Row& row) { return !column.text(row).empty(); });
        if (!used && !column.shown_when_empty) continue;
        cells[0].emplace_back(column.title);
        for (std::size_t i = 0; i < rows.size(); ++i) cells[i + 1].push_back(column.text(rows[i]));
        shown.push_back(std::move(column));
    }
    std::vector<bool> right_aligned;
    for (const Column& column : shown) right_aligned.push_back(column.right_aligned);
    return table_text(cells, right_aligned);
}

std::string length_line(const records::Description& description) {
    const std::string longest = std::to_string(description.record_length());
    const std::string shortest = std::to_string(description.min_record_length());
    const std::string range = shortest == longest ? longest : shortest + " to " + longest;
    return "\nRecord length: " + range + " bytes\n";
}

struct ShowOptions {
    LayoutOptions layout;
    bool is_json = false;
    bool is_csv = false;
};

std::string shown(const records::Description& description, const ShowOptions& options) {
    if (options.is_json) return layout_json(description);
    if (options.is_csv) return layout_csv(description);
    return layout_table(description) + length_line(description);
}

void show_layout(const ShowOptions& options) {
    RunFiles files;
    load_module();  // it declares the settings
    apply_settings(options.layout.settings);
    files.writes("-");
    const records::Description description =
        LayoutSource(options.layout).load(records::RecordEncoding::ascii, files);
    files.check();
    write_output("-", shown(description, options));
}

}  // namespace

void add_layout_command(Command application) {
    const Command command = application.add_subcommand("layout", "show a record layout as a table");
    auto options = std::make_shared<ShowOptions>();
    add_layout_options(command, options->layout, LayoutArgument::positional);
    const Option json =
        command.add_flag("--json", options->is_json, "print the layout as JSON, for programs");
    command.add_flag("--csv", options->is_csv, "print the layout as a table in CSV, for programs")
        .excludes(json);
    command.footer(
        "Example:\n"
        "  sxml layout orders.cpy\n"
        "  sxml layout ledger.cbl --fd LEDGER\n"
        "  sxml layout orders.cpy --csv > orders.csv");
    command.run([options] { show_layout(*options); });
}

}  // namespace command
