#include "conversion/documents/checked_parser.h"

#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

#include "conversion/formats/byte_source.h"

namespace conversion {

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;

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

// Feeds the whole document, until it ends or Expat has had enough.
Result<XML_Status> feed(XML_Parser parser, ByteSource& source) {
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

}  // namespace

CheckedParser::CheckedParser(void* owner)
    : parser_(XML_ParserCreate(nullptr), &XML_ParserFree), owner_(owner) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(expat(), this);
    XML_UseParserAsHandlerArg(expat());
    XML_SetEntityDeclHandler(expat(), count_entity);
    XML_SetEndDoctypeDeclHandler(expat(), end_entities);
}

CheckedParser::~CheckedParser() {
    forget_entities(entities_);
}

CheckedParser& CheckedParser::of(void* parser) {
    return *static_cast<CheckedParser*>(XML_GetUserData(static_cast<XML_Parser>(parser)));
}

void CheckedParser::judge(EntityDepth depth) {
    if (depth == EntityDepth::ALLOWED) return;
    depth_ = depth;
    XML_StopParser(expat(), XML_FALSE);
}

void XMLCALL CheckedParser::end_entities(void* parser) {
    of(parser).judge(measure_entities(of(parser).entities_));
}

void XMLCALL CheckedParser::count_entity(void* parser, const XML_Char* name, int is_parameter,
                                         const XML_Char* value, int length, const XML_Char*,
                                         const XML_Char*, const XML_Char*, const XML_Char*) {
    if (value == nullptr || is_parameter != 0) return;
    const std::string_view text(value, static_cast<std::size_t>(length));
    of(parser).judge(note_entity(of(parser).entities_, name, text));
}

void CheckedParser::stop() {
    is_stopped_ = true;
    XML_StopParser(expat(), XML_FALSE);
}

Done CheckedParser::parse(const std::string& file, const std::string& shown_name) {
    Result<ByteSource> source = ByteSource::open(file);
    if (!source) return source.problem();
    const Result<XML_Status> status = feed(expat(), *source);
    if (!status) return status.problem();
    if (depth_ == EntityDepth::NO_MEMORY) throw std::bad_alloc();
    if (*status == XML_STATUS_OK || is_stopped_) return {};
    const bool is_too_deep = depth_ == EntityDepth::TOO_DEEP;
    if (!is_too_deep && XML_GetErrorCode(expat()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    Place place;
    place.file = shown_name;
    place.line = current_line(expat());
    place.column = current_column(expat()) + 1;
    return Problem{
        Cause::document, place,
        is_too_deep ? ENTITIES_NEST_TOO_DEEP : XML_ErrorString(XML_GetErrorCode(expat())), ""};
}

}  // namespace conversion
