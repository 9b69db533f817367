#include "tools/sxml/options/record_target.h"

#include <limits>
#include <map>

#include "tools/sxml/command.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/encoding_option.h"
#include "tools/sxml/options/options.h"

namespace command {

namespace {

using conversion::BlankFill;

const std::map<std::string, BlankFill> BUFFER_FILLS = {
    {"spaces", BlankFill::spaces}, {"zeros", BlankFill::zeros}, {"keep", BlankFill::keep}};

}  // namespace

void add_document_options(Command command, DocumentOptions& options) {
    add_record_path_option(command, options.path);
    command.add_flag("--attributes", options.takes_attributes,
                     "read attributes as elements: `currency` of `price` as `price_currency`");
    command
        .add_number(
            "--min-record-length",
            [&options](std::uint64_t length) {
                options.min_record_length = static_cast<std::uint32_t>(length);
            },
            {.largest = std::numeric_limits<std::int32_t>::max()},
            "the least length of records in formats with lengths (default: 0)")
        .value("BYTES");
    command
        .add_option(
            "--buffer",
            [&options](const std::string& fill) { options.fill = BUFFER_FILLS.at(fill); },
            "what fields hold that the document has no data for: spaces, zeros (bytes of value 0), "
            "or keep what the record before held (default: spaces in characters, zero in numbers)")
        .one_of({"spaces", "zeros", "keep"});
}

records::RecordEncoding RecordTarget::encoding() const {
    return characters ? record_encoding(*characters) : records::RecordEncoding::ascii;
}

RecordTarget record_target(const RecordFileOptions& options) {
    const auto format = format_of(options);
    if (!format) fail_usage("--record-format auto: a file to be written does not tell its format");
    RecordTarget target{*format, std::nullopt};
    if (options.encoding.empty()) return target;
    target.characters = find_character_set(options.encoding, "--encoding");
    check_lines(target.format, *target.characters);
    return target;
}

void check_lengths(const RecordTarget& target, const DocumentOptions& options) {
    if (options.min_record_length == 0 || target.format.has_lengths()) return;
    fail_usage("--min-record-length is for formats with lengths; records of the format " +
               target.format.name +
               " have none: leave it out, or name a format such as rdw with --record-format");
}

}  // namespace command
