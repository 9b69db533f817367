#include "tools/sxml/options/encoding_option.h"

#include "tools/sxml/errors.h"
#include "tools/sxml/options/settings.h"

namespace command {

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
                " is binary; a byte in it that looks like a line end would cut its record");
            return;
        }
    }
}

records::RecordEncoding record_encoding(const conversion::CharacterSet& characters) {
    return characters.is_ebcdic() ? records::RecordEncoding::ebcdic
                                  : records::RecordEncoding::ascii;
}

}  // namespace command
