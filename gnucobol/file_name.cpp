#include "gnucobol/file_name.h"

#include <fnmatch.h>
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <vector>

#include "gnucobol/fcd.h"
#include "host/config.h"

namespace gnucobol {

namespace {

bool program_maps_names() {
    const cob_global* const runtime = cob_get_global_ptr();
    if (runtime == nullptr || runtime->cob_current_module == nullptr) return true;
    return runtime->cob_current_module->flag_filename_mapping != 0;
}

bool is_url(const std::string& name) {
    return strncasecmp(name.c_str(), "http:", 5) == 0;
}

std::optional<std::string> from_environment(std::string name) {
    std::replace(name.begin(), name.end(), '.', '_');
    for (const char* prefix : {"DD_", "dd_", ""}) {
        const char* value = std::getenv((prefix + name).c_str());
        if (value != nullptr && *value != '\0') return value;
    }
    return std::nullopt;
}

std::vector<std::string> parts_of(const std::string& text, const char* separators) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of(separators, start), text.size());
        if (end > start) parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::string mapped_simple_name(const std::string& name) {
    if (const auto value = from_environment(name)) return *value;
    const char* folder = std::getenv("COB_FILE_PATH");
    return folder != nullptr && *folder != '\0' ? std::string(folder) + "/" + name : name;
}

// The first part of a relative path may be a variable's name, with or without a dollar sign; the
// other parts only with one. A first part with a dollar sign and no value goes.
std::string mapped_path(const std::string& path) {
    std::string mapped = path.front() == '/' ? "/" : "";
    bool is_first = path.front() != '/';
    for (const std::string& part : parts_of(path, "/\\")) {
        const bool has_dollar = part.front() == '$';
        const std::optional<std::string> value =
            has_dollar || is_first ? from_environment(part.substr(has_dollar ? 1 : 0))
                                   : std::nullopt;
        const bool is_dropped = is_first && has_dollar && !value;
        if (!mapped.empty() && mapped != "/") mapped += '/';
        if (!is_dropped) mapped += value ? *value : part;
        is_first = false;
    }
    return mapped;
}

bool has_xml_suffix(const std::string& name) {
    return name.size() > 4 && strcasecmp(name.c_str() + name.size() - 4, ".xml") == 0;
}

}  // namespace

std::string mapped_name(const std::string& assigned) {
    if (assigned.empty() || is_url(assigned) || !program_maps_names()) return assigned;
    if (assigned.find_first_of("/\\") == std::string::npos) return mapped_simple_name(assigned);
    return mapped_path(assigned);
}

bool is_xml_file(const std::string& mapped) {
    if (has_xml_suffix(mapped)) return true;
    const char* patterns = host_config_string("SXML_FILES", nullptr);
    if (patterns == nullptr) return false;
    const std::string base = mapped.substr(mapped.rfind('/') + 1);
    const std::vector<std::string> all = parts_of(patterns, ":");
    return std::any_of(all.begin(), all.end(), [&](const std::string& pattern) {
        return fnmatch(pattern.c_str(), mapped.c_str(), 0) == 0 ||
               fnmatch(pattern.c_str(), base.c_str(), 0) == 0;
    });
}

std::string stem_of(const std::string& name) {
    return std::filesystem::path(name).stem().string();
}

}  // namespace gnucobol
