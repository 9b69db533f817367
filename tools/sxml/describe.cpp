#include "tools/sxml/describe.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace command {

namespace {

using Json = nlohmann::ordered_json;

Json describe_option(const CLI::Option& option) {
    Json names = Json::array();
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    const bool takes_value = option.get_items_expected_max() > 0;
    std::string value = takes_value ? option.get_option_text() : "";
    if (takes_value && value.find_first_not_of(' ') == std::string::npos) value = "VALUE";
    return {{"names", names}, {"value", value}, {"help", option.get_description()}};
}

Json describe_positional(const CLI::Option& option) {
    return {{"name", option.get_name(true)},
            {"required", option.get_required()},
            {"help", option.get_description()}};
}

Json describe_command(const CLI::App& command) {
    Json options = Json::array();
    Json positionals = Json::array();
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional()) {
            positionals.push_back(describe_positional(*option));
        } else if (!option->get_group().empty()) {
            options.push_back(describe_option(*option));
        }
    }
    return {{"name", command.get_name()},
            {"help", command.get_description()},
            {"footer", command.get_footer()},
            {"hands_on", command.get_prefix_command()},
            {"options", options},
            {"positionals", positionals}};
}

}  // namespace

std::string describe(const CLI::App& application) {
    Json description = describe_command(application);
    Json& subcommands = description["subcommands"] = Json::array();
    for (const CLI::App* command : application.get_subcommands(
             [](const CLI::App* app) { return !app->get_group().empty(); })) {
        subcommands.push_back(describe_command(*command));
    }
    return description.dump(1);
}

}  // namespace command
