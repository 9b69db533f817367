#include "tools/sxml/document_check.h"

#include <expat.h>

#include <memory>
#include <vector>

#include "tools/sxml/errors.h"
#include "tools/sxml/record_file.h"

namespace command {

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;

using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

Parser new_parser() {
    Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    return parser;
}

// Feeds the whole file, until it ends or Expat has had enough.
XML_Status parse_file(XML_Parser parser, const std::string& file) {
    ByteSource source(file);
    std::vector<std::uint8_t> piece(PIECE);
    for (;;) {
        const std::size_t count = source.read(piece.data(), piece.size());
        const bool last = count < piece.size();
        const XML_Status status = XML_Parse(parser, reinterpret_cast<const char*>(piece.data()),
                                            static_cast<int>(count), last ? XML_TRUE : XML_FALSE);
        if (status != XML_STATUS_OK || last) return status;
    }
}

void XMLCALL note_declaration(void* parser, const XML_Char*, const XML_Char* encoding, int) {
    auto& name = *static_cast<std::string*>(XML_GetUserData(static_cast<XML_Parser>(parser)));
    if (encoding != nullptr) name = encoding;
}

void XMLCALL stop_at_element(void* parser, const XML_Char*, const XML_Char**) {
    XML_StopParser(static_cast<XML_Parser>(parser), XML_FALSE);
}

}  // namespace

std::optional<DocumentProblem> check_document(const std::string& file) {
    const Parser parser = new_parser();
    if (parse_file(parser.get(), file) == XML_STATUS_OK) return std::nullopt;
    return DocumentProblem{XML_GetCurrentLineNumber(parser.get()),
                           XML_GetCurrentColumnNumber(parser.get()) + 1,
                           XML_ErrorString(XML_GetErrorCode(parser.get()))};
}

std::string declared_encoding(const std::string& file) {
    const Parser parser = new_parser();
    std::string name;
    XML_SetUserData(parser.get(), &name);
    XML_UseParserAsHandlerArg(parser.get());
    XML_SetXmlDeclHandler(parser.get(), note_declaration);
    XML_SetStartElementHandler(parser.get(), stop_at_element);
    parse_file(parser.get(), file);
    return name;
}

}  // namespace command
