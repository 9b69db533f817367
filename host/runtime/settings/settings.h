// Configuration values set by the embedding program. They come before the environment and the
// settings file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/runtime/runtime_api.h"

namespace host {

// Sets a setting or variable for this process; without a value (std::nullopt) the environment, the
// settings file or the default decide again. False, with nothing changed, when the setting is known
// and the value is not one of its kind; `problem` then says what would be. A value set before its
// setting is declared is checked when it is declared.
RUNTIME_API bool set_config(const std::string& name, const std::optional<std::string>& value,
                            std::string* problem = nullptr);

// Forgets all values and reads the settings file and the environment again at the next lookup.
RUNTIME_API void reload_config();

// Compares the environment with what it was when settings were looked up; those whose variable has
// changed are looked up anew. The host does this itself whenever a file is opened, a document is
// fetched or a record description is looked for, so that a program can change its environment
// before it opens a file; changes made while a file is open wait for the next open.
RUNTIME_API void refresh_environment();

// The settings that a program can be given: those that are declared and the variables of the host,
// in order. What only the environment can say is not among them.
RUNTIME_API std::vector<std::string> known_settings();
// True for those, and for the settings of programs that embed the host.
RUNTIME_API bool is_known_setting(const std::string& name);

}  // namespace host
