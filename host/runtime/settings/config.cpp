// Configuration: the embedding program's values come before the environment, the environment before
// the settings file, any of them before the declared default. What came out is kept until one of
// them changes; the environment is compared whenever a file is opened.
#include "host/config.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/runtime/memory/immortal.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/settings/setting_values.h"
#include "host/runtime/settings/settings.h"
#include "host/runtime/settings/settings_file.h"
#include "host/runtime/text/text_hash.h"
#include "platform/environment.h"

namespace host {

namespace {

constexpr std::size_t FIRST_SLOTS = 64;
constexpr std::string_view OWN_PREFIX = "SXML_";

// Variables of the host that no module declares. The alias of the first one can be set from a
// shell, which a name with a leading digit cannot.
constexpr const char* COLUMN_CASE = "4GL_COLUMN_CASE";
constexpr const char* COLUMN_CASE_ALIAS = "SXML_COLUMN_CASE";
constexpr const char* MEMORY_LIMIT = "SXML_MEMORY_LIMIT";  // in MiB; 0 or less: no limit
constexpr const char* HOST_VARIABLES[] = {COLUMN_CASE, COLUMN_CASE_ALIAS,  "SXML_PATH",
                                          "SXML_FD",   "SXML_FETCH_LIMIT", MEMORY_LIMIT};
// Those of programs that embed the host: which files are XML, how much is reported, and
// SXML_LAYOUT_name for the layout of each file.
constexpr const char* PROGRAM_VARIABLES[] = {"SXML_FILES", "SXML_VERBOSE"};
constexpr std::string_view LAYOUT_PREFIX = "SXML_LAYOUT_";
// Read from the environment when the process starts: in a settings file they would come too late.
constexpr const char* ENVIRONMENT_ONLY[] = {"SXML_CONFIG", "SXML_TRACE", "SXML_TRACE_FILE",
                                            "SXML_HOST_LEAKS", "SXML_MODULE"};

// A user's value and where it came from.
struct UserValue {
    std::string text;
    std::string origin;  // for messages
};

// A name that was looked up, with what came out.
struct Entry {
    std::string name;
    std::uint64_t hash = 0;
    const HostSetting* setting = nullptr;  // null: nobody declared it
    bool is_resolved = false;
    bool has_text = false;
    bool has_number = false;
    bool is_reported = false;
    std::int32_t number = 0;
    std::string text;
    std::string origin;
    std::optional<std::string> environment;  // its variable, when the entry was resolved
};

struct Config {
    std::vector<Entry*> slots;  // open addressing; a power of two, half of it empty at least
    std::vector<std::unique_ptr<Entry>> entries;
    // The entry looked up last: callers ask for the same one again and again.
    std::atomic<Entry*> latest = nullptr;
    std::map<std::string, const HostSetting*, std::less<>> declared;
    std::map<std::string, std::string, std::less<>> program_values;
    std::map<std::string, UserValue, std::less<>> file_values;
    bool is_file_read = false;
    bool are_names_checked = false;  // those in the settings file
};

Immortal<Config> config;

std::string_view canonical(std::string_view name) {
    return name == COLUMN_CASE_ALIAS ? COLUMN_CASE : name;
}

template <class List>
bool contains(const List& list, std::string_view name) {
    return std::ranges::find(list, name) != std::end(list);
}

void enter(std::vector<Entry*>& slots, Entry* entry) {
    std::size_t slot = entry->hash & (slots.size() - 1);
    while (slots[slot] != nullptr) slot = (slot + 1) & (slots.size() - 1);
    slots[slot] = entry;
}

Entry* add_entry(std::string_view name, std::uint64_t hash) {
    if ((config->entries.size() + 1) * 2 > config->slots.size()) {
        std::vector<Entry*> slots(std::max(FIRST_SLOTS, config->slots.size() * 2));
        for (const auto& present : config->entries) enter(slots, present.get());
        config->slots.swap(slots);
    }
    auto entry = std::make_unique<Entry>();
    entry->name = name;
    entry->hash = hash;
    config->entries.push_back(std::move(entry));
    enter(config->slots, config->entries.back().get());
    return config->entries.back().get();
}

void read_file() {
    const char* file = platform::trusted_environment_variable("SXML_CONFIG");
    if (file == nullptr || *file == '\0') {
        config->is_file_read = true;
        return;
    }
    for (SettingsLine& line : read_settings_file(file)) {
        const std::string origin = std::string(file) + ":" + std::to_string(line.line);
        if (contains(ENVIRONMENT_ONLY, line.name)) {
            std::fprintf(stderr, "sxml: %s: %s is read from the environment only\n", origin.c_str(),
                         line.name.c_str());
            continue;
        }
        config->file_values[std::string(canonical(line.name))] = {std::move(line.value), origin};
    }
    config->is_file_read = true;
}

// Once the declared names are known, other names with their prefix in the settings file are
// mistakes.
void check_file_names() {
    if (config->are_names_checked || config->declared.empty()) return;
    config->are_names_checked = true;
    for (const auto& [name, value] : config->file_values) {
        if (name.starts_with(OWN_PREFIX) && !is_known_setting(name)) {
            std::fprintf(stderr, "sxml: %s: unknown setting %s\n", value.origin.c_str(),
                         name.c_str());
        }
    }
}

const char* environment_value(const std::string& name) {
    if (canonical(name) != COLUMN_CASE) return platform::environment_variable(name.c_str());
    const char* value = platform::environment_variable(COLUMN_CASE);
    return value != nullptr ? value : platform::environment_variable(COLUMN_CASE_ALIAS);
}

std::optional<UserValue> user_value(const Entry& entry) {
    const std::string_view name = canonical(entry.name);
    if (const auto found = config->program_values.find(name);
        found != config->program_values.end()) {
        return UserValue{found->second, "set by the program"};
    }
    if (entry.environment.has_value()) return UserValue{*entry.environment, "environment"};
    const auto found = config->file_values.find(name);
    return found != config->file_values.end() ? std::optional(found->second) : std::nullopt;
}

void report_value(Entry& entry) {
    if (entry.is_reported) return;
    entry.is_reported = true;
    std::fprintf(stderr, "sxml: %s: %s: \"%s\" is not %s\n", entry.origin.c_str(),
                 entry.name.c_str(), entry.text.c_str(), expected_values(entry.setting).c_str());
}

void apply_default(Entry& entry) {
    entry.has_text = false;
    entry.has_number = false;
    if (entry.setting == nullptr) return;
    const HostSettingDefault& fallback = entry.setting->fallback;
    if (!is_text_kind(entry.setting->kind)) {
        entry.has_number = true;
        entry.number = static_cast<std::int32_t>(fallback.number);
    } else if (fallback.text != nullptr) {
        entry.has_text = true;
        entry.text = fallback.text;
    }
}

void resolve(Entry& entry) {
    if (!config->is_file_read) read_file();
    check_file_names();
    const auto declared = config->declared.find(entry.name);
    entry.setting = declared != config->declared.end() ? declared->second : nullptr;
    const char* variable = environment_value(entry.name);
    entry.environment = variable != nullptr ? std::optional<std::string>(variable) : std::nullopt;
    const std::optional<UserValue> value = user_value(entry);
    if (!value.has_value()) return apply_default(entry);
    entry.text = value->text;
    entry.origin = value->origin;
    entry.has_text = true;
    const std::optional<std::int32_t> number = setting_number(entry.setting, entry.text);
    entry.has_number = number.has_value();
    entry.number = number.value_or(0);
    if (!entry.has_number && entry.setting != nullptr && !is_text_kind(entry.setting->kind)) {
        report_value(entry);
        apply_default(entry);
    }
}

Entry& look_up(const char* name) {
    Entry* const latest = config->latest.load(std::memory_order_relaxed);
    const bool is_again = latest != nullptr && std::strcmp(latest->name.c_str(), name) == 0;
    if (is_again && latest->is_resolved) return *latest;
    const std::string_view wanted = name;
    const std::uint64_t hash = hash_text(wanted.data(), wanted.size());
    const std::size_t mask = config->slots.size() - 1;
    Entry* entry = nullptr;
    if (!config->slots.empty()) {
        std::size_t slot = hash & mask;
        while (config->slots[slot] != nullptr &&
               (config->slots[slot]->hash != hash || config->slots[slot]->name != wanted)) {
            slot = (slot + 1) & mask;
        }
        entry = config->slots[slot];
    }
    if (entry == nullptr) entry = add_entry(wanted, hash);
    if (!entry->is_resolved) {
        resolve(*entry);
        entry->is_resolved = true;
    }
    config->latest.store(entry, std::memory_order_relaxed);
    return *entry;
}

// The number of a setting; nothing when it has none. A text in the place of a number is reported.
template <class Number>
Number look_up_number(const char* name, Number fallback) noexcept {
    try {
        Entry& entry = look_up(name);
        if (entry.has_number) return static_cast<Number>(entry.number);
        if (entry.has_text && entry.setting == nullptr) report_value(entry);
    } catch (const std::bad_alloc&) {
        note_memory_failure();
    }
    return fallback;
}

void forget_resolved() {
    for (const auto& entry : config->entries) entry->is_resolved = false;
}

void forget_resolved(std::string_view name) {
    for (const auto& entry : config->entries) {
        if (canonical(entry->name) == name) entry->is_resolved = false;
    }
}

// Without memory for the lookup, the limit is unchanged.
void apply_memory_limit() noexcept {
    constexpr unsigned MEBIBYTE = 20;
    try {
        look_up(MEMORY_LIMIT);
    } catch (const std::bad_alloc&) {
        return note_memory_failure();
    }
    const auto limit = look_up_number(MEMORY_LIMIT, std::int16_t{0});
    limit_memory(limit > 0 ? static_cast<std::uint64_t>(limit) << MEBIBYTE : 0);
}

}  // namespace

bool set_config(const std::string& name, const std::optional<std::string>& value,
                std::string* problem) {
    const std::string own_name(canonical(name));
    const auto declared = config->declared.find(own_name);
    const HostSetting* setting = declared != config->declared.end() ? declared->second : nullptr;
    const bool is_number = setting != nullptr ? !is_text_kind(setting->kind)
                                              : own_name == COLUMN_CASE || own_name == MEMORY_LIMIT;
    if (value.has_value() && is_number && !setting_number(setting, *value).has_value()) {
        if (problem != nullptr) *problem = name + " takes " + expected_values(setting);
        return false;
    }
    if (value.has_value()) {
        config->program_values[own_name] = *value;
    } else {
        config->program_values.erase(own_name);
    }
    forget_resolved(own_name);
    apply_memory_limit();
    return true;
}

void reload_config() {
    config->program_values.clear();
    config->file_values.clear();
    config->is_file_read = false;
    config->are_names_checked = false;
    forget_resolved();
    for (const auto& entry : config->entries) entry->is_reported = false;
}

void refresh_environment() {
    for (const auto& entry : config->entries) {
        const char* now = environment_value(entry->name);
        const bool is_same =
            now != nullptr ? entry->environment == now : !entry->environment.has_value();
        if (!entry->is_resolved || is_same) continue;
        entry->is_resolved = false;
        entry->is_reported = false;
    }
    apply_memory_limit();
}

std::vector<std::string> known_settings() {
    std::vector<std::string> names(std::begin(HOST_VARIABLES), std::end(HOST_VARIABLES));
    for (const auto& [name, setting] : config->declared) names.push_back(name);
    std::ranges::sort(names);
    return names;
}

bool is_known_setting(const std::string& name) {
    return config->declared.contains(name) || contains(HOST_VARIABLES, name) ||
           contains(PROGRAM_VARIABLES, name) || name.starts_with(LAYOUT_PREFIX);
}

}  // namespace host

using namespace host;

int host_register_settings(const HostSetting* table, int count, int /*reserved*/) {
    if (table == nullptr || count < 0) return 0;
    try {
        for (int i = 0; i < count; ++i) config->declared[table[i].name] = &table[i];
        forget_resolved();
        if (!config->is_file_read) read_file();
        check_file_names();
        // Values that a setting cannot take are reported now, not when it is first needed.
        for (int i = 0; i < count; ++i) look_up(table[i].name);
        apply_memory_limit();
    } catch (const std::bad_alloc&) {
        note_memory_failure();
        return 0;
    }
    return count;
}

std::int32_t host_config_flag(const char* name, std::int32_t fallback) {
    return look_up_number(name, fallback);
}

std::int16_t host_config_choice(const char* name, std::int16_t fallback) {
    return look_up_number(name, fallback);
}

std::int16_t host_config_number(const char* name, std::int16_t fallback) {
    return look_up_number(name, fallback);
}

const char* host_config_string(const char* name, const char* fallback) {
    try {
        const Entry& entry = look_up(name);
        if (entry.has_text) return entry.text.c_str();
        return entry.setting != nullptr ? nullptr : fallback;
    } catch (const std::bad_alloc&) {
        note_memory_failure();
        return fallback;
    }
}
