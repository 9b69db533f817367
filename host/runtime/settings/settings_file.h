// The settings file: lines `NAME value` or `NAME=value`, `#` comments.
#pragma once

#include <string>
#include <vector>

namespace host {

struct SettingsLine {
    std::string name;
    std::string value;
    int line;
};

// The settings of a file in order. What cannot be read is reported on standard error, with file and
// line, and left out.
std::vector<SettingsLine> read_settings_file(const std::string& file);

}  // namespace host
