// Events that come too early. Expat is suspended where a record ends, but up to version 2.6 it may
// deliver one more tag when the text of an internal entity ends there too. That tag belongs to the
// next record, so it is kept until the caller asks for more.
#pragma once

#include "fsi/xml/handlers/xml_parser.h"

// True for tags that arrive although the record that was asked for has ended.
inline bool is_early(const XmlParser& parser) {
    constexpr std::uint32_t both = XMLPS_STEPWISE | XMLPS_RECORD_ENDED;
    return (parser.state & both) == both && parser.depth == 1;
}

// Keeps a start tag. Without memory for it the parse is stopped.
void keep_start(XmlParser& parser, const char* name, const char* const* attributes);

// Keeps an end tag: of the start tag kept before, or of the document element.
inline void keep_end(XmlParser& parser) {
    parser.state |= XMLPS_EARLY_END;
}

// Hands the tags kept to their handlers. False when there are none.
bool replay_early_events(XmlParser& parser);
