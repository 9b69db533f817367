// Parser handles: the object behind a handle, and the last error of the parser API.
#pragma once

#include <cstdint>

#include "fsi/xml/handlers/xml_parser.h"
#include "host/files.h"
#include "sxml/error_codes.h"

// The path under which the parser API's memory is accounted for.
constexpr const char* PARSEXML_SOURCE = "fsi/xml/parsexml";

// Bits of XmlParserInfo::flags.
constexpr std::uint32_t XML_INPUT_IS_LOCAL_COPY = 0x1;  // `source` is deleted on release
constexpr std::uint32_t XML_INPUT_IS_OURS = 0x2;        // `stream` is closed on release

// The object behind a parser handle; it owns all it refers to, as its flags tell.
struct XmlParserInfo {
    XmlParser* parser;
    HostStream* stream;  // null for a text in memory and once the input was closed
    char* source;        // name of the input or of its local copy; null for a text in memory
    std::uint32_t flags;
};

// Records a failure of the parser API.
void set_parser_error(XmlErrorCode code);

// A new handle around an empty object; 0 when memory is exhausted.
std::uint32_t new_parser_handle();

// The object behind a handle; null with XMLERR_BAD_PARSER when there is none.
XmlParserInfo* lookup_parser_info(std::uint32_t handle);

// The parser behind a handle; null with XMLERR_BAD_PARSER when there is none.
XmlParser* lookup_parser(std::uint32_t handle);

// The next live parser handle after `previous` (0: the first); 0 after the last.
std::uint32_t next_parser_handle(std::uint32_t previous);

// As SxmlParser_parse_record, of the object behind the handle.
bool parse_next_record(XmlParserInfo& info);

// Closes the input, and deletes it when it is a local copy.
void close_input(XmlParserInfo& info);
