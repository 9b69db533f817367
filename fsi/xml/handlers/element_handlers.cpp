#include <cstring>

#include "fsi/xml/handlers/early_events.h"
#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/latin1.h"
#include "fsi/xml/handlers/trace_message.h"
#include "host/errors.h"
#include "host/memory.h"
#include "host/strings.h"

namespace {

// Shorter character data of ISO-8859-1 documents is converted without an allocation.
constexpr std::size_t SHORT_TEXT = 100;

void trace_start(const char* name, const char* const* attributes) {
    trace_message(1, HOST_TRACE_ELEMENTS, "start_element: '%s' %s attributes", name,
                  attributes[0] ? "with" : "without");
    for (; attributes[0]; attributes += 2)
        trace_message(0, HOST_TRACE_ELEMENTS, " '%s': '%s'", attributes[0], attributes[1]);
}

// Creates the element that starts, below the innermost open one. Null when memory is exhausted, and
// also when somebody released the tree under the parser: a second tree would have no owner.
XmlElement* new_element(XmlParser& parser, const char* name) {
    if (!parser.tree.current) {
        if (parser.depth > 1) return nullptr;
        set_element_error(XMLERR_BAD_ELEMENT);
    }
    XmlElement* const element = create_element(parser.tree.current, name, 0);
    if (element) element->holder = &parser.tree;
    return element;
}

bool add_latin1_attribute(XmlElement& element, const char* name, const char* value) {
    char* name_copy = latin1_copy(name, std::strlen(name), "Temporary data buffer");
    char* value_copy = latin1_copy(value, std::strlen(value), "Temporary data buffer");
    const bool added = name_copy && value_copy && add_attribute(element, name_copy, value_copy);
    host_free(name_copy, HANDLERS_SOURCE, __LINE__, 0);
    host_free(value_copy, HANDLERS_SOURCE, __LINE__, 0);
    return added;
}

bool add_attributes(const XmlParser& parser, XmlElement& element, const char* const* attributes) {
    for (; attributes[0]; attributes += 2) {
        const bool added = stores_latin1(parser)
                               ? add_latin1_attribute(element, attributes[0], attributes[1])
                               : add_attribute(element, attributes[0], attributes[1]);
        if (!added) return false;
    }
    return true;
}

// Hands the comments kept so far to an element, on lines of their own after those it has.
void give_comments(XmlParser& parser, XmlElement& element) {
    if (!parser.pending_comments || !host_string_length(parser.pending_comments)) return;
    if (element.comments && element.comments->length > 0) add_comment(element, "\n");
    add_comment(element, host_string_text(parser.pending_comments));
    host_string_clear(parser.pending_comments);
}

// Drops the white space around the data of the element that ends.
void trim_value(const XmlParser& parser, XmlElement& element) {
    const std::string_view data = view_of(element.value);
    const HostTextSpan span{data.data(), data.size(), text_encoding(parser)};
    std::uint64_t start = 0;
    std::uint64_t end = data.size();
    host_trim_span(&span, &start, &end);
    if (start == 0 && end == data.size()) return;
    keep_part(element.value, start, end - start);
    element.value_encoding = span.encoding;
}

// Ends the innermost open element, unless somebody released it. The element functions' last error
// becomes what it is after asking for the value and the parent.
void leave_element(XmlParser& parser) {
    XmlElement* const element = parser.tree.current;
    if (!element) {
        if (parser.pending_comments) host_string_clear(parser.pending_comments);
        set_element_error(XMLERR_BAD_ELEMENT);
        return;
    }
    if (!element->has_value) set_element_error(XMLERR_NO_VALUE);
    give_comments(parser, *element);
    if (element->value.length > 0) trim_value(parser, *element);
    if (!element->parent) set_element_error(XMLERR_TOP_LEVEL);
    parser.tree.current = element->parent;
}

bool append_latin1(const XmlParser& parser, XmlElement& element, const char* text,
                   std::size_t length) {
    if (length < SHORT_TEXT) {
        char copy[SHORT_TEXT];
        std::memcpy(copy, text, length);
        copy[length] = '\0';
        const std::size_t stored = utf8_to_latin1(copy);
        return append_value(element, copy, static_cast<std::int64_t>(stored),
                            parser.input_encoding);
    }
    char* copy = latin1_copy(text, length, "Temporary data buffer");
    if (!copy) return false;
    const bool appended = append_value(element, copy, -1, parser.input_encoding);
    host_free(copy, HANDLERS_SOURCE, __LINE__, 0);
    return appended;
}

// Adds character data to the innermost open element. False when memory is exhausted.
bool add_data(const XmlParser& parser, const char* text, std::size_t length) {
    XmlElement* const element = parser.tree.current;
    if (!element) {  // without the element handlers there is none to take the data
        set_element_error(XMLERR_BAD_ELEMENT);
        return true;
    }
    if (stores_latin1(parser)) return append_latin1(parser, *element, text, length);
    return append_value(*element, text, static_cast<std::int64_t>(length), text_encoding(parser));
}

// Whether elements are stored under the names that Expat gives.
bool keeps_names(const XmlParser& parser) {
    const std::uint32_t mode = parser.flags & XMLOPT_NAME_MODE;
    return mode != XML_NAME_LOWER_UNDERSCORE && mode != XML_NAME_UNDERSCORE &&
           !stores_latin1(parser);
}

// The end of start_element when something could not be stored.
void start_failed(XmlParser& parser, char* name, const char* why) {
    host_free(name, HANDLERS_SOURCE, __LINE__, 0);
    stop_out_of_memory(parser);
    if (host_trace_on) host_trace(-1, HOST_TRACE_ELEMENTS, "%s", why);
}

}  // namespace

char* stored_name(const XmlParser& parser, const char* name) {
    char* copy = host_strdup(name, HANDLERS_SOURCE, __LINE__);
    if (!copy) return nullptr;
    const std::uint32_t mode = parser.flags & XMLOPT_NAME_MODE;
    if (mode == XML_NAME_LOWER_UNDERSCORE) host_convert_case(copy, -3, HOST_NAME_LOWER_CASE);
    if (mode == XML_NAME_LOWER_UNDERSCORE || mode == XML_NAME_UNDERSCORE)
        host_convert_case(copy, -3, HOST_NAME_UNDERSCORES);
    if (stores_latin1(parser)) utf8_to_latin1(copy);
    return copy;
}

void suspend(const XmlParser& parser) {
    const std::uint32_t bits = parser.state & (XMLPS_STEPWISE | XMLPS_REPLAYING);
    if (bits == XMLPS_STEPWISE) XML_StopParser(parser.expat, XML_TRUE);
}

void start_record(XmlParser& parser) {
    parser.state |= XMLPS_RECORD_STARTED;
    parser.record_start = current_byte_index(parser);
}

// For all that comes from an entity, Expat tells the place of the reference to it: a record that
// ends where it starts lies in an entity's text, where Expat must not be suspended.
bool end_record(XmlParser& parser) {
    parser.state |= XMLPS_RECORD_ENDED;
    if (current_byte_index(parser) == parser.record_start) return false;
    suspend(parser);
    return true;
}

void stop_out_of_memory(XmlParser& parser) {
    *host_file_error() = HOST_FILE_NO_MEMORY;
    parser.state |= XMLPS_OUT_OF_MEMORY;
    XML_StopParser(parser.expat, XML_FALSE);
}

void start_element(void* expat, const char* name, const char** attributes) {
    XmlParser& parser = parser_of(expat);
    if (stopped(parser)) return;
    if (is_early(parser)) return keep_start(parser, name, attributes);
    if (host_trace_on) trace_start(name, attributes);
    const bool needs_copy = parser.element_hash || !keeps_names(parser);
    char* const stored = needs_copy ? stored_name(parser, name) : nullptr;
    ++parser.depth;
    XmlElement* const element =
        stored || !needs_copy ? new_element(parser, stored ? stored : name) : nullptr;
    if (!element) return start_failed(parser, stored, "Leaving, no memory for element info");
    // The tree must own the element before anything else can fail.
    const bool is_root = parser.tree.root == nullptr;
    if (is_root) parser.tree.root = element;

    if (!add_attributes(parser, *element, attributes))
        return start_failed(parser, stored, "Leaving, no memory for element info");
    give_comments(parser, *element);
    if (!parser.element_hash)
        host_free(stored, HANDLERS_SOURCE, __LINE__, 0);
    else if (!add_to_element_hash(parser.element_hash, *element, stored))
        return start_failed(parser, stored, "Leaving, no memory for hash");
    parser.tree.current = element;

    if (parser.depth == 2) start_record(parser);
    if (is_root) suspend(parser);
    if (host_trace_on) host_trace(-1, HOST_TRACE_ELEMENTS, "Leaving");
}

void end_element(void* expat, const char* name) {
    XmlParser& parser = parser_of(expat);
    if (stopped(parser)) return;
    if (is_early(parser)) return keep_end(parser, name);
    if (host_trace_on) trace_message(1, HOST_TRACE_ELEMENTS, "end_element: '%s'", name);
    if (parser.depth == 0) {
        if (host_trace_on) host_trace(-1, HOST_TRACE_ELEMENTS, "Leaving, element depth == 0");
        return;
    }
    leave_element(parser);
    --parser.depth;
    if (parser.depth == 1) end_record(parser);
    // Expat may have been given input after the document element already.
    if (parser.depth == 0) {
        parser.state |= XMLPS_ROOT_ENDED;
        suspend(parser);
    }
    if (host_trace_on) host_trace(-1, HOST_TRACE_ELEMENTS, "Leaving");
}

void char_data(void* expat, const char* text, int length) {
    XmlParser& parser = parser_of(expat);
    if (stopped(parser)) return;
    const auto size = static_cast<std::size_t>(length);
    if (is_early(parser)) return keep_text(parser, text, size);
    if (host_trace_on) {
        trace_message(1, HOST_TRACE_CONTENT, "char data of length %d", length);
        if (host_trace_on >= HOST_TRACE_CONTENT) host_trace_dump(0, 0, text, size);
    }
    if (!add_data(parser, text, size)) stop_out_of_memory(parser);
    if (host_trace_on) host_trace(-1, HOST_TRACE_CONTENT, "Leaving");
}

void start_cdata(void*) {
    if (!host_trace_on) return;
    host_trace(1, HOST_TRACE_CONTENT, "start cdata section");
    host_trace(-1, HOST_TRACE_CONTENT, "Leaving");
}

void end_cdata(void*) {
    if (!host_trace_on) return;
    host_trace(1, HOST_TRACE_CONTENT, "end cdata section");
    host_trace(-1, HOST_TRACE_CONTENT, "Leaving");
}
