// Writing an element with everything below it as XML.
#include <algorithm>
#include <array>
#include <string_view>

#include "fsi/xml/elements/element.h"
#include "fsi/xml/elements/text_output.h"
#include "host/arrays.h"
#include "host/encoding.h"

namespace {

constexpr std::uint8_t ESCAPED = XML_TEXT_ESCAPE | XML_TEXT_TRIM;
constexpr std::uint64_t LEVEL_INDENT = 2;
constexpr std::uint64_t CONTINUATION_INDENT = 5;

// The widest indentation. Without a limit a document nested n levels deep would be written as some
// n * n bytes of blanks.
constexpr auto blanks = [] {
    std::array<char, XML_INDENT_LIMIT> row{};
    row.fill(' ');
    return row;
}();

// An output file with its encoding, through which all pieces of an element go. What needs no
// escaping goes there directly, as the text writers would write it.
struct Output {
    HostStream* stream;
    std::int32_t encoding;

    void raw(std::string_view bytes) const { host_fwrite(bytes.data(), 1, bytes.size(), stream); }
    void line_end() const { xml_write_newline(stream, encoding); }

    void text(std::string_view bytes, std::int32_t text_encoding) const {
        const XmlTextSpan span = {bytes.data(), bytes.size(), text_encoding};
        const std::string_view plain = plain_text(span);
        if (!plain.empty()) return raw(plain);
        xml_write_text(stream, encoding, &span, ESCAPED);
    }

    void spaces(std::uint64_t count) const {
        raw({blanks.data(), std::min<std::uint64_t>(count, blanks.size())});
    }
};

// Comment lines are trimmed, and the further ones stand below the first.
void write_comments(const Output& out, std::string_view comments, std::uint64_t indent) {
    if (comments.empty()) return;
    out.spaces(indent);
    out.raw("<!-- ");
    for (;;) {
        const HostTextSpan rest = {comments.data(), comments.size(), HOST_ENCODING_NONE};
        const char* const line_feed = host_span_find_char(&rest, '\n');
        if (!line_feed) break;
        const auto line = static_cast<std::size_t>(line_feed - comments.data());
        out.text({comments.data(), line}, HOST_ENCODING_NONE);
        out.line_end();
        out.spaces(indent + CONTINUATION_INDENT);
        comments.remove_prefix(line + 1);
    }
    out.text(comments, HOST_ENCODING_NONE);
    out.raw(" -->\r\n");
}

void write_attributes(const Output& out, const XmlElement& element, std::uint64_t indent) {
    const std::uint32_t count = host_array_count(element.attributes);
    for (std::uint32_t i = 0; i < count; ++i) {
        out.line_end();
        out.spaces(indent + CONTINUATION_INDENT);
        out.raw(view_of(*element.attributes[i]->name));
        out.raw("=\"");
        out.text(value_of(*element.attributes[i]), HOST_ENCODING_NONE);
        out.raw("\"");
    }
}

void write_end_tag(const Output& out, const XmlElement& element, std::uint64_t indent) {
    if (element.had_children) out.spaces(indent);
    out.raw("</");
    out.raw(view_of(*element.name));
    out.raw(">\r\n");
}

// Writes an element up to where its children go. False when there are none to write; the element is
// then written completely.
bool write_start(const Output& out, const XmlElement& element, std::uint64_t indent) {
    if (element.comments) write_comments(out, view_of(*element.comments), indent);
    out.spaces(indent);
    out.raw("<");
    out.raw(view_of(*element.name));
    write_attributes(out, element, indent);

    const std::string_view value = view_of(element.value);
    if (value.empty() && !element.first_child) {
        out.raw("/>\r\n");
        return false;
    }
    out.raw(">");
    if (!value.empty()) out.text(value, element.value_encoding);
    if (element.had_children) out.line_end();
    if (element.first_child) return true;
    write_end_tag(out, element, indent);
    return false;
}

}  // namespace

void xml_write_element(HostStream* output, std::int32_t output_encoding, std::uint32_t element,
                       std::uint32_t indent) {
    const XmlElement* const top = lookup_element(element);
    if (!top) return;
    const Output out = {output, output_encoding};
    const XmlElement* at = top;
    std::uint64_t depth = indent;
    bool descend = write_start(out, *at, depth);
    while (descend || at != top) {
        const XmlElement* const next = descend ? at->first_child : at->next;
        if (next) {
            if (descend) depth += LEVEL_INDENT;
            at = next;
            descend = write_start(out, *at, depth);
        } else {
            at = at->parent;
            depth -= LEVEL_INDENT;
            write_end_tag(out, *at, depth);
            descend = false;
        }
    }
}
