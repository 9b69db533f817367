#include "gnucobol/file_name.h"

#include <fnmatch.h>
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <vector>

#include "conversion/documents/document_source.h"
#include "gnucobol/runtime.h"
#include "gnucobol/runtime_settings.h"
#include "gnucobol/trusted_settings.h"

namespace gnucobol {

std::string assigned_name(const cob_file& file) {
    if (file.assign == nullptr || file.assign->data == nullptr) return {};
    const char* const text = reinterpret_cast<const char*>(file.assign->data);
    std::string name(text, strnlen(text, file.assign->size));
    name.erase(name.find_last_not_of(' ') + 1);
    return name;
}

namespace {

bool program_maps_names() {
    const cob_global* const runtime = cob_get_global_ptr();
    if (runtime == nullptr || runtime->cob_current_module == nullptr) return true;
    return runtime->cob_current_module->flag_filename_mapping != 0;
}

bool is_separator(char c) {
    return c == '/' || c == '\\';
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

// "-F name" and "-D name" are the name as it stands.
bool is_marked(const std::string& name) {
    return name.size() > 2 && name[0] == '-' &&
           (std::toupper(name[1]) == 'F' || std::toupper(name[1]) == 'D') &&
           std::isspace(static_cast<unsigned char>(name[2])) != 0;
}

std::string without_mark(const std::string& name) {
    std::size_t start = 3;
    while (start < name.size() && std::isspace(static_cast<unsigned char>(name[start])) != 0) {
        ++start;
    }
    return name.substr(start);
}

// Maps one name as the runtime does, including its peculiarities: a program must find the same
// file, whether the runtime or the adapter opens it.
class NameMapping {
  public:
    explicit NameMapping(const std::string& assigned)
        : assigned_(assigned), settings_(file_settings()) {}

    std::string mapped() const {
        if (is_marked(assigned_)) return without_mark(assigned_);
        const bool is_path = std::any_of(assigned_.begin(), assigned_.end(), is_separator);
        return is_path ? mapped_path() : mapped_simple_name();
    }

  private:
    // Names that begin with a full stop are never looked up, and nothing is in a name that begins
    // with a hyphen or a digit.
    std::optional<std::string> from_environment(std::string name) const {
        const char first = assigned_.front();
        if (name.starts_with('.') || first == '-' || (first >= '0' && first <= '9')) {
            return std::nullopt;
        }
        for (char& c : name) {
            const bool is_mangled = settings_.mangles_names
                                        ? std::isalnum(static_cast<unsigned char>(c)) == 0
                                        : c == '.';
            if (is_mangled) c = '_';
        }
        for (const char* prefix : {"DD_", "dd_", ""}) {
            const char* value = std::getenv((prefix + name).c_str());
            if (value != nullptr && *value != '\0') return value;
        }
        return std::nullopt;
    }

    std::string in_folder(const std::string& name) const {
        return settings_.folder.empty() ? name : settings_.folder + "/" + name;
    }

    std::string mapped_simple_name() const {
        const bool has_dollar = assigned_.front() == '$';
        const auto value = from_environment(assigned_.substr(has_dollar ? 1 : 0));
        if (!value) return in_folder(assigned_);
        // In release 3.1, after a dollar sign the second character tells whether the path is
        // absolute.
        constexpr bool IS_OLD = __LIBCOB_RELEASE < 30200;
        const std::size_t told_by = IS_OLD && has_dollar ? 1 : 0;
        if (value->size() > told_by && is_separator((*value)[told_by])) return *value;
        return is_marked(*value) ? without_mark(*value) : in_folder(*value);
    }

    // The first part of a relative path may be a variable's name, with or without a dollar sign;
    // the other parts only with one. A part with a dollar sign and no value goes, unless it is the
    // last. No separator comes after a part, other than the first, that has a dollar sign.
    std::string mapped_path() const {
        const bool is_absolute = is_separator(assigned_.front());
        const std::vector<std::string> parts = parts_of(assigned_, "/\\");
        std::string path = is_absolute ? "/" : "";
        bool is_joined = is_absolute;  // no separator comes next
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const bool is_first = i == 0 && !is_absolute;
            const bool has_dollar = parts[i].front() == '$';
            const std::string name = parts[i].substr(has_dollar ? 1 : 0);
            const auto value = has_dollar || is_first ? from_environment(name) : std::nullopt;
            const bool is_dropped = has_dollar && !value && (is_first || i + 1 < parts.size());
            if (!is_first && !is_joined) path += '/';
            if (!is_dropped) path += value ? *value : parts[i];
            is_joined = has_dollar && (!is_first || !value);
        }
        return path.empty() || !is_separator(path.front()) ? in_folder(path) : path;
    }

    const std::string& assigned_;
    FileSettings settings_;
};

bool has_xml_suffix(const std::string& name) {
    return name.size() > 4 && strcasecmp(name.c_str() + name.size() - 4, ".xml") == 0;
}

}  // namespace

std::string mapped_name(const std::string& assigned) {
    if (assigned.empty() || conversion::is_url(assigned) || !program_maps_names()) return assigned;
    return NameMapping(assigned).mapped();
}

bool is_xml_file(const std::string& mapped) {
    if (has_xml_suffix(mapped)) return true;
    const std::string patterns = trusted_setting("SXML_FILES");
    if (patterns.empty()) return false;
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
