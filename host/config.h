// Configuration: settings that the module declares, and variables that belong to the host.
#pragma once

#include <cstdint>

#include "host/export.h"

enum HostSettingKind : std::uint64_t {
    HOST_SETTING_FLAG = 2,    // yes/no
    HOST_SETTING_CHOICE = 5,  // one of a list of named values
    HOST_SETTING_WORD = 8,    // text
    HOST_SETTING_TEXT = 9     // text
};

// One named value of a HOST_SETTING_CHOICE.
struct HostNamedValue {
    const char* name;
    std::uint64_t value;
};
static_assert(sizeof(HostNamedValue) == 16);

// A default is a text (or null for none) for the text kinds, a number for the others.
union HostSettingDefault {
    const char* text;
    std::uint64_t number;
};

// One declared setting: seven 64-bit words.
struct HostSetting {
    const char* name;
    std::uint64_t kind;
    HostSettingDefault fallback;
    const HostNamedValue* values;  // HOST_SETTING_CHOICE only, else null
    std::uint64_t value_count;     // HOST_SETTING_CHOICE only, else 0
    std::uint64_t reserved[2];     // 0
};
static_assert(sizeof(HostSetting) == 56);

// Declares `count` settings. The table and its texts must live as long as the process; the host
// keeps the pointer. `reserved` is 0. A user's value that a setting cannot take is reported now.
// Result: the number of settings registered.
// Declaring the same table again is harmless.
HOST_API int host_register_settings(const HostSetting* table, int count, int reserved);

// Lookups, made whenever a value is needed; each is one hash probe. The user's value takes
// precedence, then the declared default, then `fallback` (for a name that is neither declared nor
// set). The host notices a changed environment when a file is opened or its description's name is
// asked for. Names are compared exactly.
HOST_API std::int32_t host_config_flag(const char* name, std::int32_t fallback);
HOST_API std::int16_t host_config_choice(const char* name, std::int16_t fallback);
HOST_API std::int16_t host_config_number(const char* name, std::int16_t fallback);
// The text stays valid until the setting is changed. A setting that the user set to an empty text
// gives an empty text; null means that there is no value at all.
HOST_API const char* host_config_string(const char* name, const char* fallback);
