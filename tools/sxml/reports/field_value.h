// The bytes of a field in readable form.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "conversion/texts/character_set.h"
#include "conversion/texts/text_form.h"
#include "host/record_description.h"

namespace command {

inline std::span<const std::uint8_t> bytes_of(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// A text in UTF-8, in quotation marks, without the spaces at its end. A dot stands for what cannot
// be shown.
std::string shown_text(std::span<const std::uint8_t> bytes,
                       const conversion::CharacterSet& characters,
                       conversion::TextForm form = conversion::TextForm::plain);

// The number in a field; nothing when its bytes are not one.
std::optional<std::string> shown_number(const XfdDataDesc& field, const std::uint8_t* bytes);

}  // namespace command
