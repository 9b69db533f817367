// A limit for entities that refer to other entities: host/entities/entity_depth.h says why.
#pragma once

#include <cstddef>

#include "fsi/xml/handlers/xml_parser.h"

// Installs what it takes to see every entity, beside the handlers that the option word asks for. No
// declaration is kept from a handler that would get it otherwise.
void limit_entities(XmlParser& parser);

// Records a general entity that a handler for entity declarations receives; `value` is null
// for those without a text of their own. With too deep a chain the parse ends as with an error of
// the document (XML_ERROR_ABORTED, XMLPS_ENTITIES_TOO_DEEP).
void limit_entity(XmlParser& parser, const char* name, const char* value, int length);

// The same for a token that the default handler gets; ignored outside a DOCTYPE declaration.
void limit_token(XmlParser& parser, const char* text, std::size_t length);

// The DOCTYPE declaration has ended: all entities are known.
void end_entities(XmlParser& parser);

// Releases what is known of the entities.
void free_entities(XmlParser& parser);
