#include "conversion/session/document_settings.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "conversion/texts/text_check.h"
#include "host/config.h"

namespace conversion {

namespace {

constexpr std::int16_t WITH_SCHEMA = 2;  // of SXML_CREATE_STYLE

constexpr const char* STYLESHEET[] = {"SXML_STYLESHEET_TYPE", "SXML_STYLESHEET_HREF"};
constexpr const char* SCHEMA[] = {"SXML_SCHEMA_NAME", "SXML_SCHEMA_NAMESPACE_DATA",
                                  "SXML_SCHEMA_DOC"};

// What the document cannot hold of a text; empty when it can hold all of it.
std::string fault_of(std::string_view text, const CharacterSet& characters) {
    // ISO-8859-1 has all other bytes.
    if (std::any_of(text.begin(), text.end(),
                    [](char c) { return is_control(static_cast<unsigned char>(c)); })) {
        return "a control character is not allowed in XML";
    }
    if (characters.converts() && characters.is_latin1_document()) return {};
    const Result<CharacterSet> utf8 = CharacterSet::find("utf-8");
    const auto problem = TextCheck(characters.converts() ? *utf8 : characters)
                             .check(reinterpret_cast<const std::uint8_t*>(text.data()),
                                    static_cast<std::int32_t>(text.size()));
    return problem ? problem->what : std::string();
}

Done check(const char* setting, const CharacterSet& characters) {
    const char* const value = host_config_string(setting, nullptr);
    if (value == nullptr) return std::nullopt;
    const std::string fault = fault_of(value, characters);
    if (fault.empty()) return std::nullopt;
    return Problem{Cause::setting,
                   {},
                   std::string(setting) + ": " + fault,
                   "write it in the encoding of the document, " + characters.declared_name()};
}

// A stylesheet is named only when both settings are there.
Done check_stylesheet(const CharacterSet& characters) {
    for (const char* setting : STYLESHEET)
        if (host_config_string(setting, nullptr) == nullptr) return std::nullopt;
    for (const char* setting : STYLESHEET) {
        if (Done problem = check(setting, characters)) return problem;
        const std::string_view value = host_config_string(setting, "");
        if (value.find("?>") == std::string_view::npos) continue;
        return Problem{Cause::setting,
                       {},
                       std::string(setting) + ": ?> would end the stylesheet instruction",
                       "in an address write ?%3E"};
    }
    return std::nullopt;
}

}  // namespace

Done check_document_settings(const CharacterSet& characters) {
    if (Done problem = check_stylesheet(characters)) return problem;
    if (host_config_choice("SXML_CREATE_STYLE", 0) != WITH_SCHEMA) return std::nullopt;
    for (const char* setting : SCHEMA)
        if (Done problem = check(setting, characters)) return problem;
    return std::nullopt;
}

}  // namespace conversion
