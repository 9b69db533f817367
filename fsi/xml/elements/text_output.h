// The three writers through which every piece of XML text reaches a file: xml_write_text,
// xml_write_newline and xml_write_string, described in sxml/xml_api.h. They report no errors: a
// failed write only lowers the count returned, and the stream remembers it for the embedding
// program.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/encoding.h"
#include "host/files.h"
#include "sxml/xml_api.h"

// The entity of one of the five markup characters; empty for any other character.
constexpr std::string_view markup_entity(std::uint32_t character) {
    switch (character) {
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '&':
            return "&amp;";
        case '\'':
            return "&apos;";
        case '"':
            return "&quot;";
        default:
            return {};
    }
}

// What xml_write_text would write of a span, trimmed and escaped, when that is a part of the text
// as it stands: plain ASCII in an encoding of bytes, with nothing to escape. Else, or when there is
// nothing to write, it is empty.
std::string_view plain_text(const XmlTextSpan& span);
