#include "conversion/documents/checked_parser.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "conversion/formats/byte_source.h"

namespace conversion {

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;

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

bool names_latin_1(std::string_view encoding) {
    constexpr std::string_view NAME = "iso-8859-1";
    return std::equal(
        encoding.begin(), encoding.end(), NAME.begin(), NAME.end(),
        [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

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
    if (depth == EntityDepth::NO_MEMORY) stop_without_memory();
    if (depth == EntityDepth::TOO_DEEP) {
        try {
            stop(Problem{Cause::document, place(), ENTITIES_NEST_TOO_DEEP, ""});
        } catch (const std::bad_alloc&) {
            stop_without_memory();
        }
    }
}

void XMLCALL CheckedParser::end_entities(void* parser) {
    of(parser).judge(measure_entities(of(parser).entities_));
}

void XMLCALL CheckedParser::count_entity(void* parser, const XML_Char* name, int is_parameter,
                                         const XML_Char* value, int length, const XML_Char*,
                                         const XML_Char*, const XML_Char*, const XML_Char*) {
    if (value == nullptr && is_parameter == 0) of(parser).has_external_entities_ = true;
    if (value == nullptr || is_parameter != 0) return;
    const std::string_view text(value, static_cast<std::size_t>(length));
    if (of(parser).keeps_entity_texts_) {
        guarded(parser, [=] { of(parser).entity_texts_.emplace(name, text); });
    }
    of(parser).judge(note_entity(of(parser).entities_, name, text));
}

void CheckedParser::stop() {
    is_stopped_ = true;
    XML_StopParser(expat(), XML_FALSE);
}

void CheckedParser::stop(Problem problem) {
    problem_ = std::move(problem);
    stop();
}

void CheckedParser::stop_without_memory() {
    has_no_memory_ = true;
    stop();
}

Place CheckedParser::place() const {
    Place place;
    place.file = shown_name_;
    place.line = line_of_event(expat());
    place.column = column_of_event(expat());
    return place;
}

Done CheckedParser::parse(const std::string& file, const std::string& shown_name) {
    shown_name_ = shown_name;
    Result<ByteSource> source = ByteSource::open(file);
    if (!source) return source.problem();
    const Result<XML_Status> status = feed(expat(), *source);
    if (!status) return status.problem();
    if (has_no_memory_) throw std::bad_alloc();
    if (is_stopped_) return problem_;
    if (*status == XML_STATUS_OK) return {};
    const XML_Error error = XML_GetErrorCode(expat());
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    return Problem{Cause::document, place(), XML_ErrorString(error), ""};
}

}  // namespace conversion
