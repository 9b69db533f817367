#include "tools/sxml/terminal.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "platform/descriptors.h"
#include "platform/standard_streams.h"

namespace command {

namespace {

constexpr std::string_view BOLD = "\033[1m";
constexpr std::string_view RED = "\033[1;31m";
constexpr std::string_view GREEN = "\033[1;32m";
constexpr std::string_view MAGENTA = "\033[1;35m";
constexpr std::string_view CYAN = "\033[1;36m";
constexpr std::string_view PLAIN = "\033[0m";

constexpr std::string_view PROGRAM = "sxml: ";
constexpr std::array<std::pair<std::string_view, std::string_view>, 2> KINDS = {
    {{"warning: ", MAGENTA}, {"note: ", CYAN}}};

std::string in(std::string_view colour, std::string_view text) {
    return std::string(colour) + std::string(text) + std::string(PLAIN);
}

std::string coloured_line(std::string_view line, bool is_failure) {
    if (line.starts_with(PROGRAM)) {
        // What follows may name anything; only the word directly after counts.
        const std::string_view rest = line.substr(PROGRAM.size());
        for (const auto& [kind, colour] : KINDS) {
            if (!rest.starts_with(kind)) continue;
            return in(BOLD, PROGRAM) + in(colour, kind) + std::string(rest.substr(kind.size()));
        }
        return in(is_failure ? RED : BOLD, PROGRAM) + std::string(rest);
    }
    const std::size_t mark = line.find_first_not_of(' ');
    if (mark != std::string_view::npos && line[mark] == '^') return in(GREEN, line);
    return std::string(line);
}

}  // namespace

std::size_t text_width() {
    constexpr int LEAST = 40;
    constexpr int MOST = 100;
    constexpr int USUAL = 80;
    const int width = platform::terminal_width(platform::STANDARD_OUTPUT).value_or(USUAL);
    return static_cast<std::size_t>(std::clamp(width, LEAST, MOST));
}

bool has_colours() {
    static const bool answer = [] {
        if (!platform::is_terminal(platform::STANDARD_ERROR)) return false;
        const char* refusal = std::getenv("NO_COLOR");
        if (refusal != nullptr && *refusal != '\0') return false;
        const char* kind = std::getenv("TERM");
        return kind != nullptr && std::string_view(kind) != "dumb";
    }();
    return answer;
}

std::string coloured(std::string_view message, bool is_failure) {
    std::string text;
    while (!message.empty()) {
        const std::size_t end = std::min(message.find('\n'), message.size());
        text += coloured_line(message.substr(0, end), is_failure);
        if (end < message.size()) text += '\n';
        message.remove_prefix(std::min(end + 1, message.size()));
    }
    return text;
}

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent) {
    std::string lines;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        if (column > indent && column + 1 + word.size() > width) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!lines.empty() && column > indent) {
            lines += ' ';
            ++column;
        }
        if (column == 0) column = indent;
        lines += word;
        column += word.size();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

}  // namespace command
