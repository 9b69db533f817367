// sxml dump: shows records field by field, as they lie in the file.

#include <charconv>
#include <limits>
#include <memory>

#include "conversion/session/module.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/dump/record_table.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/encoding_option.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/record_input.h"
#include "tools/sxml/options/setting_options.h"

namespace command {

namespace {

using conversion::CharacterSet;
using conversion::Record;

struct DumpOptions {
    std::string records;
    LayoutOptions layout;
    std::string wanted;
    RecordFileOptions input;
};

// "N", "N-M" or "N-".
void choose_records(const std::string& text, RecordFileOptions& options) {
    struct {
        std::uint64_t first = 1;
        std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
    } range;
    const char* const end = text.data() + text.size();
    auto [after, error] = std::from_chars(text.data(), end, range.first);
    bool is_right = error == std::errc() && range.first > 0;
    if (is_right && after == end) range.last = range.first;
    if (is_right && after != end) {
        is_right = *after == '-';
        if (is_right && after + 1 != end) {
            const auto last = std::from_chars(after + 1, end, range.last);
            is_right = last.ec == std::errc() && last.ptr == end && range.last >= range.first;
        }
    }
    if (!is_right) {
        fail_usage("--record " + text +
                   ": name a record by its number, or a range, as in 7 or 7-9");
    }
    options.first = range.first;
    options.count = range.last - range.first + 1;
}

void dump_records(DumpOptions& options) {
    RunFiles files;
    if (!options.wanted.empty()) choose_records(options.wanted, options.input);
    value_of(conversion::xml_module());  // it declares the settings
    apply_settings(options.layout.settings);
    const CharacterSet characters = records_character_set(options.input.encoding);
    files.reads(options.records);
    files.writes("-");
    records::Description description =
        LayoutSource(options.layout).load(record_encoding(characters), files);
    files.check();
    RecordInput input(options.records, options.input,
                      {static_cast<std::size_t>(description.record_length()), characters.space(),
                       description.asks_for_last()});
    RecordTable table_of(description, characters);
    conversion::ByteSink output = value_of(conversion::ByteSink::open("-", "standard output"));
    bool is_first = true;
    while (const std::optional<Record> record = input.next()) {
        const std::string table = (is_first ? "" : "\n") + table_of.of(*record);
        check(output.write(table.data(), table.size()));
        is_first = false;
    }
    check(output.close());
}

}  // namespace

void add_dump_command(Command application) {
    const Command command =
        application.add_subcommand("dump", "show records field by field, with their bytes");
    auto options = std::make_shared<DumpOptions>();
    command.add_argument("RECORDS", options->records, "the record file, - for standard input");
    add_layout_options(command, options->layout, LayoutArgument::option);
    add_record_options(command, options->input);
    command
        .add_option("--record", options->wanted,
                    "the records to show: a number, or a range such as 7-9 or 7- (default: all)")
        .excludes("--from-record")
        .excludes("--count")
        .value("N[-M]");
    command.footer("Example:\n  sxml dump orders.dat --layout orders.cpy --record 1201");
    command.run([options] { dump_records(*options); });
}

}  // namespace command
