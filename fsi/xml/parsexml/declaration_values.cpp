// The values of the XML declaration and the text of the DOCTYPE declaration.
#include <cstring>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/parsexml/parser_handle.h"
#include "host/memory.h"
#include "host/strings.h"
#include "sxml/xml_api.h"

namespace {

// Replaces a tracked text by a copy of `text`, or by none when that is null. False with
// XMLERR_NO_MEMORY; the old text then stands.
bool replace_text(char*& stored, const char* text) {
    char* copy = nullptr;
    if (text) {
        copy = host_strdup(text, PARSEXML_SOURCE, __LINE__);
        if (!copy) {
            set_parser_error(XMLERR_NO_MEMORY);
            return false;
        }
    }
    if (stored) host_free(stored, PARSEXML_SOURCE, __LINE__, 0);
    stored = copy;
    return true;
}

// The code of an encoding that is set by its name.
std::int32_t named_encoding(const char* name) {
    if (equal_ignoring_case(name, "utf-8")) return HOST_ENCODING_UTF8;
    if (equal_ignoring_case(name, "utf-16be")) return HOST_ENCODING_UTF16BE;
    if (begins_ignoring_case(name, "utf-16")) return HOST_ENCODING_UTF16LE;
    return HOST_ENCODING_NONE;
}

}  // namespace

const char* xml_parser_version(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser ? parser->version : nullptr;
}

const char* xml_set_parser_version(std::uint32_t handle, const char* version) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser || !replace_text(parser->version, version)) return nullptr;
    return parser->version;
}

const char* xml_parser_encoding(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser ? parser->encoding_name : nullptr;
}

void xml_set_parser_encoding(std::uint32_t handle, const char* encoding) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser || !replace_text(parser->encoding_name, encoding)) return;
    if (encoding) parser->encoding = named_encoding(encoding);
}

std::int32_t xml_parser_standalone(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser ? parser->standalone : 0;
}

void xml_set_parser_standalone(std::uint32_t handle, std::int32_t standalone) {
    XmlParser* parser = lookup_parser(handle);
    if (parser) parser->standalone = standalone;
}

const char* xml_parser_doctype_text(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser && parser->doctype_internal ? host_string_text(parser->doctype_internal)
                                              : nullptr;
}

std::int32_t xml_set_parser_doctype_text(std::uint32_t handle, const char* text) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser) return 0;
    const char* given = text ? text : "";
    // The new text is made beside the old one, which a failure must leave as it was.
    const std::uint32_t string =
        host_string_new("XML raw doctype string", std::strlen(given), PARSEXML_SOURCE, __LINE__, 0);
    if (!string || !host_string_append(string, given, PARSEXML_SOURCE, __LINE__, 0)) {
        if (string) host_string_free(string, PARSEXML_SOURCE, __LINE__);
        set_parser_error(XMLERR_NO_MEMORY);
        return 0;
    }
    if (parser->doctype_internal)
        host_string_free(parser->doctype_internal, PARSEXML_SOURCE, __LINE__);
    parser->doctype_internal = string;
    return 1;
}
