#include "host/runtime/settings/setting_values.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <span>

namespace host {

namespace {

bool equal_ignoring_case(std::string_view a, std::string_view b) {
    return std::ranges::equal(
        a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::optional<std::int32_t> yes_or_no(std::string_view text) {
    for (const char* yes : {"yes", "true", "on", "1"}) {
        if (equal_ignoring_case(text, yes)) return 1;
    }
    for (const char* no : {"no", "false", "off", "0"}) {
        if (equal_ignoring_case(text, no)) return 0;
    }
    return std::nullopt;
}

std::optional<std::int32_t> whole_number(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    std::int16_t number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end) return std::nullopt;
    return number;
}

std::span<const HostNamedValue> named_values(const HostSetting& setting) {
    return {setting.values, static_cast<std::size_t>(setting.value_count)};
}

std::optional<std::int32_t> choice(const HostSetting& setting, std::string_view text) {
    for (const HostNamedValue& value : named_values(setting)) {
        if (equal_ignoring_case(text, value.name)) return static_cast<std::int32_t>(value.value);
    }
    return std::nullopt;
}

}  // namespace

bool is_text_kind(std::uint64_t kind) {
    return kind == HOST_SETTING_WORD || kind == HOST_SETTING_TEXT;
}

std::optional<std::int32_t> setting_number(const HostSetting* setting, std::string_view text) {
    if (setting != nullptr && setting->kind == HOST_SETTING_CHOICE) return choice(*setting, text);
    if (setting != nullptr && setting->kind == HOST_SETTING_FLAG) return yes_or_no(text);
    const std::optional<std::int32_t> number = whole_number(text);
    return number.has_value() ? number : yes_or_no(text);
}

std::string expected_values(const HostSetting* setting) {
    if (setting == nullptr) return "a whole number";
    if (setting->kind == HOST_SETTING_FLAG) return "yes or no";
    std::string names = "one of";
    for (const HostNamedValue& value : named_values(*setting)) {
        names += names.size() > 6 ? ", " : " ";
        names += value.name;
    }
    return names;
}

}  // namespace host
