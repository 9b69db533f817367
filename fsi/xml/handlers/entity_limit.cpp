#include "fsi/xml/handlers/entity_limit.h"

#include <cstring>

#include "fsi/xml/handlers/handlers.h"

void limit_references(XmlParser& parser, const char* text, std::size_t length) {
    if (length == 0 || std::memchr(text, '&', length) == nullptr) return;
    if (++parser.referring_entities == MOST_REFERRING_ENTITIES + 1) {
        XML_StopParser(parser.expat, XML_FALSE);
    }
}

void limit_entities(void* expat, const char*, int, const char* value, int length, const char*,
                    const char*, const char*, const char*) {
    if (value) limit_references(parser_of(expat), value, static_cast<std::size_t>(length));
}
