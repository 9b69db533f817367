// The values of settings as texts, and what they mean.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/config.h"

namespace host {

bool is_text_kind(std::uint64_t kind);

// The number that a text means for a setting; nothing when it is not a value of its kind. With a
// null setting: a whole number of 16 bits or a yes/no word.
std::optional<std::int32_t> setting_number(const HostSetting* setting, std::string_view text);

// What would be a value of the setting, for messages.
std::string expected_values(const HostSetting* setting);

}  // namespace host
