// Reading a document record by record: a record is a child of the document element.
#include "fsi/xml/handlers/parse_driver.h"
#include "fsi/xml/handlers/records/plain_records.h"
#include "fsi/xml/parsexml/parser_handle.h"
#include "host/errors.h"
#include "sxml/xml_api.h"

namespace {

// What a call finds once the document element has ended. The first one reports just that, without
// examining what follows; the next ones report how the input ends.
void parse_rest(XmlParserInfo& info) {
    XmlParser& parser = *info.parser;
    std::int16_t& error = *host_file_error();
    const bool is_told = (parser.state & (XMLPS_END_TOLD | XMLPS_INPUT_ENDED)) != 0;
    if (!is_told) error = HOST_FILE_END;
    parser.state |= XMLPS_END_TOLD;
    while (error == HOST_FILE_OK) parse_to_next_gt(&parser, info.stream);
}

}  // namespace

bool parse_next_record(XmlParserInfo& info) {
    XmlParser* parser = info.parser;
    std::int16_t& error = *host_file_error();
    error = HOST_FILE_OK;
    if (parser->element_hash) host_hash_clear(parser->element_hash, PARSEXML_SOURCE, __LINE__, 0);

    if (parser->state & XMLPS_ROOT_ENDED) {
        parse_rest(info);
        return false;
    }
    // A record that is an empty-element tag starts and ends at once, so the depth alone does not
    // show that there was one.
    parser->state &= ~std::uint32_t{XMLPS_RECORD_STARTED};
    const bool may_be_plain = (parser->state & XMLPS_PLAIN_RECORDS) != 0;
    if (may_be_plain && take_plain_record(*parser, info.stream)) return true;
    do {
        parse_to_next_gt(parser, info.stream);
    } while (error == HOST_FILE_OK && parser->depth == 1 &&
             !(parser->state & XMLPS_RECORD_STARTED));
    if (!(parser->state & XMLPS_RECORD_STARTED)) {
        if (error == HOST_FILE_OK) error = HOST_FILE_END;
        parser->state |= XMLPS_END_TOLD;
        return false;
    }
    while (error == HOST_FILE_OK && parser->depth >= 2) parse_to_next_gt(parser, info.stream);
    return true;
}

std::int32_t SxmlParser_parse_record(std::uint32_t handle) {
    XmlParserInfo* info = lookup_parser_info(handle);
    return info && parse_next_record(*info) ? 1 : 0;
}
