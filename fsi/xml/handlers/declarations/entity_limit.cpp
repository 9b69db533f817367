#include "fsi/xml/handlers/declarations/entity_limit.h"

#include "fsi/xml/handlers/handlers.h"
#include "host/entities/entity_depth.h"

namespace {

void judge(XmlParser& parser, EntityDepth depth) {
    if (depth == EntityDepth::NO_MEMORY) return stop_out_of_memory(parser);
    if (depth == EntityDepth::ALLOWED) return;
    parser.state |= XMLPS_ENTITIES_TOO_DEEP;
    XML_StopParser(parser.expat, XML_FALSE);
}

void XMLCALL note_declaration(void* expat, const char* name, int is_parameter, const char* value,
                              int length, const char*, const char*, const char*, const char*) {
    if (!is_parameter) limit_entity(parser_of(expat), name, value, length);
}

void XMLCALL note_end(void* expat) {
    end_entities(parser_of(expat));
}

}  // namespace

void limit_entities(XmlParser& parser) {
    if (parser.flags & XMLOPT_DEFAULT) return;  // the default handler sees what nobody handles
    if (parser.flags & XMLOPT_DOCTYPE) return;  // there is one while the declaration lasts
    XML_SetEndDoctypeDeclHandler(parser.expat, note_end);
    if (!(parser.flags & XMLOPT_ENTITY_DECLS))
        XML_SetEntityDeclHandler(parser.expat, note_declaration);
}

void limit_entity(XmlParser& parser, const char* name, const char* value, int length) {
    if (!value) return;
    const std::string_view text(value, static_cast<std::size_t>(length));
    judge(parser, note_entity(parser.entities, name, text));
}

void limit_token(XmlParser& parser, const char* text, std::size_t length) {
    switch (read_declaration_token(parser.declaration, {text, length})) {
        case DeclarationToken::OTHER:
            return;
        case DeclarationToken::NO_MEMORY:
            return stop_out_of_memory(parser);
        case DeclarationToken::ENTITY:
            return judge(parser, note_entity(parser.entities, declared_name(parser.declaration),
                                             declared_text(parser.declaration)));
        case DeclarationToken::END:
            return end_entities(parser);
    }
}

void end_entities(XmlParser& parser) {
    parser.declaration.place = DeclarationPlace::AFTER;
    if (stopped(parser)) return;
    judge(parser, measure_entities(parser.entities));
    free_entities(parser);
}

void free_entities(XmlParser& parser) {
    forget_entities(parser.entities);
    forget_declaration(parser.declaration);
}
