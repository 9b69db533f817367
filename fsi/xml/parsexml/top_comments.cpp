// Comments outside the document element.
#include <cstring>

#include "fsi/xml/parsexml/parser_handle.h"
#include "fsi/xml/xml_api.h"
#include "host/strings.h"

std::int32_t xml_add_top_comment(std::uint32_t handle, const char* text) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser) return 0;
    const char* given = text ? text : "";
    const bool first = parser->top_comments == 0;
    if (first)
        parser->top_comments =
            host_string_new("XML comments", std::strlen(given) + 1, PARSEXML_SOURCE, __LINE__, 0);
    if (parser->top_comments &&
        host_string_append(parser->top_comments, given, PARSEXML_SOURCE, __LINE__, 0))
        return 1;
    if (first) xml_clear_top_comments(handle);
    set_parser_error(XMLERR_NO_MEMORY);
    return 0;
}

void xml_clear_top_comments(std::uint32_t handle) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser || !parser->top_comments) return;
    host_string_free(parser->top_comments, PARSEXML_SOURCE, __LINE__);
    parser->top_comments = 0;
}

const char* xml_top_comments(std::uint32_t handle, std::uint64_t* length) {
    if (length) *length = 0;
    const XmlParser* parser = lookup_parser(handle);
    if (!parser || !parser->top_comments) return nullptr;
    if (length) *length = host_string_length(parser->top_comments);
    return host_string_text(parser->top_comments);
}
