#include "tools/sxml/encoding_option.h"

#include <CLI/CLI.hpp>

#include "tools/sxml/errors.h"
#include "tools/sxml/settings.h"

namespace command {

void add_record_options(CLI::App& command, bool& lines, std::string& encoding) {
    command.add_flag("--line", lines,
                     "the records are lines, ended by LF or CR LF (default: fixed length)");
    command
        .add_option("--encoding", encoding,
                    "character set of the records' text: utf-8 (default), iso-8859-1, an EBCDIC "
                    "code page such as cp037 ...")
        ->option_text("NAME");
}

conversion::CharacterSet find_character_set(const std::string& name, const std::string& option) {
    conversion::Result<conversion::CharacterSet> found = conversion::CharacterSet::find(name);
    if (!found) fail_usage(option + " " + message_of(found.problem()));
    return *std::move(found);
}

conversion::CharacterSet records_character_set(const std::string& encoding) {
    if (!encoding.empty()) return find_character_set(encoding, "--encoding");
    const std::string configured = setting_text("SXML_ENCODING");
    return find_character_set(configured.empty() ? "utf-8" : configured, "SXML_ENCODING");
}

records::RecordEncoding record_encoding(const conversion::CharacterSet& characters) {
    return characters.is_ebcdic() ? records::RecordEncoding::ebcdic
                                  : records::RecordEncoding::ascii;
}

}  // namespace command
