// A record file as the command line says it is to be read.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "conversion/formats/record_format.h"
#include "conversion/session/output_document.h"

namespace command {

class Command;

struct RecordFileOptions {
    std::string format;    // the name of the format, "auto", or empty: fixed
    bool lines = false;    // the short form of the format "line"
    std::string encoding;  // of the records' text; empty: by default
    conversion::Controls controls = conversion::Controls::refuse;
    std::uint64_t skip = 0;      // bytes at the start that belong to no record
    std::uint64_t skip_end = 0;  // and at the end
    std::uint64_t first = 1;     // number of the first record that is wanted
    std::uint64_t count = std::numeric_limits<std::uint64_t>::max();  // of those wanted
};

// Adds all options; they must live until the command line has been parsed.
void add_record_options(Command command, RecordFileOptions& options);
// Adds --record-format and --line; `use` begins their help.
void add_format_options(Command command, RecordFileOptions& options, const std::string& use);
// Adds --from-record and --count.
void add_range_options(Command command, RecordFileOptions& options);

// The format that the options name; nothing for "auto". Throws Failure (wrong usage).
std::optional<conversion::RecordFormat> format_of(const RecordFileOptions& options);

// Fails, since a file or document of this name has no more than so many records.
[[noreturn]] void fail_for_too_few(const std::string& name, std::uint64_t records);

class RecordInput {
  public:
    // Opens the file ("-": standard input). Of "auto", what was taken is said on standard error.
    // The options must outlive this. `shown_name` is what messages call the file; empty: as it is
    // opened. Throws Failure.
    RecordInput(const std::string& file, const RecordFileOptions& options,
                conversion::RecordArea area, const std::string& shown_name = "");

    // The next record that is wanted, with its number in the file; nothing after the last. Throws
    // Failure where the file does not consist of such records, and when it has none that is
    // wanted, although some are not.
    std::optional<conversion::Record> next();

    const conversion::RecordFormat& format() const { return format_; }
    const std::string& name() const { return source_.name(); }
    // Of the file, in bytes, when known.
    std::optional<std::uint64_t> size() const { return source_.size(); }

  private:
    const RecordFileOptions& options_;
    conversion::ByteSource source_;
    conversion::RecordFormat format_;
    std::unique_ptr<conversion::RecordReader> reader_;
    std::uint64_t read_ = 0;
    std::uint64_t given_ = 0;
};

}  // namespace command
