// A limit for entities that refer to other entities.
//
// Expat (up to version 2.6) follows an entity in another entity's text by recursion, so a document
// that declares a chain of some ten thousand of them overflows the stack where it uses the last.
// How deep a chain goes only shows when it is used; but no chain has more links than there are
// entities with a reference in their text. A document with more of those is refused.
#pragma once

#include <cstddef>

#include "fsi/xml/handlers/xml_parser.h"

constexpr std::uint32_t MOST_REFERRING_ENTITIES = 2000;

// Takes note of a part of the DOCTYPE declaration that may be an entity's text. With one too many
// the parse ends as with an error of the document (XML_ERROR_ABORTED).
void limit_references(XmlParser& parser, const char* text, std::size_t length);

// A handler for entity declarations that does nothing else, for parsers that have none.
void limit_entities(void* expat, const char* name, int is_parameter, const char* value, int length,
                    const char* base, const char* sysid, const char* pubid, const char* notation);
