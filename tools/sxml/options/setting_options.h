// Settings given on the command line, and what the module's settings come to.
#pragma once

#include <string>
#include <vector>

namespace command {

// Applies NAME=value texts. Throws Failure (wrong usage) for an unknown name, listing the known
// ones, and for a value that is not of the setting's kind. The module must have been loaded: it
// declares the settings.
void apply_settings(const std::vector<std::string>& assignments);

// Sets one setting that the command itself decides.
void force_setting(const std::string& name, const std::string& value);

// The description of the data that a new document gets, as the settings say.
enum class CreateStyle { none = 0, dtd = 1, schema = 2 };
CreateStyle create_style();

// A text setting; empty when it has no value.
std::string setting_text(const std::string& name);

}  // namespace command
