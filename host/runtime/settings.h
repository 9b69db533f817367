// Configuration values set by the embedding program. They come before the environment and the
// settings file.
#pragma once

#include <optional>
#include <string>

#include "host/runtime/memory_report.h"

namespace host {

// Sets a setting or variable for this process; nothing unsets it again. False when the setting is
// declared and the value is not one of its kind; `problem` then says what would be.
RUNTIME_API bool set_config(const std::string& name, const std::optional<std::string>& value,
                            std::string* problem = nullptr);

// Forgets all values and reads the settings file and the environment again at the next lookup.
RUNTIME_API void reload_config();

// True when a declared setting or a variable of the host has this name.
RUNTIME_API bool is_known_setting(const std::string& name);

}  // namespace host
