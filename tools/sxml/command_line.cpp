#include "tools/sxml/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

#include "tools/sxml/commands.h"
#include "tools/sxml/describe.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/help_text.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/version.h"

namespace command {

namespace {

constexpr const char* VERSION_FLAG = "-V,--version";
constexpr const char* VERSION_HELP = "show the version and end";
constexpr const char* HELP_FLAG = "-h,--help";
constexpr const char* HELP_HELP = "show this help and end";

// How many letters must be changed, added or left out to get from one word to another.
std::size_t distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row.back();
}

// "; did you mean X?" for the known word that is most like the one given; empty when none is.
std::string suggestion(const std::string& given, const std::vector<std::string>& known) {
    const auto unlike = [&given](const std::string& word) { return distance(given, word); };
    const auto best = std::min_element(
        known.begin(), known.end(),
        [&](const std::string& a, const std::string& b) { return unlike(a) < unlike(b); });
    const std::size_t allowed = std::max<std::size_t>(1, given.size() / 3);
    if (best == known.end() || unlike(*best) > allowed) return {};
    return "; did you mean " + *best + "?";
}

std::vector<std::string> subcommand_names(const CLI::App& application) {
    std::vector<std::string> names;
    const auto all = [](const CLI::App*) { return true; };
    for (const CLI::App* command : application.get_subcommands(all)) {
        names.push_back(command->get_name());
    }
    return names;
}

std::vector<std::string> option_names(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
}

[[noreturn]] void fail_unknown_subcommand(const CLI::App& application, const std::string& name) {
    fail_usage("there is no subcommand " + name + suggestion(name, subcommand_names(application)) +
               "; `sxml --help` lists them");
}

// What is wrong with the arguments of a command, in the parser's words where these are good enough.
// An unknown argument is reported before a missing one, which may be the same mistake.
std::string problem_with(const CLI::App& command, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = command.remaining(true);
    const bool is_about_words = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr ||
                                dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (unknown.empty() || !is_about_words) return error.what();
    const std::string& word = unknown.front();
    if (!word.starts_with('-') || word == "-") return word + " is one word too many";
    return "there is no option " + word + suggestion(word, option_names(command));
}

[[noreturn]] void fail_command_line(const CLI::App& application, const CLI::ParseError& error) {
    const std::vector<CLI::App*> chosen = application.get_subcommands();
    if (!chosen.empty()) {
        const std::string& name = chosen.back()->get_name();
        fail_usage(name + ": " + problem_with(*chosen.back(), error) + "; `sxml " + name +
                   " --help` shows the options");
    }
    const std::vector<std::string> unknown = application.remaining();
    if (!unknown.empty() && !unknown.front().starts_with('-')) {
        fail_unknown_subcommand(application, unknown.front());
    }
    fail_usage(problem_with(application, error) + "; `sxml --help` lists the subcommands");
}

void add_help_command(CLI::App& application) {
    CLI::App* command = application.add_subcommand("help", "show the help of a subcommand");
    auto name = std::make_shared<std::string>();
    command->add_option("SUBCOMMAND", *name, "the subcommand; without it all are listed")
        ->option_text(" ");
    command->callback([&application, name] {
        if (name->empty()) {
            return write_output(
                "-", application.get_formatter()->make_help(&application, application.get_name(),
                                                            CLI::AppFormatMode::Normal));
        }
        for (const CLI::App* wanted : application.get_subcommands({})) {
            if (!wanted->check_name(*name)) continue;
            return write_output("-", wanted->help(application.get_name()));
        }
        fail_unknown_subcommand(application, *name);
    });
}

struct Subcommand {
    std::string_view name;
    void (*add)(Command application);
};
constexpr Subcommand SUBCOMMANDS[] = {
    {"to-xml", add_to_xml_command},     {"from-xml", add_from_xml_command},
    {"layout", add_layout_command},     {"compile", add_compile_command},
    {"dtd", add_dtd_command},           {"dump", add_dump_command},
    {"schema", add_schema_command},     {"cob", add_cob_command},
    {"cob-cc", add_cob_cc_command},     {"rewrite", add_rewrite_command},
    {"tree", add_tree_command},         {"split", add_split_command},
    {"join", add_join_command},         {"check", add_check_command},
    {"copybook", add_copybook_command},
};

// Adds the subcommand that the first word names, or else all: adding the others would take a third
// of the start time.
void add_commands(CLI::App& application, std::string_view first) {
    const bool is_named = std::any_of(std::begin(SUBCOMMANDS), std::end(SUBCOMMANDS),
                                      [&](const Subcommand& one) { return one.name == first; });
    for (const Subcommand& one : SUBCOMMANDS) {
        if (!is_named || one.name == first) one.add(Command(&application));
    }
    if (!is_named) add_help_command(application);
}

// An empty value is an unset shell variable, never intended.
std::string refuse_empty(const std::string& value) {
    return value.empty() ? "the value is empty (a variable of the shell that is not set?)" : "";
}

// What all subcommands have in common, except those that pass their arguments on.
void complete_command(CLI::App& command) {
    command.set_help_flag(HELP_FLAG, HELP_HELP);
    if (!command.get_prefix_command()) {
        command.set_version_flag(VERSION_FLAG, version_text, VERSION_HELP);
    }
    for (CLI::Option* option : command.get_options({})) {
        if (option->get_items_expected_max() > 0) option->check(refuse_empty);
        if (option->get_required()) option->description(option->get_description() + " (required)");
    }
}

}  // namespace

void run_command_line(int argc, char** argv) {
    CLI::App application{"Turns COBOL record files into XML documents and back.", "sxml"};
    application.formatter(help_formatter());
    application.allow_windows_style_options(false);  // "/data/x.xml" is a file everywhere
    application
        .add_flag_callback("--describe",
                           [&application] {
                               write_output("-", describe(application) + "\n");
                               throw CLI::Success();
                           })
        ->group("");  // hidden: for the build
    application.require_subcommand(1);
    application.footer(
        "`sxml SUBCOMMAND --help` shows the options of a subcommand and an example.");
    const std::string_view first = argc > 1 ? argv[1] : "";
    const bool asks_version = argc == 2 && (first == "--version" || first == "-V");
    if (!asks_version) add_commands(application, first);
    complete_command(application);
    for (CLI::App* command : application.get_subcommands({})) complete_command(*command);
    try {
        application.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        write_output("-", application.help());
    } catch (const CLI::CallForVersion& version) {
        write_output("-", version.what() + std::string("\n"));
    } catch (const CLI::Success&) {  // everything is done
    } catch (const CLI::ParseError& error) {
        fail_command_line(application, error);
    }
}

}  // namespace command
