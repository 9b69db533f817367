// sxml dump: shows records field by field, as they lie in the file.

#include <CLI/CLI.hpp>
#include <charconv>
#include <limits>
#include <memory>

#include "conversion/formats/record_format.h"
#include "conversion/session/module.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/encoding_option.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/layout_source.h"
#include "tools/sxml/options.h"
#include "tools/sxml/record_table.h"
#include "tools/sxml/settings.h"

namespace command {

namespace {

using conversion::CharacterSet;
using conversion::Record;

struct DumpOptions {
    std::string records;
    LayoutOptions layout;
    std::string encoding;
    std::string wanted;
    bool lines = false;
};

struct RecordRange {
    std::uint64_t first = 1;
    std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
};

// "N", "N-M" or "N-".
RecordRange record_range(const std::string& text) {
    RecordRange range;
    if (text.empty()) return range;
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
    return range;
}

void dump_records(const DumpOptions& options) {
    RunFiles files;
    const RecordRange range = record_range(options.wanted);
    value_of(conversion::xml_module());  // it declares the settings
    apply_settings(options.layout.settings);
    const CharacterSet characters = records_character_set(options.encoding);
    files.reads(options.records);
    files.writes("-");
    records::Description description =
        LayoutSource(options.layout).load(record_encoding(characters), files);
    files.check();
    conversion::ByteSource source = value_of(conversion::ByteSource::open(options.records));
    const auto reader = conversion::read_records(
        options.lines ? conversion::RecordFormat::lines : conversion::RecordFormat::fixed, source,
        static_cast<std::size_t>(description.record_length()));
    RecordTable table_of(description, characters);
    conversion::ByteSink output = value_of(conversion::ByteSink::open("-", "standard output"));
    std::uint64_t count = 0;
    while (count < range.last) {
        const std::optional<Record> record = value_of(reader->next());
        if (!record) break;
        count = record->number;
        if (count < range.first) continue;
        const std::string table = (count > range.first ? "\n" : "") + table_of.of(*record);
        check(output.write(table.data(), table.size()));
    }
    check(output.close());
    if (count < range.first && !options.wanted.empty()) {
        fail(source.name() + ": there are only " + std::to_string(count) + " records");
    }
}

}  // namespace

void add_dump_command(CLI::App& application) {
    CLI::App* command =
        application.add_subcommand("dump", "show records field by field, with their bytes");
    auto options = std::make_shared<DumpOptions>();
    command->add_option("RECORDS", options->records, "the record file, - for standard input")
        ->required()
        ->option_text(" ");
    add_layout_options(*command, options->layout, LayoutArgument::option);
    command
        ->add_option("--record", options->wanted,
                     "the records to show: a number, or a range such as 7-9 or 7- (default: all)")
        ->option_text("N[-M]");
    add_record_options(*command, options->lines, options->encoding);
    command->footer("Example:\n  sxml dump orders.dat --layout orders.cpy --record 1201");
    command->callback([options] { dump_records(*options); });
}

}  // namespace command
