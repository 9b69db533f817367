#include "tools/sxml/options/encoding_option.h"

#include <map>

#include "tools/sxml/command.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/setting_options.h"

namespace command {

using conversion::DocumentEncoding;

conversion::CharacterSet find_character_set(const std::string& name, const std::string& option,
                                            DocumentEncoding encoding) {
    auto found = conversion::CharacterSet::find(name, encoding);
    if (!found) fail_usage(option + " " + message_of(found.problem()));
    return *std::move(found);
}

conversion::CharacterSet records_character_set(const std::string& encoding) {
    const std::string configured = setting_text("SXML_ENCODING");
    const std::string name = configured.empty() ? "utf-8" : configured;
    if (!encoding.empty()) {
        return find_character_set(encoding, "--encoding",
                                  conversion::document_encoding(encoding, configured));
    }
    conversion::CharacterSet found =
        find_character_set(name, "SXML_ENCODING", DocumentEncoding::utf8);
    if (found.is_ebcdic() || found.has_pairs()) return found;
    return find_character_set(name, "SXML_ENCODING", DocumentEncoding::single_byte);
}

void check_lines(const conversion::RecordFormat& format,
                 const conversion::CharacterSet& characters) {
    if (format.kind == conversion::RecordFormat::Kind::lines && characters.is_ebcdic()) {
        fail_usage("--line: records in " + characters.name() + " are of fixed length");
    }
}

void check_lines(const conversion::RecordFormat& format, const conversion::CharacterSet& characters,
                 const conversion::RecordFields& fields, RunReport& report) {
    using conversion::FieldKind;
    check_lines(format, characters);
    if (format.kind != conversion::RecordFormat::Kind::lines) return;
    for (const conversion::RecordLayout& layout : fields.layouts()) {
        for (const conversion::Field& field : layout.fields) {
            if (field.kind == FieldKind::text || field.kind == FieldKind::display_number) continue;
            report.warn_of(
                "--line: field " + fields.name(field.item) +
                " is binary; a byte in it that looks like a line end would cut its record; "
                "use --record-format rdw, or fixed");
            return;
        }
    }
}

void add_controls_option(Command command, conversion::Controls& controls, const std::string& use) {
    using conversion::Controls;
    static const std::map<std::string, Controls> NAMES = {{"refuse", Controls::refuse},
                                                          {"replace", Controls::replace},
                                                          {"drop", Controls::drop},
                                                          {"hex", Controls::hex}};
    command
        .add_option(
            "--controls", [&controls](const std::string& name) { controls = NAMES.at(name); }, use)
        .one_of({"refuse", "replace", "drop", "hex"});
}

records::RecordEncoding record_encoding(const conversion::CharacterSet& characters) {
    return characters.is_ebcdic() ? records::RecordEncoding::ebcdic
                                  : records::RecordEncoding::ascii;
}

}  // namespace command
