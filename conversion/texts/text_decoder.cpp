#include "conversion/texts/text_decoder.h"

#include <algorithm>

#include "conversion/texts/utf8.h"
#include "host/utf8.h"

namespace conversion {

std::optional<TextDecoder::Character> TextDecoder::next() {
    if (position_ == bytes_.size() && !is_shifted_) return std::nullopt;
    if (position_ < bytes_.size() && bytes_[position_] == 0 && is_filled_up()) return std::nullopt;
    if (form_ == TextForm::double_byte) return next_pair();
    if (form_ == TextForm::utf16) return next_utf16();
    return next_plain();
}

bool TextDecoder::is_filled_up() const {
    return !is_shifted_ && std::all_of(bytes_.begin() + static_cast<std::ptrdiff_t>(position_),
                                       bytes_.end(), [](std::uint8_t byte) { return byte == 0; });
}

TextDecoder::Character TextDecoder::take(std::int32_t code, std::size_t length) {
    const Character character{code, position_, std::min(length, bytes_.size() - position_)};
    position_ += character.length;
    return character;
}

std::optional<TextDecoder::Character> TextDecoder::next_plain() {
    if (characters_.has_shifts()) {
        if (!is_shifted_ && bytes_[position_] == CharacterSet::SHIFT_OUT) {
            is_shifted_ = true;
            ++position_;
        }
        if (is_shifted_ && position_ == bytes_.size()) {
            is_shifted_ = false;
            --position_;
            return take(-1, 1);
        }
        if (is_shifted_ && bytes_[position_] == CharacterSet::SHIFT_IN) {
            is_shifted_ = false;
            ++position_;
            return next();
        }
        if (is_shifted_) return next_pair();
    }
    const std::uint8_t byte = bytes_[position_];
    const std::size_t left = bytes_.size() - position_;
    if (characters_.is_utf8()) {
        if (byte < 0x80) return take(byte, 1);
        const std::size_t length = utf8::sequence_length(&bytes_[position_], left);
        if (length == 0) return take(-1, 1);
        const auto* const text = reinterpret_cast<const char*>(&bytes_[position_]);
        return take(static_cast<std::int32_t>(utf8::first_character({text, length}).code), length);
    }
    if (characters_.is_lead(byte)) return next_pair();
    return take(characters_.characters()[byte], 1);
}

TextDecoder::Character TextDecoder::next_pair() {
    if (bytes_.size() - position_ < 2) {
        is_shifted_ = false;
        return take(-1, 1);
    }
    return take(characters_.pair(bytes_[position_], bytes_[position_ + 1]), 2);
}

TextDecoder::Character TextDecoder::next_utf16() {
    const auto unit = [this](std::size_t at) {
        return static_cast<std::int32_t>(bytes_[at] << 8 | bytes_[at + 1]);
    };
    const std::size_t left = bytes_.size() - position_;
    if (left < 2) return take(-1, 1);
    const std::int32_t first = unit(position_);
    if (first < 0xD800 || first > 0xDFFF) return take(first < 0xFFFE ? first : -1, 2);
    if (first > 0xDBFF || left < 4) return take(-1, 2);
    const std::int32_t second = unit(position_ + 2);
    if (second < 0xDC00 || second > 0xDFFF) return take(-1, 2);
    return take(0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00), 4);
}

}  // namespace conversion
