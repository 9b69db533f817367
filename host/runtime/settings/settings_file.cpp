#include "host/runtime/settings/settings_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string_view>

#include "host/runtime/write_failures.h"
#include "platform/paths.h"

namespace host {

namespace {

constexpr std::string_view BLANKS = " \t\r";
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(BLANKS);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

// The name ends at the first blank or equals sign; one equals sign may stand between blanks.
SettingsLine parse_line(std::string_view text, int number) {
    const std::size_t name_end = text.find_first_of(" \t=");
    if (name_end == text.npos) return {std::string(text), "", number};
    std::string_view value = trimmed(text.substr(name_end));
    if (value.starts_with('=')) value = trimmed(value.substr(1));
    return {std::string(text.substr(0, name_end)), std::string(value), number};
}

}  // namespace

std::vector<SettingsLine> read_settings_file(const std::string& file) {
    std::vector<SettingsLine> lines;
    std::ifstream input(platform::path_of(file), std::ios::binary);
    std::string text;
    for (int number = 1; std::getline(input, text); ++number) {
        std::string_view content = text;
        if (number == 1 && content.starts_with(BYTE_ORDER_MARK)) {
            content.remove_prefix(BYTE_ORDER_MARK.size());
        }
        content = trimmed(content);
        if (content.empty() || content.starts_with('#')) continue;
        SettingsLine line = parse_line(content, number);
        if (line.name.empty()) {
            std::fprintf(stderr, "sxml: %s:%d: a setting's name is missing before \"=\"\n",
                         file.c_str(), number);
            continue;
        }
        lines.push_back(std::move(line));
    }
    if (!input.eof()) {
        const int error = errno;
        remember_read_failure(file, error);
        std::fprintf(stderr, "sxml: cannot read the settings file %s: %s\n", file.c_str(),
                     std::strerror(error));
    }
    return lines;
}

}  // namespace host
