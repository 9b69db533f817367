#include "tools/sxml/options/setting_options.h"

#include "host/config.h"
#include "host/runtime/settings/settings.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

std::string known_settings() {
    std::string list;
    for (const std::string& name : host::known_settings()) {
        list += "\n  ";
        list += name;
    }
    return list;
}

}  // namespace

void apply_settings(const std::vector<std::string>& assignments) {
    for (const std::string& assignment : assignments) {
        const std::size_t equals = assignment.find('=');
        if (equals == std::string::npos) {
            fail_usage("--set " + assignment + ": write it as NAME=VALUE");
        }
        const std::string name = assignment.substr(0, equals);
        if (!host::is_known_setting(name)) {
            // A list has a line for each.
            throw Failure("--set " + conversion::shown_in_line(name) +
                              ": there is no such setting; there are:" + known_settings(),
                          EXIT_USAGE);
        }
        std::string problem;
        if (!host::set_config(name, assignment.substr(equals + 1), &problem)) {
            fail_usage("--set " + assignment + ": " + problem);
        }
    }
}

void force_setting(const std::string& name, const std::string& value) {
    std::string problem;
    if (!host::set_config(name, value, &problem)) fail(name + ": " + problem);
}

CreateStyle create_style() {
    return static_cast<CreateStyle>(host_config_choice("SXML_CREATE_STYLE", 0));
}

std::string setting_text(const std::string& name) {
    const char* text = host_config_string(name.c_str(), nullptr);
    return text == nullptr ? std::string() : std::string(text);
}

}  // namespace command
