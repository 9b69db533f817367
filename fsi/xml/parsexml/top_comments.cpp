// Comments outside the document element.
#include <cstring>

#include "fsi/xml/parsexml/parser_handle.h"
#include "host/strings.h"
#include "sxml/xml_api.h"

namespace {

// Comments that were read are entries of the store; an appended text would hide them, so it becomes
// an entry, too. Texts that are only ever appended make up one comment.
bool add_text(std::uint32_t comments, const char* text) {
    const bool has_entries = host_string_entry_count(comments) > 0 &&
                             host_string_entry(comments, 0) != host_string_text(comments);
    if (has_entries) return host_string_add_entry(comments, text, PARSEXML_SOURCE, __LINE__) != 0;
    return host_string_append(comments, text, PARSEXML_SOURCE, __LINE__, 0) != 0;
}

}  // namespace

std::int32_t xml_add_top_comment(std::uint32_t handle, const char* text) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser) return 0;
    const char* given = text ? text : "";
    const bool first = parser->top_comments == 0;
    if (first)
        parser->top_comments =
            host_string_new("XML comments", std::strlen(given) + 1, PARSEXML_SOURCE, __LINE__, 0);
    if (parser->top_comments && add_text(parser->top_comments, given)) return 1;
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
