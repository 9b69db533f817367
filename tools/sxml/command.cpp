#include "tools/sxml/command.h"

#include <CLI/CLI.hpp>
#include <charconv>

namespace command {

namespace {

bool read_number(const std::string& text, std::uint64_t& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

}  // namespace

Option Option::value(const std::string& name) const {
    return Option(option_->option_text(name));
}

Option Option::required() const {
    return Option(option_->required());
}

Option Option::one_of(const std::vector<std::string>& names) const {
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : "|") + name;
    return Option(option_->check(CLI::IsMember(names))).value(all);
}

Option Option::repeated() const {
    return Option(option_->allow_extra_args(false));
}

Option Option::excludes(Option other) const {
    return Option(option_->excludes(other.option_));
}

Option Option::excludes(const std::string& name) const {
    return Option(option_->excludes(name));
}

Option Option::needs(Option other) const {
    return Option(option_->needs(other.option_));
}

Command Command::add_subcommand(const std::string& name, const std::string& help) const {
    return Command(command_->add_subcommand(name, help));
}

Command Command::add_hidden_subcommand(const std::string& name, const std::string& help) const {
    return Command(command_->add_subcommand(name, help)->group(""));
}

Option Command::add_argument(const std::string& name, std::string& variable,
                             const std::string& help) const {
    return add_option(name, variable, help).required().value(" ");
}

Option Command::add_option(const std::string& names, std::string& variable,
                           const std::string& help) const {
    return Option(command_->add_option(names, variable, help));
}

Option Command::add_option(const std::string& names, std::vector<std::string>& variable,
                           const std::string& help) const {
    return Option(command_->add_option(names, variable, help));
}

Option Command::add_option(const std::string& names,
                           const std::function<void(const std::string&)>& take,
                           const std::string& help) const {
    return Option(command_->add_option_function<std::string>(names, take, help));
}

Option Command::add_list(const std::string& names,
                         const std::function<void(const std::vector<std::string>&)>& take,
                         const std::string& help) const {
    return Option(command_->add_option_function<std::vector<std::string>>(names, take, help));
}

Option Command::add_number(const std::string& names, std::uint64_t& variable, NumberRange range,
                           const std::string& help) const {
    return add_number(
        names, [&variable](std::uint64_t number) { variable = number; }, range, help);
}

Option Command::add_number(const std::string& names, const std::function<void(std::uint64_t)>& take,
                           NumberRange range, const std::string& help) const {
    const auto take_text = [take](const std::string& text) {
        std::uint64_t number = 0;
        if (read_number(text, number)) take(number);
    };
    const auto problem_with = [range](const std::string& text) -> std::string {
        std::uint64_t number = 0;
        if (read_number(text, number) && number >= range.smallest && number <= range.largest) {
            return {};
        }
        return text + " is not a whole number from " + std::to_string(range.smallest) + " to " +
               std::to_string(range.largest);
    };
    return Option(command_->add_option_function<std::string>(names, take_text, help)
                      ->check(problem_with))
        .value("N");
}

Option Command::add_flag(const std::string& names, bool& variable, const std::string& help) const {
    return Option(command_->add_flag(names, variable, help));
}

Option Command::add_flag(const std::string& names, const std::function<void()>& take,
                         const std::string& help) const {
    return Option(command_->add_flag_callback(names, take, help));
}

void Command::hand_words_on() const {
    command_->prefix_command();
}

std::vector<std::string> Command::words() const {
    return command_->remaining();
}

void Command::footer(const std::string& text) const {
    command_->footer(text);
}

void Command::run(const std::function<void()>& work) const {
    command_->callback(work);
}

}  // namespace command
