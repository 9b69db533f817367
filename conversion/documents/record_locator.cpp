#include "conversion/documents/record_locator.h"

#include <expat.h>

#include <cstdio>
#include <fstream>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "conversion/documents/expat_position.h"
#include "conversion/texts/utf8.h"
#include "platform/paths.h"

namespace conversion {

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;

// UTF-16 as UTF-8. Invalid units become some other character.
std::string utf8_of_utf16(const std::string& bytes, bool is_big_endian) {
    std::string text;
    char32_t high = 0;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const auto first = static_cast<std::uint8_t>(bytes[at]);
        const auto second = static_cast<std::uint8_t>(bytes[at + 1]);
        const char32_t unit =
            is_big_endian ? char32_t{first} << 8U | second : char32_t{second} << 8U | first;
        if (unit >= 0xD800 && unit < 0xDC00) {
            high = unit;
        } else if (unit >= 0xDC00 && unit < 0xE000) {
            append_utf8(0x10000 + ((high & 0x3FFU) << 10U) + (unit & 0x3FFU), text);
        } else {
            append_utf8(unit, text);
        }
    }
    return text;
}

}  // namespace

struct RecordLocator::Search {
    Search(std::string name, std::optional<AttributeRule> rule)
        : file(std::move(name)),
          input(platform::path_of(file), std::ios::binary),
          parser(XML_ParserCreate(nullptr)) {
        if (parser == nullptr) throw std::bad_alloc();
        if (rule) made.emplace(*std::move(rule));
    }
    ~Search() { XML_ParserFree(parser); }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    std::string file;
    std::ifstream input;
    XML_Parser parser;
    std::vector<char> piece = std::vector<char>(PIECE);
    std::string declared;  // encoding
    std::uint64_t wanted = 0;
    std::uint64_t record = 0;  // begun
    int depth = 0;
    bool is_suspended = false;
    bool is_over = false;            // the end, or what cannot be parsed
    std::vector<Position> elements;  // of the wanted record
    ByteRange bytes;                 // of it; the end is 0 until that is found
    std::optional<AttributeElements> made;

    static Search& of(void* user) { return *static_cast<Search*>(user); }
    bool is_in_wanted_record() const { return depth > 1 && record == wanted; }

    static void XMLCALL start(void* user, const XML_Char* name, const XML_Char** attributes) {
        Search& self = of(user);
        if (++self.depth == 2) ++self.record;
        if (self.made) self.made->ends_text();
        const std::size_t count = self.made ? self.made->begin(name, attributes).size() : 0;
        if (!self.is_in_wanted_record()) return;
        if (self.depth == 2) self.bytes.begin = bytes_of_event(self.parser).begin;
        self.note(1 + count);
    }

    static void XMLCALL note_text(void* user, const XML_Char* text, int length) {
        Search& self = of(user);
        const std::string_view piece(text, static_cast<std::size_t>(length));
        if (self.made->begins_text(piece) && self.is_in_wanted_record()) self.note(1);
    }

    void note(std::size_t count) {
        elements.insert(elements.end(), count, {line_of_event(parser), column_of_event(parser)});
    }

    static void XMLCALL finish(void* user, const XML_Char*) {
        Search& self = of(user);
        if (self.made) self.made->ends_text();
        const std::size_t count = self.made ? self.made->end().size() : 0;
        if (count > 0 && self.is_in_wanted_record()) self.note(count);
        const bool is_end = self.depth == 2 && self.is_in_wanted_record();
        --self.depth;
        if (!is_end) return;
        self.bytes.end = bytes_of_event(self.parser).end;
        XML_StopParser(self.parser, XML_TRUE);
    }

    static void XMLCALL declare(void* user, const XML_Char*, const XML_Char* encoding, int) {
        if (encoding != nullptr) of(user).declared = encoding;
    }

    // Parses on, until suspended or at the end.
    void go_on() {
        const XML_Status status = is_suspended ? XML_ResumeParser(parser) : parse_piece();
        is_suspended = status == XML_STATUS_SUSPENDED;
        if (status == XML_STATUS_ERROR) is_over = true;
    }

    XML_Status parse_piece() {
        input.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        const auto count = static_cast<int>(input.gcount());
        const bool is_last = static_cast<std::size_t>(count) < piece.size();
        if (is_last) is_over = true;
        return XML_Parse(parser, piece.data(), count, is_last ? XML_TRUE : XML_FALSE);
    }
};

RecordLocator::RecordLocator(std::string file, std::optional<AttributeRule> rule)
    : search_(new Search(std::move(file), std::move(rule))) {
    XML_SetUserData(search_->parser, search_.get());
    XML_SetElementHandler(search_->parser, &Search::start, &Search::finish);
    XML_SetXmlDeclHandler(search_->parser, &Search::declare);
    if (search_->made) XML_SetCharacterDataHandler(search_->parser, &Search::note_text);
}

RecordLocator::~RecordLocator() = default;

// True when the whole record has been found.
bool RecordLocator::seek(std::uint64_t record) {
    Search& search = *search_;
    if (search.wanted == record) return search.bytes.end > 0;
    if (record < search.wanted) return false;
    search.wanted = record;
    search.elements.clear();
    search.bytes.end = 0;
    while (search.bytes.end == 0 && (search.is_suspended || !search.is_over)) search.go_on();
    return search.bytes.end > 0;
}

std::optional<RecordLocator::Position> RecordLocator::position(std::uint64_t record,
                                                               std::uint32_t element) {
    seek(record);
    const std::vector<Position>& elements = search_->elements;
    if (search_->wanted != record || element == 0 || element > elements.size()) {
        return std::nullopt;
    }
    return elements[element - 1];
}

std::string RecordLocator::text(std::uint64_t record) {
    if (!seek(record)) return {};
    std::ifstream input(platform::path_of(search_->file), std::ios::binary);
    const ByteRange range = search_->bytes;
    std::string bytes(static_cast<std::size_t>(range.end - range.begin), '\0');
    input.seekg(static_cast<std::streamoff>(range.begin));
    input.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(input.gcount()));
    const bool is_big = bytes.starts_with(std::string("\0<", 2));
    if (!is_big && !bytes.starts_with(std::string("<\0", 2))) return bytes;
    return utf8_of_utf16(bytes, is_big);
}

std::string RecordLocator::encoding() const {
    const std::string& declared = search_->declared;
    const bool is_wide = declared.starts_with("UTF-16") || declared.starts_with("utf-16");
    return declared.empty() || is_wide ? "UTF-8" : declared;
}

}  // namespace conversion
