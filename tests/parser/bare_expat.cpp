#include "tests/parser/bare_expat.h"

#include <expat.h>
#include <strings.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "host/encoding.h"
#include "tests/elements/element_test.h"

namespace {

constexpr std::size_t DEEPEST = 1000;  // levels shown

struct Node {
    std::string head;
    std::string text;
    std::string children;
};

std::string shown(const Node& node) {
    return node.head + (node.text.empty() ? "" : "=" + node.text) + "(" + node.children + ")";
}

struct Builder {
    XML_Parser expat = nullptr;
    bool latin1 = false;
    bool root_ended = false;
    std::vector<Node> open;
    std::string tree;

    std::string stored(const char* text) const {
        if (!latin1) return text;
        std::string bytes;
        while (*text) {
            const char low = static_cast<char>(host_next_char(&text) & 0xFF);
            bytes += low == '\0' ? '?' : low;
        }
        return bytes;
    }

    void close() {
        const std::string closed = shown(open.back());
        open.pop_back();
        if (open.size() < DEEPEST) (open.empty() ? tree : open.back().children) += closed;
    }
};

Builder& builder(void* data) {
    return *static_cast<Builder*>(data);
}

void declaration(void* data, const char*, const char* encoding, int) {
    builder(data).latin1 = encoding && strcasecmp(encoding, "iso-8859-1") == 0;
}

void start(void* data, const char* name, const char** attributes) {
    Builder& b = builder(data);
    Node node;
    node.head = b.stored(name);
    for (; *attributes; attributes += 2)
        node.head += " " + b.stored(attributes[0]) + ":" + b.stored(attributes[1]);
    b.open.push_back(node);
}

void end(void* data, const char*) {
    Builder& b = builder(data);
    std::string& text = b.open.back().text;
    const auto first = text.find_first_not_of(" \t\r\n");
    text = first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
    b.close();
    b.root_ended = b.open.empty();
}

void text(void* data, const char* bytes, int length) {
    Builder& b = builder(data);
    if (b.open.empty()) return;
    b.open.back().text += b.stored(std::string(bytes, static_cast<std::size_t>(length)).c_str());
}

void show(std::uint32_t element, std::uint32_t broken_off, std::size_t depth, std::string& out) {
    const XmlApi& xml = api();
    std::uint64_t length = 0;
    if (depth >= DEEPEST) return;
    out += xml.xml_element_name(element);
    for (std::uint32_t i = 0, n = xml.xml_attribute_count(element); i < n; ++i)
        out += std::string(" ") + xml.xml_attribute_name(element, i) + ":" +
               xml.xml_attribute_value(element, i);
    if (const char* value = xml.xml_element_value(element, &length))
        if (length > 0 && element != broken_off) out += "=" + std::string(value, length);
    out += "(";
    for (std::uint32_t child = xml.xml_first_child(element); child;
         child = xml.xml_next_sibling(child))
        show(child, broken_off, depth + 1, out);
    out += ")";
}

}  // namespace

BareResult parse_bare(std::string_view document) {
    Builder b;
    b.expat = XML_ParserCreate(nullptr);
    XML_SetUserData(b.expat, &b);
    XML_SetXmlDeclHandler(b.expat, declaration);
    XML_SetElementHandler(b.expat, start, end);
    XML_SetCharacterDataHandler(b.expat, text);
    BareResult result;
    if (XML_Parse(b.expat, document.data(), static_cast<int>(document.size()), XML_FALSE) ==
        XML_STATUS_ERROR)
        result.error = XML_GetErrorCode(b.expat);
    else
        XML_Parse(b.expat, nullptr, 0, XML_TRUE);
    result.after_root = b.root_ended;
    if (result.error && !b.open.empty()) b.open.back().text.clear();
    while (!b.open.empty()) b.close();
    result.tree = b.tree;
    XML_ParserFree(b.expat);
    return result;
}

std::string canonical_tree(unsigned element, unsigned broken_off) {
    std::string out;
    if (element) show(element, broken_off, 0, out);
    return out;
}
