#include "tools/sxml/help_text.h"

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>

#include "tools/sxml/terminal.h"

namespace command {

namespace {

constexpr std::size_t NAME_COLUMNS = 26;        // of options
constexpr std::size_t SUBCOMMAND_COLUMNS = 13;  // of the names of subcommands

// A name, and the text about it in a column of its own: below the name when that is long.
std::string entry(const std::string& name, const std::string& text, std::size_t column) {
    const std::string start = "  " + name;
    const bool has_room = start.size() + 2 <= column;
    return start +
           (has_room ? std::string(column - start.size(), ' ') : "\n" + std::string(column, ' ')) +
           wrapped(text, text_width(), column) + "\n";
}

class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_description(const CLI::App* app) const override {
        return wrapped(app->get_description(), text_width(), 0) + "\n";
    }
    std::string make_usage(const CLI::App* app, std::string name) const override {
        std::string usage = CLI::Formatter::make_usage(app, std::move(name));
        while (usage.ends_with('\n')) usage.pop_back();
        constexpr std::size_t AFTER_USAGE = 7;
        return wrapped(usage, text_width(), AFTER_USAGE) + "\n";
    }
    std::string make_option(const CLI::Option* option, bool is_positional) const override {
        const std::string& value = option->get_option_text();
        const bool has_value = value.find_first_not_of(' ') != std::string::npos;
        return entry(make_option_name(option, is_positional) + (has_value ? " " + value : ""),
                     option->get_description(), NAME_COLUMNS);
    }
    // Examples and tables, which are indented, stand as they are.
    std::string make_footer(const CLI::App* app) const override {
        std::istringstream lines(app->get_footer());
        std::string footer;
        for (std::string line; std::getline(lines, line);) {
            footer += (line.starts_with(' ') ? line : wrapped(line, text_width(), 0)) + "\n";
        }
        return footer;
    }
    std::string make_subcommand(const CLI::App* command) const override {
        return entry(command->get_name(), command->get_description(), SUBCOMMAND_COLUMNS);
    }
};

}  // namespace

std::shared_ptr<CLI::FormatterBase> help_formatter() {
    return std::make_shared<HelpFormatter>();
}

}  // namespace command
