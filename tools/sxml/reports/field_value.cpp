#include "tools/sxml/reports/field_value.h"

#include <array>

#include "conversion/texts/text_decoder.h"
#include "conversion/texts/utf8.h"
#include "host/utf8.h"
#include "records/numbers.h"

namespace command {

namespace {

constexpr std::size_t LONGEST_NUMBER = 512;  // characters

bool is_control(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

}  // namespace

std::string shown_text(std::span<const std::uint8_t> bytes,
                       const conversion::CharacterSet& characters, conversion::TextForm form) {
    std::string text = "'";
    conversion::TextDecoder decoder(bytes, characters, form);
    std::size_t end = text.size();  // of what is not blank
    while (const auto character = decoder.next()) {
        if (character->code < 0 || is_control(static_cast<char32_t>(character->code))) {
            text += '.';
        } else {
            conversion::append_utf8(static_cast<char32_t>(character->code), text);
        }
        if (!decoder.is_blank(*character)) end = text.size();
    }
    text.resize(end);
    return text + "'";
}

std::optional<std::string> shown_number(const XfdDataDesc& field, const std::uint8_t* bytes) {
    XfdDataDesc source = field;
    source.address = const_cast<std::uint8_t*>(bytes);
    records::Decimal number;
    if (!records::decode_field(source, number)) return std::nullopt;
    std::array<char, LONGEST_NUMBER> text{};
    XfdDataDesc target{text.data(), static_cast<std::int32_t>(text.size()), 0, 0, field.scale, {}};
    if (Qconvert(&target, &source, 1) == 0) return std::nullopt;
    const std::string_view value(text.data(), text.size());
    const std::size_t start = value.find_first_not_of(' ');
    const std::size_t end = value.find_last_not_of(' ');
    return start == std::string_view::npos ? std::string()
                                           : std::string(value.substr(start, end + 1 - start));
}

}  // namespace command
