// What a subcommand takes: its options and arguments, their help, and what it does. These few
// functions are all that the subcommands see of the library that parses command lines, which takes
// long to compile.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace command {

// An option, an argument or a flag that has been added. A handle, which may be copied; the command
// line owns what it stands for. Each function gives the handle itself.
class Option {
  public:
    explicit Option(CLI::Option* option) : option_(option) {}

    // How help writes the value; " " for an argument, whose name says it.
    Option value(const std::string& name) const;
    Option required() const;
    // The value is one of these, and help lists them.
    Option one_of(const std::vector<std::string>& names) const;
    // A list takes its values one by one: `-I a -I b`, never `-I a b`.
    Option repeated() const;
    // Not together with the other one.
    Option excludes(Option other) const;
    Option excludes(const std::string& name) const;
    // Only together with the other one.
    Option needs(Option other) const;

  private:
    CLI::Option* option_;
};

// The whole numbers that an option takes.
struct NumberRange {
    std::uint64_t smallest = 0;
    std::uint64_t largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
};

// A subcommand, or the application that has them all. A handle, which may be copied. Variables that
// take values must live until the command line has been parsed; names are as in "-o,--output", or
// without hyphens those of arguments.
class Command {
  public:
    explicit Command(CLI::App* command) : command_(command) {}

    Command add_subcommand(const std::string& name, const std::string& help) const;
    // A subcommand that help does not list.
    Command add_hidden_subcommand(const std::string& name, const std::string& help) const;

    // An argument that must be given.
    Option add_argument(const std::string& name, std::string& variable,
                        const std::string& help) const;
    Option add_option(const std::string& names, std::string& variable,
                      const std::string& help) const;
    Option add_option(const std::string& names, std::vector<std::string>& variable,
                      const std::string& help) const;
    // What `take` throws ends the run.
    Option add_option(const std::string& names, const std::function<void(const std::string&)>& take,
                      const std::string& help) const;
    Option add_list(const std::string& names,
                    const std::function<void(const std::vector<std::string>&)>& take,
                    const std::string& help) const;
    Option add_number(const std::string& names, std::uint64_t& variable, NumberRange range,
                      const std::string& help) const;
    Option add_number(const std::string& names, const std::function<void(std::uint64_t)>& take,
                      NumberRange range, const std::string& help) const;
    Option add_flag(const std::string& names, bool& variable, const std::string& help) const;
    Option add_flag(const std::string& names, const std::function<void()>& take,
                    const std::string& help) const;

    // The words are another program's: none is understood here.
    void hand_words_on() const;
    // Those words. Only once the command line has been parsed.
    std::vector<std::string> words() const;
    // What help ends with; lines that are indented stand as they are.
    void footer(const std::string& text) const;
    // Runs as the last step of the parse, and throws Failure when it cannot do its work.
    void run(const std::function<void()>& work) const;

  private:
    CLI::App* command_;
};

}  // namespace command
