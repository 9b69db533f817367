#include "conversion/documents/document_check.h"

#include <expat.h>

#include <memory>
#include <new>
#include <string_view>
#include <vector>

namespace documents {

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;

using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

// Expat follows an entity in another entity's text by recursion, so a long chain of them overflows
// the stack. The module refuses a document with as many as this.
constexpr int MOST_REFERRING_ENTITIES = 2000;

// What is known of a document by its parser.
struct Notes {
    std::string encoding;  // declared
    int referring_entities = 0;
};

Notes& notes_of(void* parser) {
    return *static_cast<Notes*>(XML_GetUserData(static_cast<XML_Parser>(parser)));
}

void XMLCALL count_entity(void* parser, const XML_Char*, int, const XML_Char* value, int length,
                          const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
    const auto size = static_cast<std::size_t>(length);
    if (value == nullptr || std::string_view(value, size).find('&') == std::string_view::npos) {
        return;
    }
    if (++notes_of(parser).referring_entities > MOST_REFERRING_ENTITIES) {
        XML_StopParser(static_cast<XML_Parser>(parser), XML_FALSE);
    }
}

// `notes` must outlive the parser.
Parser new_parser(Notes& notes) {
    Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    XML_SetUserData(parser.get(), &notes);
    XML_UseParserAsHandlerArg(parser.get());
    XML_SetEntityDeclHandler(parser.get(), count_entity);
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
    const bool has_chains = notes.referring_entities > MOST_REFERRING_ENTITIES;
    return DocumentProblem{XML_GetCurrentLineNumber(parser.get()),
                           XML_GetCurrentColumnNumber(parser.get()) + 1,
                           has_chains ? "more than 2,000 entities refer to other entities"
                                      : XML_ErrorString(XML_GetErrorCode(parser.get()))};
}

std::string declared_encoding(const ReadDocument& read) {
    Notes notes;
    const Parser parser = new_parser(notes);
    XML_SetXmlDeclHandler(parser.get(), note_declaration);
    XML_SetStartElementHandler(parser.get(), stop_at_element);
    parse(parser.get(), read);
    return notes.encoding;
}

}  // namespace documents
