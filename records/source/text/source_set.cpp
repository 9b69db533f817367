#include "records/source/text/source_set.h"

#include <algorithm>
#include <utility>

namespace records {

namespace {

constexpr std::size_t MAX_SHOWN_LINE = 256;
constexpr char CTRL_Z = '\x1a';

std::string expand_tabs(std::string_view line, std::size_t width) {
    std::string out;
    for (const char c : line) {
        if (c == '\t') {
            out.append(width - out.size() % width, ' ');
        } else {
            out += c;
        }
    }
    return out;
}

// Control characters (form feeds, NULs) separate words like blanks do.
void blank_controls(std::string& text) {
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' && c != '\t' && c != '\n' && c != CTRL_Z) c = ' ';
    }
}

std::string_view without_trailing_blanks(std::string_view line) {
    while (!line.empty() && line.back() == ' ') line.remove_suffix(1);
    return line;
}

}  // namespace

std::shared_ptr<const SourceFile> make_source_file(std::string name, std::string text,
                                                   int tab_width) {
    auto file = std::make_shared<SourceFile>();
    file->name = std::make_shared<const std::string>(std::move(name));
    file->text = std::move(text);
    blank_controls(file->text);
    const auto width = static_cast<std::size_t>(std::clamp(tab_width, 1, 32));
    std::string_view rest = file->text;
    rest = rest.substr(0, rest.find(CTRL_Z));
    if (rest.starts_with("\xEF\xBB\xBF")) rest.remove_prefix(3);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view line = rest.substr(0, end);
        if (line.find('\t') != std::string_view::npos) {
            line = file->expanded.emplace_back(expand_tabs(line, width));
        }
        file->lines.push_back(without_trailing_blanks(line));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return file;
}

std::uint32_t SourceSet::include(std::shared_ptr<const SourceFile> file, Position from) {
    Inclusion inclusion{std::move(file), nullptr};
    if (from.line > 0) inclusion.from = std::make_shared<const Place>(place(from));
    inclusions_.push_back(std::move(inclusion));
    return static_cast<std::uint32_t>(inclusions_.size() - 1);
}

std::string shown_line(const SourceFile& file, std::size_t line) {
    return std::string(file.lines[line - 1].substr(0, MAX_SHOWN_LINE));
}

Place SourceSet::place(Position position) const {
    if (position.inclusion >= inclusions_.size()) return {};
    const Inclusion& inclusion = inclusions_[position.inclusion];
    Place place;
    place.file = inclusion.file->name;
    place.copied_from = inclusion.from;
    if (position.line == 0 || position.line > inclusion.file->lines.size()) return place;
    place.line = static_cast<int>(position.line);
    place.column = static_cast<int>(position.column);
    place.text = shown_line(*inclusion.file, position.line);
    return place;
}

}  // namespace records
