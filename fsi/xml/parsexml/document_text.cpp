#include "fsi/xml/parsexml/document_text.h"

#include <initializer_list>
#include <string_view>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/elements/element.h"
#include "host/arrays.h"
#include "host/strings.h"

namespace {

bool is_ascii(std::string_view text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    return true;
}

bool is_ascii(std::uint32_t string) {
    return !string || is_ascii({host_string_text(string), host_string_length(string)});
}

bool element_is_ascii(const XmlElement& element) {
    if (!is_ascii(view_of(*element.name)) || !is_ascii(view_of(element.value))) return false;
    if (element.comments && !is_ascii(view_of(*element.comments))) return false;
    const std::uint32_t count = host_array_count(element.attributes);
    for (std::uint32_t i = 0; i < count; ++i) {
        const XmlAttribute& attribute = *element.attributes[i];
        if (!is_ascii(view_of(*attribute.name)) || !is_ascii(value_of(attribute))) return false;
    }
    return true;
}

bool tree_is_ascii(const XmlElement* root) {
    for (const XmlElement* element = root; element; element = next_in_tree(element, root))
        if (!element_is_ascii(*element)) return false;
    return true;
}

bool prologue_is_ascii(const XmlParser& parser) {
    for (const std::uint32_t string :
         {parser.top_comments, parser.doctype_name, parser.doctype_internal, parser.doctype_pubid,
          parser.doctype_sysid})
        if (!is_ascii(string)) return false;
    const std::uint32_t count = host_array_count(parser.pis);
    for (std::uint32_t i = 0; i < count; ++i)
        if (!is_ascii(parser.pis[i].target) || !is_ascii(parser.pis[i].data)) return false;
    return true;
}

// True for names of encodings in which markup is not written with one byte per character.
bool names_wide_units(const char* name) {
    for (const char* prefix : {"utf-16", "utf-32", "iso-10646-ucs", "ucs-"})
        if (begins_ignoring_case(name, prefix)) return true;
    return false;
}

}  // namespace

bool document_is_ascii(const XmlParser& parser) {
    return prologue_is_ascii(parser) && tree_is_ascii(parser.tree.root);
}

const char* written_encoding(const XmlParser& parser) {
    const char* name = parser.encoding_name;
    const bool usable = !name || !names_wide_units(name);
    const bool was_read = (parser.state & XMLPS_READ) != 0;
    // For a document that was not read, only its creator knows the encoding.
    if (!was_read) return usable ? name : "UTF-8";
    const char* actual = stores_latin1(parser) ? "ISO-8859-1" : "UTF-8";
    if (equal_ignoring_case(name ? name : "UTF-8", actual)) return name;
    return usable && document_is_ascii(parser) ? name : actual;
}
