#include "tools/sxml/encoding_option.h"

#include "tools/sxml/errors.h"

namespace command {

conversion::CharacterSet find_character_set(const std::string& name, const std::string& option) {
    conversion::Result<conversion::CharacterSet> found = conversion::CharacterSet::find(name);
    if (!found) fail_usage(option + " " + message_of(found.problem()));
    return *std::move(found);
}

records::RecordEncoding record_encoding(const conversion::CharacterSet& characters) {
    return characters.is_ebcdic() ? records::RecordEncoding::ebcdic
                                  : records::RecordEncoding::ascii;
}

}  // namespace command
