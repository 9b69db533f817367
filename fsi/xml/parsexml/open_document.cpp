// Opening a document: finding its input and parsing its beginning.
#include <cstring>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/handlers/parse_driver.h"
#include "fsi/xml/handlers/records/plain_records.h"
#include "fsi/xml/parsexml/parser_handle.h"
#include "host/config.h"
#include "host/errors.h"
#include "host/handles.h"
#include "host/memory.h"
#include "sxml/xml_api.h"

namespace {

bool is_document_text(const char* source) {
    return begins_ignoring_case(source, "<?xml ");
}

// Opens the input that `source` names. Result: XMLERR_NONE or the reason for the failure.
XmlErrorCode open_input(XmlParserInfo& info, const char* source) {
    if (is_document_text(source)) return XMLERR_NONE;
    if (begins_ignoring_case(source, "http:")) {
        info.source = host_fetch_url(source);
        if (!info.source) return XMLERR_URL;
        info.flags |= XML_INPUT_IS_LOCAL_COPY;
    } else {
        info.source = host_strdup(source, PARSEXML_SOURCE, __LINE__);
        if (!info.source) return XMLERR_NO_MEMORY;
    }
    if (std::strcmp(info.source, "-") == 0) {
        info.stream = host_standard_input();
        return XMLERR_NONE;
    }
    info.stream = host_fopen(info.source, "r", 0);
    if (!info.stream) return XMLERR_OPEN_FILE;
    info.flags |= XML_INPUT_IS_OURS;
    return XMLERR_NONE;
}

// True while the parse may go on: nothing has ended it.
bool may_go_on() {
    return *host_file_error() == HOST_FILE_OK;
}

bool parse_failed() {
    return !may_go_on() && *host_file_error() != HOST_FILE_END;
}

// Parses up to the start of the document element, or the whole document when the options ask for
// it. Result: XMLERR_NONE or XMLERR_PARSE.
XmlErrorCode parse_beginning(XmlParserInfo& info) {
    XmlParser* parser = info.parser;
    const bool whole = (parser->flags & XMLOPT_PARSE_WHOLE) != 0;
    if (!whole) parser->state |= XMLPS_STEPWISE;
    const bool is_sequential =
        (parser->flags & ~std::uint32_t{XMLOPT_NAME_MODE}) == XMLOPT_SEQUENTIAL_FILE;
    if (is_sequential && host_config_flag("SXML_PLAIN_RECORDS", 0)) allow_plain_records(*parser);
    // A document element that is an empty-element tag starts and ends at once.
    while (may_go_on() && parser->depth == 0 && !parser->tree.root)
        parse_to_next_gt(parser, info.stream);
    if (parse_failed()) return XMLERR_PARSE;
    if (!whole) return XMLERR_NONE;
    if (may_go_on()) parse_to_end(parser, info.stream);
    if (parse_failed()) return XMLERR_PARSE;
    end_parsing(*parser);
    close_input(info);
    return XMLERR_NONE;
}

XmlErrorCode open_document(XmlParserInfo& info, const char* source, std::uint32_t options,
                           std::uint64_t length) {
    if (!source) {
        info.parser = create_empty_parser();
        return info.parser ? XMLERR_NONE : XMLERR_NO_MEMORY;
    }
    const XmlErrorCode error = open_input(info, source);
    if (error != XMLERR_NONE) return error;
    info.parser = create_parser(options);
    if (!info.parser) return XMLERR_NO_MEMORY;
    if (is_document_text(source)) {
        // Expat only reads the text.
        info.parser->position = const_cast<char*>(source);
        info.parser->end = info.parser->position + length;
    }
    return parse_beginning(info);
}

}  // namespace

std::uint32_t xml_open_file(const char* source, std::uint32_t options, std::uint64_t length) {
    *host_file_error() = HOST_FILE_OK;
    const std::uint32_t handle = new_parser_handle();
    if (!handle) {
        set_parser_error(XMLERR_NO_MEMORY);
        return 0;
    }
    const XmlErrorCode error = open_document(*lookup_parser_info(handle), source, options, length);
    if (error == XMLERR_NONE) return handle;
    set_parser_error(error);
    host_handle_free(handle, PARSEXML_SOURCE, __LINE__, 0);
    return 0;
}
