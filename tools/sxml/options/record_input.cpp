#include "tools/sxml/options/record_input.h"

#include <string_view>

#include "conversion/formats/format_detection.h"
#include "conversion/texts/counted.h"
#include "tools/sxml/command.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"

namespace command {

namespace {

constexpr std::string_view DETECT = "auto";

conversion::ByteSource open_source(const std::string& file, const RecordFileOptions& options,
                                   const std::string& shown_name) {
    conversion::ByteSource source = value_of(conversion::ByteSource::open(file, shown_name));
    check(source.leave_out(options.skip, options.skip_end));
    return source;
}

conversion::RecordFormat settle_format(const RecordFileOptions& options,
                                       conversion::ByteSource& source, std::size_t record_length) {
    if (const auto format = format_of(options)) return *format;
    conversion::RecordFormat format = value_of(conversion::detect_format(source, record_length));
    say("sxml: " + source.name() + ": read with --record-format " + format.name + "\n");
    return format;
}

// Names the option that reads the file, where the conversion names the format.
[[noreturn]] void fail_reading(conversion::Problem problem) {
    const std::string_view prefix = conversion::ANOTHER_FORMAT;
    if (problem.remedy.starts_with(prefix)) {
        problem.remedy = "read it with --record-format " + problem.remedy.substr(prefix.size());
    }
    fail(problem);
}

}  // namespace

void add_format_options(Command command, RecordFileOptions& options, const std::string& use) {
    const Option format =
        command
            .add_option("--record-format", options.format,
                        use +
                            ": fixed (default), line, rdw, bdw, gnucobol ...; docs/record-files.md "
                            "has them all")
            .value("NAME");
    command
        .add_flag("--line", options.lines,
                  "the same as --record-format line: a line for each record, ended by LF or CR LF")
        .excludes(format);
}

void add_range_options(Command command, RecordFileOptions& options) {
    command.add_number("--from-record", options.first, {.smallest = 1},
                       "the number of the first record to take (default: 1)");
    command.add_number("--count", options.count, {.smallest = 1},
                       "how many records to take (default: all)");
}

void add_record_options(Command command, RecordFileOptions& options) {
    add_format_options(command, options, "how records are told apart, or auto");
    command
        .add_option("--encoding", options.encoding,
                    "character set of the records' text: utf-8 (default), iso-8859-1, an EBCDIC "
                    "code page such as cp037 ...")
        .value("NAME");
    command
        .add_number("--skip", options.skip, {},
                    "bytes at the file's start that belong to no record")
        .value("BYTES");
    command
        .add_number("--skip-end", options.skip_end, {},
                    "bytes at the file's end that belong to no record")
        .value("BYTES");
    add_range_options(command, options);
}

std::optional<conversion::RecordFormat> format_of(const RecordFileOptions& options) {
    if (options.lines) return value_of(conversion::RecordFormat::find("line"));
    if (options.format.empty()) return conversion::RecordFormat{};
    if (options.format == DETECT) return std::nullopt;
    return value_of(conversion::RecordFormat::find(options.format));
}

RecordInput::RecordInput(const std::string& file, const RecordFileOptions& options,
                         conversion::RecordArea area, const std::string& shown_name)
    : options_(options),
      source_(open_source(file, options, shown_name)),
      format_(settle_format(options, source_, area.length)),
      reader_(conversion::read_records(format_, source_, area)) {}

void fail_for_too_few(const std::string& name, std::uint64_t records) {
    fail(name + ": there " + (records == 1 ? "is" : "are") + " only " +
         conversion::counted(records, "record"));
}

std::optional<conversion::Record> RecordInput::next() {
    while (given_ < options_.count) {
        const auto record = reader_->next();
        if (!record) fail_reading(record.problem());
        if (!*record) break;
        read_ = (*record)->number;
        if (read_ < options_.first) continue;
        ++given_;
        return *record;
    }
    if (given_ == 0 && options_.first > 1) {
        fail_for_too_few(source_.name(), read_);
    }
    return std::nullopt;
}

}  // namespace command
