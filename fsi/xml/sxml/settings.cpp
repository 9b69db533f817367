#include "fsi/xml/sxml/settings.h"

#include <iterator>

#include "fsi/xml/sxml/entries.h"
#include "host/config.h"

namespace {

constexpr char SCHEMA_DOC[] = "SXML_SCHEMA_DOC";
constexpr char SCHEMA_NAME[] = "SXML_SCHEMA_NAME";
constexpr char STYLESHEET_HREF[] = "SXML_STYLESHEET_HREF";
constexpr char SCHEMA_NAMESPACE_DATA[] = "SXML_SCHEMA_NAMESPACE_DATA";
constexpr char ENCODING[] = "SXML_ENCODING";
constexpr char STYLESHEET_TYPE[] = "SXML_STYLESHEET_TYPE";
constexpr char CREATE_STYLE[] = "SXML_CREATE_STYLE";
constexpr char CREATE_SCHEMA[] = "SXML_CREATE_SCHEMA";
constexpr char EXACT_TABLE_MATCH[] = "SXML_EXACT_TABLE_MATCH";
constexpr char IGNORE_EMPTY_DATA[] = "SXML_IGNORE_EMPTY_DATA";

constexpr char DEFAULT_NAMESPACE_DATA[] =
    "xmlns:xs=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
    "    xs:noNamespaceSchemaLocation=\"%s\"";

constexpr HostNamedValue STYLES[] = {{"DTD", settings::STYLE_DTD},
                                     {"SCHEMA", settings::STYLE_SCHEMA},
                                     {"NONE", settings::STYLE_NONE}};

constexpr HostSetting text_setting(const char* name, HostSettingKind kind, const char* fallback) {
    return {name, kind, {.text = fallback}, nullptr, 0, {}};
}
constexpr HostSetting flag_setting(const char* name, std::uint64_t fallback) {
    return {name, HOST_SETTING_FLAG, {.number = fallback}, nullptr, 0, {}};
}

constexpr HostSetting SETTINGS[] = {
    text_setting(SCHEMA_DOC, HOST_SETTING_TEXT, nullptr),
    text_setting(SCHEMA_NAME, HOST_SETTING_TEXT, nullptr),
    text_setting(STYLESHEET_HREF, HOST_SETTING_TEXT, nullptr),
    text_setting(SCHEMA_NAMESPACE_DATA, HOST_SETTING_TEXT, DEFAULT_NAMESPACE_DATA),
    text_setting(ENCODING, HOST_SETTING_WORD, "UTF-8"),
    text_setting(STYLESHEET_TYPE, HOST_SETTING_WORD, nullptr),
    {CREATE_STYLE,
     HOST_SETTING_CHOICE,
     {.number = settings::STYLE_DTD},
     STYLES,
     std::size(STYLES),
     {}},
    flag_setting(CREATE_SCHEMA, 1),
    flag_setting(EXACT_TABLE_MATCH, 1),
    flag_setting(IGNORE_EMPTY_DATA, 0),
};

}  // namespace

namespace settings {

std::int16_t create_style() {
    return host_config_choice(CREATE_STYLE, 0);
}
bool create_schema() {
    return host_config_flag(CREATE_SCHEMA, 0) != 0;
}
bool ignore_empty_data() {
    return host_config_flag(IGNORE_EMPTY_DATA, 0) != 0;
}
bool exact_table_match() {
    return host_config_flag(EXACT_TABLE_MATCH, 0) != 0;
}
const char* encoding() {
    return host_config_string(ENCODING, nullptr);
}
const char* schema_name() {
    return host_config_string(SCHEMA_NAME, nullptr);
}
const char* schema_namespace() {
    return host_config_string(SCHEMA_NAMESPACE_DATA, nullptr);
}
const char* schema_doc() {
    return host_config_string(SCHEMA_DOC, nullptr);
}
const char* stylesheet_type() {
    return host_config_string(STYLESHEET_TYPE, nullptr);
}
const char* stylesheet_href() {
    return host_config_string(STYLESHEET_HREF, nullptr);
}

}  // namespace settings

int xml_register_settings() {
    return host_register_settings(SETTINGS, static_cast<int>(std::size(SETTINGS)), 0);
}
