// Events that come too early: after the end of the requested record.
//
// Where a record ends, Expat is suspended. It is not suspended within the text of an internal
// entity: up to version 2.6 Expat, when resumed, loses the rest of an entity that stands last in
// another one. It goes on to the end of the piece that it was given, and what it delivers is kept
// until the caller asks for more.
#pragma once

#include "fsi/xml/handlers/xml_parser.h"

// True for events that arrive although the record that was asked for has ended.
inline bool is_early(const XmlParser& parser) {
    constexpr std::uint32_t both = XMLPS_STEPWISE | XMLPS_RECORD_ENDED;
    return (parser.state & both) == both && parser.depth == 1;
}

// Each keeps an event. Without memory for it the parse is stopped; when a piece of input gives more
// events than any real document does, it ends as with an error of the document (XML_ERROR_ABORTED).
void keep_start(XmlParser& parser, const char* name, const char* const* attributes);
void keep_end(XmlParser& parser, const char* name);
void keep_text(XmlParser& parser, const char* text, std::size_t length);
void keep_comment(XmlParser& parser, const char* text);

// Hands the events kept to their handlers, up to the end of the next record. False when there are
// none.
bool replay_early_events(XmlParser& parser);

void free_early_events(XmlParser& parser);
