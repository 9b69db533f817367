#include "tools/sxml/cob/header.h"

#include <algorithm>

namespace command::cob {

namespace {

// A text as a literal of C, in lines that every compiler takes.
std::string literal(const std::string& text) {
    constexpr std::size_t MOST_IN_LINE = 400;
    std::string result = "\"";
    std::size_t in_line = 0;
    for (const char c : text) {
        if (c == '\n') {
            result += "\\n";
        } else if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (c == '?') {
            result += "\\?";
        } else {
            result += c;
        }
        if (++in_line % MOST_IN_LINE == 0) result += "\"\n\"";
    }
    return result + "\"";
}

std::string number(std::size_t value) {
    return std::to_string(value);
}

template <class Element, class ToText>
void write_array(const std::string& type, const std::string& name,
                 const std::vector<Element>& elements, const ToText& to_text, std::string& out) {
    out += "static const struct " + type + " " + name + "[] = {\n";
    for (const Element& element : elements) out += "{" + to_text(element) + "},\n";
    // An array has an element at least.
    out += "{0}};\n";
}

void write_source(const DescribedSource& source, std::size_t index, std::string& out) {
    const std::string suffix = "_" + number(index);
    write_array(
        "sxml_cob_program", "sxml_cob_programs" + suffix, source.programs,
        [](const Program& program) {
            return literal(program.name) + ", " + std::to_string(program.container);
        },
        out);
    write_array(
        "sxml_cob_file", "sxml_cob_files" + suffix, source.files,
        [](const DescribedFile& file) {
            return literal(file.program) + ", " + literal(file.name) + ", " +
                   (file.description.empty() ? "0" : literal(file.description)) + ", " +
                   literal(file.element) + ", " + literal(file.variable_record) + ", " +
                   literal(file.plain_records) + ", " + (file.has_reports ? "1" : "0");
        },
        out);
    const std::vector<std::pair<std::string, std::string>> records(source.records.begin(),
                                                                   source.records.end());
    write_array(
        "sxml_cob_record", "sxml_cob_records" + suffix, records,
        [](const auto& record) {
            return literal("&" + record.first) + ", " + literal(record.second);
        },
        out);
}

}  // namespace

std::string header_text(const std::vector<DescribedSource>& sources,
                        const std::string& common_header) {
    std::string out = "#include " + literal(common_header) + "\n";
    for (std::size_t i = 0; i < sources.size(); ++i) write_source(sources[i], i, out);
    out += "static const struct sxml_cob_source sxml_cob_sources[] = {\n";
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const std::string suffix = "_" + number(i);
        out += "{" + literal(sources[i].file) + ", sxml_cob_programs" + suffix + ", " +
               number(sources[i].programs.size()) + ", sxml_cob_files" + suffix + ", " +
               number(sources[i].files.size()) + ", sxml_cob_records" + suffix + ", " +
               number(sources[i].records.size()) + "},\n";
    }
    out += "{0}};\n";
    return out;
}

}  // namespace command::cob
