#include "tools/sxml/documents/tree_printer.h"

#include <strings.h>

#include <array>
#include <cstdio>

#include "conversion/texts/utf8.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

constexpr std::size_t INDENT = 2;
// Deeper elements are shown with their level instead of more indentation, so that the output grows
// with the document and not with the square of its depth.
constexpr std::size_t DEEPEST_INDENTED = 40;
// Of a longer text only so many bytes are shown.
constexpr std::size_t LONGEST_TEXT = 80;
constexpr std::size_t SHOWN_OF_LONG_TEXT = 60;
constexpr std::size_t BUFFER = std::size_t{1} << 16;

// The beginning of a long text, not cut within a character.
std::string_view beginning(std::string_view text, bool latin1) {
    constexpr std::size_t MOST = SHOWN_OF_LONG_TEXT;
    return text.substr(0, latin1 ? MOST : conversion::whole_characters(text, MOST));
}

void add_escape(std::string& line, unsigned code) {
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "\\x%02X", code);
    line += escape.data();
}

// A character that does something to a terminal, or that a quoted text writes otherwise.
bool add_special(std::string& line, unsigned code) {
    switch (code) {
        case '\n':
            line += "\\n";
            return true;
        case '\r':
            line += "\\r";
            return true;
        case '\t':
            line += "\\t";
            return true;
        case '"':
            line += "\\\"";
            return true;
        case '\\':
            line += "\\\\";
            return true;
        default:
            break;
    }
    if (code >= 0x20 && (code < 0x7F || code > 0x9F)) return false;
    add_escape(line, code);
    return true;
}

}  // namespace

TreePrinter::TreePrinter(const ParsedDocument& document, Texts texts)
    : output_(value_of(conversion::ByteSink::open("-"))),
      api_(document.api()),
      root_(api_.xml_parser_root(document.parser())),
      shorten_(texts == Texts::shortened) {
    const char* encoding = api_.xml_parser_encoding(document.parser());
    latin1_ = encoding != nullptr && strcasecmp(encoding, "ISO-8859-1") == 0;
}

void TreePrinter::print() {
    std::size_t level = 0;
    std::uint32_t element = root_;
    while (element != 0) {
        print_element(element, level);
        std::uint32_t next = api_.xml_first_child(element);
        if (next != 0) ++level;
        while (next == 0 && element != root_) {
            next = api_.xml_next_sibling(element);
            if (next != 0) break;
            element = api_.xml_parent(element);
            --level;
        }
        element = next;
    }
    flush();
    check(output_.close());
}

void TreePrinter::print_element(std::uint32_t element, std::size_t level) {
    const bool deep = level > DEEPEST_INDENTED;
    lines_.append(INDENT * (deep ? DEEPEST_INDENTED : level), ' ');
    if (deep) lines_ += "[level " + std::to_string(level) + "] ";
    add_text(api_.xml_element_name(element));
    add_numbers(element);
    add_attributes(element);
    std::uint64_t length = 0;
    const char* value = api_.xml_element_value(element, &length);
    if (value != nullptr && length > 0) {
        lines_ += ": ";
        add_quoted({value, length});
    }
    lines_ += '\n';
    if (lines_.size() >= BUFFER) flush();
}

void TreePrinter::add_numbers(std::uint32_t element) {
    const std::int32_t last = api_.xml_last_index(element);
    if (last < 0) return;
    for (std::int32_t i = 0; i <= last; ++i) {
        lines_ += i == 0 ? '(' : ',';
        lines_ += std::to_string(api_.xml_element_index(element, i));
    }
    lines_ += ')';
}

void TreePrinter::add_attributes(std::uint32_t element) {
    const std::uint32_t count = api_.xml_attribute_count(element);
    for (std::uint32_t i = 0; i < count; ++i) {
        lines_ += ' ';
        add_text(api_.xml_attribute_name(element, i));
        lines_ += '=';
        add_quoted(api_.xml_attribute_value(element, i));
    }
}

void TreePrinter::add_quoted(std::string_view text) {
    const bool cut = shorten_ && text.size() > LONGEST_TEXT;
    lines_ += '"';
    add_text(cut ? beginning(text, latin1_) : text);
    lines_ += '"';
    if (cut) lines_ += "... (" + std::to_string(text.size()) + " bytes)";
}

void TreePrinter::add_text(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned byte = static_cast<unsigned char>(text[i]);
        // In UTF-8 the control characters from U+0080 on are this byte and one more.
        const bool pair = !latin1_ && byte == 0xC2 && i + 1 < text.size();
        const unsigned code = pair ? static_cast<unsigned char>(text[i + 1]) : byte;
        if ((latin1_ || byte < 0x80 || pair) && add_special(lines_, code)) {
            i += pair ? 1 : 0;
        } else if (latin1_ && byte >= 0x80) {
            conversion::append_utf8(byte, lines_);
        } else {
            lines_ += text[i];
        }
    }
}

void TreePrinter::flush() {
    check(output_.write(lines_.data(), lines_.size()));
    lines_.clear();
}

}  // namespace command
