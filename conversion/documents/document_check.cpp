#include "conversion/documents/document_check.h"

#include <expat.h>

#include <cstdint>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "conversion/formats/byte_source.h"
#include "host/entities/entity_depth.h"

namespace conversion {

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
Result<XML_Status> parse(XML_Parser parser, ByteSource& source) {
    std::vector<std::uint8_t> piece(PIECE);
    for (;;) {
        const Result<std::size_t> count = source.read(piece.data(), piece.size());
        if (!count) return count.problem();
        const bool last = *count < piece.size();
        const XML_Status status = XML_Parse(parser, reinterpret_cast<const char*>(piece.data()),
                                            static_cast<int>(*count), last ? XML_TRUE : XML_FALSE);
        if (status != XML_STATUS_OK || last) return status;
    }
}

void XMLCALL note_declaration(void* parser, const XML_Char*, const XML_Char* encoding, int) {
    if (encoding != nullptr) notes_of(parser).encoding = encoding;
}

void XMLCALL stop_at_element(void* parser, const XML_Char*, const XML_Char**) {
    XML_StopParser(static_cast<XML_Parser>(parser), XML_FALSE);
}

// Expat's lines count from 1, its columns from 0. The older functions are as wide as a long.
#ifdef SXML_HAS_XML_GetCurrentLineNumber64
std::uint64_t current_line(XML_Parser parser) {
    return XML_GetCurrentLineNumber64(parser);
}
std::uint64_t current_column(XML_Parser parser) {
    return XML_GetCurrentColumnNumber64(parser);
}
#else
std::uint64_t current_line(XML_Parser parser) {
    return XML_GetCurrentLineNumber(parser);
}
std::uint64_t current_column(XML_Parser parser) {
    return XML_GetCurrentColumnNumber(parser);
}
#endif

}  // namespace

Done check_document(const std::string& file, const std::string& shown_name) {
    Result<ByteSource> source = ByteSource::open(file);
    if (!source) return source.problem();
    Notes notes;
    const Parser parser = new_parser(notes);
    const Result<XML_Status> status = parse(parser.get(), *source);
    if (!status) return status.problem();
    if (*status == XML_STATUS_OK) return {};
    if (notes.depth == EntityDepth::NO_MEMORY) throw std::bad_alloc();
    Place place;
    place.file = shown_name;
    place.line = current_line(parser.get());
    place.column = current_column(parser.get()) + 1;
    const bool is_too_deep = notes.depth == EntityDepth::TOO_DEEP;
    return Problem{
        Cause::document, place,
        is_too_deep ? ENTITIES_NEST_TOO_DEEP : XML_ErrorString(XML_GetErrorCode(parser.get())), ""};
}

Result<std::string> declared_encoding(const std::string& file) {
    Result<ByteSource> source = ByteSource::open(file);
    if (!source) return source.problem();
    Notes notes;
    const Parser parser = new_parser(notes);
    XML_SetXmlDeclHandler(parser.get(), note_declaration);
    XML_SetStartElementHandler(parser.get(), stop_at_element);
    const Result<XML_Status> status = parse(parser.get(), *source);
    if (!status) return status.problem();
    if (notes.depth == EntityDepth::NO_MEMORY) throw std::bad_alloc();
    return notes.encoding;
}

}  // namespace conversion
