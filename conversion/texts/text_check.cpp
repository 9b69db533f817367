#include "conversion/texts/text_check.h"

#include <algorithm>
#include <span>

#include "conversion/texts/text_decoder.h"
#include "host/utf8.h"
#include "records/hexadecimal.h"

namespace conversion {

namespace {

bool is_all_nul(const std::uint8_t* text, std::int32_t length, std::uint8_t nul) {
    return std::all_of(text, text + length, [nul](std::uint8_t byte) { return byte == nul; });
}

// "the byte 0x01" or "the bytes 0x00 0x01", and the verb after them.
std::string shown_bytes(std::span<const std::uint8_t> bytes) {
    std::string shown = bytes.size() > 1 ? "the bytes" : "the byte";
    return shown + " 0x" + records::hexadecimal(bytes, " 0x") + (bytes.size() > 1 ? " are" : " is");
}

constexpr std::int32_t LAST_OF_LATIN1 = 0xFF;
constexpr const char* FORBIDDEN = " a control character that XML does not allow";
constexpr const char* FORBIDDEN_REMEDY =
    "does the layout fit the records? Binary data needs the directive `hex` in the copybook";

}  // namespace

TextCheck::TextCheck(const CharacterSet& characters, bool allows_controls)
    : characters_(characters),
      allows_controls_(allows_controls),
      is_limited_(characters.converts() && characters.is_latin1_document()) {
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
        const std::int32_t code = character->code;
        const bool is_lost = is_limited_ && code > LAST_OF_LATIN1;
        if (code >= 0 && !is_lost && (allows_controls_ || !is_control(code))) continue;
        const auto position = static_cast<std::int32_t>(character->start);
        const bool is_plain_control = form == TextForm::plain && code >= 0;
        if (is_plain_control || code == 0) return problem_of(position, text[position]);
        const std::string shown = shown_bytes({text + position, character->length});
        if (code > 0 && !is_lost) return TextProblem{position, shown + FORBIDDEN, FORBIDDEN_REMEDY};
        if (code == platform::BEGINS_CHARACTER) {
            return TextProblem{position, shown + " the start of a character of more than two bytes",
                               "only characters of one and of two bytes are read"};
        }
        const std::string set = form == TextForm::utf16 ? "UTF-16" : characters_.name();
        return TextProblem{
            position, is_lost ? shown + lacking(set) : shown + " no character of " + set, {}};
    }
    return std::nullopt;
}

std::string TextCheck::lacking(const std::string& set) const {
    return " a character of " + set + " that " + characters_.declared_name() + " lacks";
}

TextProblem TextCheck::problem_of(std::int32_t position, std::uint8_t byte) const {
    const std::string shown = shown_bytes({&byte, 1});
    switch (characters_.classify(byte)) {
        case ByteClass::nul:
            return {position, "a NUL byte with text after it, which would be lost",
                    "does the layout fit the records?"};
        case ByteClass::forbidden:
            return {position, shown + FORBIDDEN, FORBIDDEN_REMEDY};
        case ByteClass::undefined:
            return {position, shown + " no character of " + characters_.name(), {}};
        case ByteClass::not_in_target:
            return {position, shown + lacking(characters_.name()), {}};
        default:
            return {position, shown + " not valid UTF-8", NAME_THE_CHARACTER_SET};
    }
}

}  // namespace conversion
