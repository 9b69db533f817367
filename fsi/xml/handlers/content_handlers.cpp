// Processing instructions, comments, and what reaches the default handler. Memory that runs out
// here loses the text concerned and nothing else.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "fsi/xml/handlers/comment_filter.h"
#include "fsi/xml/handlers/declarations/entity_limit.h"
#include "fsi/xml/handlers/early_events.h"
#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/instructions.h"
#include "fsi/xml/handlers/trace_message.h"
#include "host/strings.h"

namespace {

// The string at `string`, created when it does not exist yet; 0 when memory is exhausted.
std::uint32_t ensure_string(std::uint32_t& string, const char* description, std::size_t room) {
    if (!string) string = host_string_new(description, room, HANDLERS_SOURCE, __LINE__, 0);
    return string;
}

// Comments are kept in UTF-8, also in documents whose other texts are not.
void keep_element_comment(XmlParser& parser, const char* text) {
    if (ensure_string(parser.pending_comments, "XML Comments for element", std::strlen(text) + 1))
        host_string_add_entry(parser.pending_comments, text, HANDLERS_SOURCE, __LINE__);
}

// Makes a text that a caller has appended an entry, so that it stays before the comments that are
// read from now on, and does not hide them. Without memory for it the text stays what it is.
void keep_appended_text(std::uint32_t comments) {
    if (host_string_entry_count(comments) != 1) return;
    const char* const text = host_string_text(comments);
    const bool is_appended = host_string_entry(comments, 0) == text;
    if (is_appended && host_string_add_entry(comments, text, HANDLERS_SOURCE, __LINE__))
        host_string_chop(comments, SIZE_MAX);
}

// Keeps a comment from outside the document element. `length` bytes of `text` come before its
// trailing white space. False when nothing but banner lines is in it.
bool keep_top_comment(XmlParser& parser, const char* text, std::size_t length) {
    const std::uint32_t filtered = filter_comment(text, length);
    const bool empty = filtered && host_string_length(filtered) == 0;
    if (!empty &&
        ensure_string(parser.top_comments, "XML Comments at top level", std::strlen(text) + 1)) {
        keep_appended_text(parser.top_comments);
        if (filtered)
            host_string_add_entries(parser.top_comments, filtered, HANDLERS_SOURCE, __LINE__);
        else
            host_string_add_entry(parser.top_comments, text, HANDLERS_SOURCE, __LINE__);
    }
    if (filtered) host_string_free(filtered, HANDLERS_SOURCE, __LINE__);
    return !empty;
}

// Stores a comment and says how the handler leaves.
const char* store_comment(XmlParser& parser, const char* text) {
    const HostTextSpan span{text, std::strlen(text), text_encoding(parser)};
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    host_trim_span(&span, &start, &end);
    if (start >= end) return "Leaving, all blanks";
    if (parser.tree.current) {
        keep_element_comment(parser, text + start);
        return "Leaving";
    }
    return keep_top_comment(parser, text + start, end - start) ? "Leaving"
                                                               : "Leaving, no non-RE comments";
}

}  // namespace

void processing_instruction(void* expat, const char* target, const char* data) {
    XmlParser& parser = parser_of(expat);
    if (stopped(parser)) return;
    if (host_trace_on) {
        host_trace(1, HOST_TRACE_CONTENT, "Processing instructions");
        host_trace(0, HOST_TRACE_CONTENT, "%s", target);
        host_trace(0, HOST_TRACE_CONTENT, "%s", data);
    }
    insert_instruction(parser, HOST_ARRAY_END, target, data, HANDLERS_SOURCE);
    if (host_trace_on) host_trace(-1, HOST_TRACE_CONTENT, "Leaving");
}

void comment_handler(void* expat, const char* text) {
    XmlParser& parser = parser_of(expat);
    if (stopped(parser)) return;
    if (is_early(parser)) return keep_comment(parser, text);
    if (host_trace_on) {
        host_trace(1, HOST_TRACE_CONTENT, "comments:");
        host_trace(0, HOST_TRACE_CONTENT, "%s", text);
    }
    const char* leaving = store_comment(parser, text);
    if (host_trace_on) host_trace(-1, HOST_TRACE_CONTENT, "%s", leaving);
}

void default_handler(void* expat, const char* text, int length) {
    XmlParser& parser = parser_of(expat);
    if (stopped(parser)) return;
    const auto size = static_cast<std::size_t>(length);
    if (host_trace_on) {
        trace_message(1, HOST_TRACE_CONTENT, "default handler, data length %d", length);
        if (host_trace_on >= HOST_TRACE_CONTENT) host_trace_dump(0, 0, text, size);
    }
    limit_token(parser, text, size);
    const std::uint32_t bits = parser.state & (XMLPS_IN_DOCTYPE | XMLPS_DOCTYPE_DONE);
    if (bits == XMLPS_IN_DOCTYPE) {
        if (ensure_string(parser.doctype_internal, "XML DOCTYPE internal string", 20))
            host_string_append_n(parser.doctype_internal, text, size, HANDLERS_SOURCE, __LINE__, 0);
    }
    if (host_trace_on) host_trace(-1, HOST_TRACE_CONTENT, "Leaving");
}
