// Numeric fields for tests: a descriptor made from usage, digits and scale, with the field's bytes
// between guard bytes, and the conversions as the record writer and reader ask for them.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "records/field_types.h"
#include "records/numbers.h"

namespace number_tests {

struct FieldSpec {
    records::FieldType type = records::DISPLAY_UNSIGNED;
    int digits = 0;  // of the picture, P positions left out
    int scale = 0;   // 3 for 99PPP, -4 for VPP99
    int length = 0;  // bytes
    int flags = 0;   // FieldFlag bits

    // Digits and decimals of the text, which has the places of P positions, too.
    int decimals() const { return std::max(0, -scale); }
    int text_digits() const { return std::max(digits + std::max(scale, 0), decimals()); }
};

inline bool is_floating(const FieldSpec& spec) {
    return spec.type == records::FLOAT_NATIVE || spec.type == records::FLOAT_HEX;
}

class NumberField {
  public:
    explicit NumberField(const FieldSpec& spec)
        : spec_(spec), memory_(static_cast<std::size_t>(spec.length) + 2 * GUARD, GUARD_BYTE) {
        data_ = {.address = memory_.data() + GUARD,
                 .length = spec.length,
                 .type = spec.type,
                 .digits = static_cast<std::int8_t>(spec.text_digits()),
                 .scale = static_cast<std::int8_t>(-spec.decimals()),
                 .extra = {}};
        records::set_field_extra(data_, {.digits = static_cast<std::int8_t>(spec.digits),
                                         .scale = static_cast<std::int8_t>(spec.scale),
                                         .flags = static_cast<std::uint8_t>(spec.flags),
                                         .reserved = {}});
    }

    XfdDataDesc& data() { return data_; }
    std::string bytes() const { return memory_.substr(GUARD, memory_.size() - 2 * GUARD); }
    void set_bytes(std::string_view bytes) { memory_.replace(GUARD, bytes.size(), bytes); }

    // The field as text, blanks at the end cut, asked for as the writer does. `ok` is the result.
    std::string to_text(bool& ok) {
        const int asked_for = spec_.text_digits() + 1 + (spec_.decimals() > 0 ? 1 : 0);
        const auto length = static_cast<std::size_t>(asked_for);
        std::string text(length + 2 * GUARD, GUARD_BYTE);
        XfdDataDesc to = data_;
        to.address = text.data() + GUARD;
        to.length = static_cast<std::int32_t>(length);
        to.type = records::TEXT;
        std::fill(std::begin(to.extra), std::end(to.extra), std::uint8_t{0xFF});  // not to be read
        ok = Qconvert(&to, &data_, 1) == 1 && guards_stand(text);
        text = text.substr(GUARD, length);
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }

    // Stores a text as the reader does: its digits are the length's low byte.
    bool from_text(std::string text) {
        XfdDataDesc from = data_;
        from.address = text.data();
        from.length = static_cast<std::int32_t>(text.size());
        from.type = records::TEXT;
        from.digits = static_cast<std::int8_t>(text.size());
        std::fill(std::begin(from.extra), std::end(from.extra), std::uint8_t{0xFF});
        return Qconvert(&data_, &from, 1) == 1 && guards_stand(memory_);
    }

  private:
    static constexpr std::size_t GUARD = 8;
    static constexpr char GUARD_BYTE = '\x5A';

    static bool guards_stand(std::string_view memory) {
        const std::string guard(GUARD, GUARD_BYTE);
        return memory.starts_with(guard) && memory.ends_with(guard);
    }

    FieldSpec spec_;
    std::string memory_;
    XfdDataDesc data_{};
};

}  // namespace number_tests
