#include "conversion/documents/document_check.h"

#include <expat.h>

#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "host/entities/entity_depth.h"

namespace documents {

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;

using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

// What is known of a document by its parser.
struct Notes {
    Notes() = default;
    Notes(const Notes&) = delete;
    Notes& operator=(const Notes&) = delete;
    ~Notes() { forget_entities(entities); }

    std::string encoding;  // declared
    EntityReferences entities{};
    EntityDepth depth = EntityDepth::ALLOWED;
};

Notes& notes_of(void* parser) {
    return *static_cast<Notes*>(XML_GetUserData(static_cast<XML_Parser>(parser)));
}

void judge(void* parser, EntityDepth depth) {
    if (depth == EntityDepth::ALLOWED) return;
    notes_of(parser).depth = depth;
    XML_StopParser(static_cast<XML_Parser>(parser), XML_FALSE);
}

void XMLCALL end_entities(void* parser) {
    judge(parser, measure_entities(notes_of(parser).entities));
}

void XMLCALL count_entity(void* parser, const XML_Char* name, int is_parameter,
                          const XML_Char* value, int length, const XML_Char*, const XML_Char*,
                          const XML_Char*, const XML_Char*) {
    if (value == nullptr || is_parameter != 0) return;
    const std::string_view text(value, static_cast<std::size_t>(length));
    judge(parser, note_entity(notes_of(parser).entities, name, text));
}

// `notes` must outlive the parser.
Parser new_parser(Notes& notes) {
    Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    XML_SetUserData(parser.get(), &notes);
    XML_UseParserAsHandlerArg(parser.get());
    XML_SetEntityDeclHandler(parser.get(), count_entity);
    XML_SetEndDoctypeDeclHandler(parser.get(), end_entities);
    return parser;
}

// Feeds the whole document, until it ends or Expat has had enough.
XML_Status parse(XML_Parser parser, const ReadDocument& read) {
    std::vector<char> piece(PIECE);
    for (;;) {
        const std::size_t count = read(piece.data(), piece.size());
        const bool last = count < piece.size();
        const XML_Status status =
            XML_Parse(parser, piece.data(), static_cast<int>(count), last ? XML_TRUE : XML_FALSE);
        if (status != XML_STATUS_OK || last) return status;
    }
}

void XMLCALL note_declaration(void* parser, const XML_Char*, const XML_Char* encoding, int) {
    if (encoding != nullptr) notes_of(parser).encoding = encoding;
}

void XMLCALL stop_at_element(void* parser, const XML_Char*, const XML_Char**) {
    XML_StopParser(static_cast<XML_Parser>(parser), XML_FALSE);
}

}  // namespace

std::optional<DocumentProblem> check_document(const ReadDocument& read) {
    Notes notes;
    const Parser parser = new_parser(notes);
    if (parse(parser.get(), read) == XML_STATUS_OK) return std::nullopt;
    if (notes.depth == EntityDepth::NO_MEMORY) throw std::bad_alloc();
    const bool is_too_deep = notes.depth == EntityDepth::TOO_DEEP;
    return DocumentProblem{
        XML_GetCurrentLineNumber(parser.get()), XML_GetCurrentColumnNumber(parser.get()) + 1,
        is_too_deep ? ENTITIES_NEST_TOO_DEEP : XML_ErrorString(XML_GetErrorCode(parser.get()))};
}

std::string declared_encoding(const ReadDocument& read) {
    Notes notes;
    const Parser parser = new_parser(notes);
    XML_SetXmlDeclHandler(parser.get(), note_declaration);
    XML_SetStartElementHandler(parser.get(), stop_at_element);
    parse(parser.get(), read);
    if (notes.depth == EntityDepth::NO_MEMORY) throw std::bad_alloc();
    return notes.encoding;
}

}  // namespace documents
