#include "tools/sxml/cob/generated_code.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string_view>

#include "records/source/text/text_case.h"
#include "tools/sxml/cob/run.h"

namespace command::cob {

namespace {

namespace fs = std::filesystem;
using records::to_upper;

std::string trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(" \t") + 1 - begin));
}

// The parts between commas that are not in parentheses.
std::vector<std::string> arguments_of(std::string_view text) {
    std::vector<std::string> parts;
    int depth = 0;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const bool is_end = i == text.size() || (text[i] == ',' && depth == 0);
        if (is_end) {
            parts.push_back(trimmed(text.substr(begin, i - begin)));
            begin = i + 1;
        } else if (text[i] == '(') {
            ++depth;
        } else if (text[i] == ')') {
            --depth;
        }
    }
    return parts;
}

// The text between the parenthesis at `open` and the one that closes it.
std::string_view in_parentheses(std::string_view text, std::size_t open) {
    int depth = 0;
    for (std::size_t i = open; i < text.size(); ++i) {
        if (text[i] == '(') ++depth;
        if (text[i] == ')' && --depth == 0) return text.substr(open + 1, i - open - 1);
    }
    return {};
}

std::string between(const std::string& line, char open, char close) {
    const std::size_t begin = line.find(open);
    const std::size_t end = line.rfind(close);
    if (begin == std::string::npos || end == std::string::npos || end < begin) return {};
    return line.substr(begin + 1, end - begin - 1);
}

// "10", for cobc 3.2 "10LL".
std::optional<std::int64_t> number_of(std::string text) {
    if (text.ends_with("LL")) text.resize(text.size() - 2);
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    return std::stoll(text);
}

// The value of sums of numbers and of products of two, as in "54 + 4 * 1".
std::optional<std::int64_t> value_of(const std::string& text) {
    std::int64_t sum = 0;
    std::istringstream terms(text);
    for (std::string term; std::getline(terms, term, '+');) {
        const std::size_t times = term.find('*');
        const auto first = number_of(trimmed(term.substr(0, times)));
        const auto second = times == std::string::npos ? std::optional<std::int64_t>(1)
                                                       : number_of(trimmed(term.substr(times + 1)));
        if (!first || !second) return std::nullopt;
        sum += *first * *second;
    }
    return sum;
}

// The offset in "b_30 + 53".
std::optional<std::int64_t> offset_of(const std::string& place) {
    if (!place.starts_with("b_")) return std::nullopt;
    const std::size_t plus = place.find('+');
    return plus == std::string::npos ? 0 : value_of(place.substr(plus + 1));
}

}  // namespace

GeneratedCode::GeneratedCode(const std::string& file) {
    const fs::path path(file);
    for (const auto& entry : fs::directory_iterator(path.parent_path())) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(path.filename().string())) continue;
        std::string text = text_of(entry.path().string());
        if (entry.path() == path) {
            code_ = std::move(text);
            continue;
        }
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) take_line(line);
    }
}

void GeneratedCode::take_line(const std::string& line) {
    if (line.find("cob_field_attr a_") != std::string::npos) return take_attributes(line);
    if (line.find("cob_field f_") != std::string::npos) take_item(line);
}

// static const cob_field_attr a_2 = {0x11, 4, 0, 0x0821, NULL};
void GeneratedCode::take_attributes(const std::string& line) {
    const std::size_t begin = line.find("a_");
    const std::string name = line.substr(begin, line.find_first_of(" \t=", begin) - begin);
    const std::vector<std::string> parts = arguments_of(between(line, '{', '}'));
    if (parts.size() < 4) return;
    attributes_[name] = {static_cast<unsigned>(std::strtoul(parts[0].c_str(), nullptr, 0)),
                         static_cast<int>(std::strtol(parts[2].c_str(), nullptr, 0)),
                         static_cast<unsigned>(std::strtoul(parts[3].c_str(), nullptr, 0))};
}

// static cob_field f_8 = {65, b_30 + 2, &a_1}; /* ARTICLE */
void GeneratedCode::take_item(const std::string& line) {
    const std::size_t begin = line.find("f_");
    const std::string name = line.substr(begin, line.find_first_of(" \t=", begin) - begin);
    std::vector<std::string> parts = arguments_of(between(line, '{', '}'));
    if (parts.size() < 3) return;
    items_[name] = std::move(parts);
    const std::size_t comment = line.rfind("/* ");
    const std::size_t end = line.rfind(" */");
    if (comment == std::string::npos || end == std::string::npos || end < comment) return;
    names_[name] = to_upper(line.substr(comment + 3, end - comment - 3));
}

GeneratedItem GeneratedCode::item_of(const std::string& size, const std::string& place,
                                     const std::string& attributes) const {
    GeneratedItem item;
    item.offset = offset_of(place);
    item.size = value_of(size);
    const auto found = attributes_.find(attributes.substr(attributes.starts_with("&") ? 1 : 0));
    if (found == attributes_.end()) return {};
    item.type = found->second.type;
    item.scale = found->second.scale;
    item.flags = found->second.flags;
    return item;
}

// "&f_8", "COB_SET_FLD(f0, 1, b_30 + 53, &a_1)" or, of EXTERNAL items, "COB_SET_DATA (f_8, b_30)"
GeneratedItem GeneratedCode::operand_of(const std::string& text) const {
    if (text.starts_with("&")) {
        const auto found = items_.find(text.substr(1, text.find(')') - 1));
        if (found == items_.end()) return {};
        return item_of(found->second[0], found->second[1], found->second[2]);
    }
    const std::size_t open = text.find('(');
    if (open == std::string::npos) return {};
    const std::vector<std::string> parts = arguments_of(in_parentheses(text, open));
    if (text.starts_with("COB_SET_DATA") && parts.size() == 2) {
        const auto found = items_.find(parts[0]);
        if (found == items_.end()) return {};
        return item_of(found->second[0], parts[1], found->second[2]);
    }
    if (!text.starts_with("COB_SET_FLD") || parts.size() != 4) return {};
    return item_of(parts[1], parts[2], parts[3]);
}

std::vector<GeneratedItem> GeneratedCode::parameters(std::string_view after) const {
    std::vector<GeneratedItem> items;
    for (std::size_t at = code_.find(after); at != std::string::npos;
         at = code_.find(after, at + 1)) {
        const std::size_t begin = at + after.size();
        items.push_back(operand_of(code_.substr(begin, code_.find(';', begin) - begin)));
    }
    return items;
}

std::vector<GeneratedFile> GeneratedCode::files() const {
    constexpr unsigned SPECIAL = 0x30;  // COB_SELECT_STDIN, COB_SELECT_STDOUT
    std::vector<GeneratedFile> files;
    std::string program;
    std::istringstream lines(code_);
    for (std::string line; std::getline(lines, line);) {
        const auto value = [&] {
            return trimmed(line.substr(line.find('=') + 1, line.rfind(';') - line.find('=') - 1));
        };
        if (line.starts_with("/* PROGRAM-ID '") || line.starts_with("/* FUNCTION-ID '")) {
            program = to_upper(between(line, '\'', '\''));
        } else if (line.find("->select_name = ") != std::string::npos) {
            files.push_back({program, to_upper(between(line, '"', '"')), true, false});
        } else if (files.empty()) {
            continue;
        } else if (line.find("->organization = ") != std::string::npos) {
            constexpr int LINE_SEQUENTIAL = 1;
            files.back().is_sequential = std::atoi(value().c_str()) <= LINE_SEQUENTIAL;
        } else if (line.find("->flag_select_features = ") != std::string::npos) {
            files.back().is_special = (std::strtoul(value().c_str(), nullptr, 0) & SPECIAL) != 0;
        }
    }
    return files;
}

bool GeneratedCode::has_ebcdic_signs() const {
    return code_.find("module->ebcdic_sign = 1;") != std::string::npos ||
           code_.find("module->display_sign = 1;") != std::string::npos;
}

}  // namespace command::cob
