#include "conversion/texts/text_check.h"

#include <algorithm>

#include "conversion/texts/text_decoder.h"
#include "host/utf8.h"

namespace conversion {

namespace {

std::string hexadecimal(std::uint8_t byte) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    return {'0', 'x', DIGITS[byte >> 4], DIGITS[byte & 0xF]};
}

bool is_all_nul(const std::uint8_t* text, std::int32_t length, std::uint8_t nul) {
    return std::all_of(text, text + length, [nul](std::uint8_t byte) { return byte == nul; });
}

bool is_forbidden(std::int32_t code) {
    return code < 0x20 && code != '\t' && code != '\n' && code != '\r';
}

}  // namespace

TextCheck::TextCheck(const CharacterSet& characters, bool allows_controls)
    : characters_(characters), allows_controls_(allows_controls) {
    for (std::size_t byte = 0; byte < special_.size(); ++byte) {
        special_[byte] = characters.classes()[byte] == ByteClass::plain ? 0 : 1;
        if (byte >= 0x20 && byte < 0x80 && special_[byte] != 0) is_ascii_plain_ = false;
    }
}

std::optional<TextProblem> TextCheck::look_closely(const std::uint8_t* text,
                                                   std::int32_t length) const {
    if (characters_.has_pairs()) return look_at_characters(text, length, TextForm::plain);
    for (std::int32_t i = 0; i < length; ++i) {
        const ByteClass found = characters_.classify(text[i]);
        if (found == ByteClass::plain) continue;
        if (found == ByteClass::nul && is_all_nul(text + i, length - i, text[i])) break;
        const bool is_control = found == ByteClass::nul || found == ByteClass::forbidden;
        if (is_control && allows_controls_) continue;
        const auto left = static_cast<std::size_t>(length - i);
        const std::size_t width =
            found == ByteClass::multi_byte ? utf8::sequence_length(text + i, left) : 0;
        if (width == 0) return problem_of(i, text[i]);
        i += static_cast<std::int32_t>(width) - 1;
    }
    return std::nullopt;
}

std::optional<TextProblem> TextCheck::look_at_characters(const std::uint8_t* text,
                                                         std::int32_t length, TextForm form) const {
    TextDecoder decoder({text, static_cast<std::size_t>(length)}, characters_, form);
    while (const auto character = decoder.next()) {
        if (character->code >= 0 && (allows_controls_ || !is_forbidden(character->code))) continue;
        const auto position = static_cast<std::int32_t>(character->start);
        if (character->code >= 0) return problem_of(position, text[character->start]);
        std::string shown = "the byte" + std::string(character->length > 1 ? "s" : "");
        for (std::size_t i = 0; i < character->length; ++i) {
            shown += " " + hexadecimal(text[character->start + i]);
        }
        const std::string set = form == TextForm::utf16 ? "UTF-16" : characters_.name();
        return TextProblem{position, shown + " are no character of " + set, {}};
    }
    return std::nullopt;
}

TextProblem TextCheck::problem_of(std::int32_t position, std::uint8_t byte) const {
    const std::string shown = "the byte " + hexadecimal(byte);
    switch (characters_.classify(byte)) {
        case ByteClass::nul:
            return {position, "a NUL byte with text after it, which would be lost",
                    "does the layout fit the records?"};
        case ByteClass::forbidden:
            return {position, shown + " is a control character that XML does not allow",
                    "does the layout fit the records? Binary data needs the directive `hex` in the "
                    "copybook"};
        case ByteClass::undefined:
            return {position, shown + " is no character of " + characters_.name(), {}};
        case ByteClass::not_in_target:
            return {position,
                    shown + " is a character of " + characters_.name() + " that " +
                        characters_.declared_name() + " lacks",
                    {}};
        default:
            return {position, shown + " is not valid UTF-8", NAME_THE_CHARACTER_SET};
    }
}

}  // namespace conversion
