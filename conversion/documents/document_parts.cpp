#include "conversion/documents/document_parts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "conversion/documents/checked_parser.h"
#include "conversion/documents/document_frame.h"
#include "platform/paths.h"

namespace conversion {

namespace {

// More would be a burden for each part.
constexpr std::uint64_t LONGEST_BEGINNING = std::uint64_t{1} << 15;
// The names of records are those of the first ones.
constexpr std::uint64_t BYTES_LOOKED_AT = std::uint64_t{1} << 18;
constexpr std::size_t RECORDS_LOOKED_AT = 1000;
constexpr std::uint64_t PIECE = std::uint64_t{1} << 16;

constexpr std::array<std::string_view, 4> ENCODINGS = {"", "UTF-8", "US-ASCII", "ISO-8859-1"};

// What the beginning of a document says.
struct Beginning {
    bool is_alone = true;  // no external subset
    std::string encoding;
    ByteRange tag;                // of the document element
    std::vector<ByteRange> tags;  // of records
    std::uint64_t depth = 0;

    static Beginning& of(void* parser) {
        return *static_cast<Beginning*>(CheckedParser::owner(parser));
    }
};

void XMLCALL declare(void* parser, const XML_Char*, const XML_Char* encoding, int) {
    if (encoding != nullptr) Beginning::of(parser).encoding = encoding;
}

void XMLCALL start_type(void* parser, const XML_Char*, const XML_Char* system,
                        const XML_Char* identifier, int) {
    Beginning::of(parser).is_alone = system == nullptr && identifier == nullptr;
}

void XMLCALL start(void* parser, const XML_Char*, const XML_Char**) {
    Beginning& beginning = Beginning::of(parser);
    const ByteRange range = bytes_of_event(static_cast<XML_Parser>(parser));
    if (++beginning.depth == 1) {
        beginning.tag = range;
    } else if (beginning.depth == 2 && beginning.tags.size() < RECORDS_LOOKED_AT) {
        beginning.tags.push_back(range);  // for which there is room
    }
    const bool is_enough = range.end > LONGEST_BEGINNING + BYTES_LOOKED_AT;
    if (is_enough || beginning.tags.size() == RECORDS_LOOKED_AT) {
        CheckedParser::of(parser).stop();
    }
}

void XMLCALL finish(void* parser, const XML_Char*) {
    --Beginning::of(parser).depth;
}

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The name in a tag, as it is written there.
std::string name_of(std::string_view tag) {
    const std::size_t end = tag.find_first_of(" \t\r\n/>", 1);
    return std::string(tag.substr(1, end - 1));
}

std::string upper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// Whether what stands before the records may stand before each part.
bool is_repeatable(const Beginning& beginning, const std::string& text) {
    const std::string encoding = upper(beginning.encoding);
    return beginning.is_alone && text.find("<!ENTITY") == std::string::npos &&
           text.find('\0') == std::string::npos && !text.ends_with("/>") &&
           std::find(ENCODINGS.begin(), ENCODINGS.end(), encoding) != ENCODINGS.end();
}

}  // namespace

Result<std::optional<DocumentParts>> DocumentParts::of(const std::string& file,
                                                       const std::string& shown_name,
                                                       std::uint64_t part_size) {
    std::error_code error;
    DocumentParts parts;
    parts.size_ = std::filesystem::file_size(platform::path_of(file), error);
    if (error) return system_problem(shown_name, error.value());
    Beginning beginning;
    beginning.tags.reserve(RECORDS_LOOKED_AT);
    CheckedParser parser(&beginning);
    XML_SetXmlDeclHandler(parser.expat(), declare);
    XML_SetStartDoctypeDeclHandler(parser.expat(), start_type);
    XML_SetElementHandler(parser.expat(), start, finish);
    const Done problem = parser.parse(file, shown_name);
    const ByteRange tag = beginning.tag;
    if (problem || beginning.tags.empty() || tag.end > LONGEST_BEGINNING) {
        return std::optional<DocumentParts>();
    }
    const auto bytes = bytes_of(file, {0, beginning.tags.back().end});
    if (!bytes) return bytes.problem();
    const std::string_view text = *bytes;
    parts.beginning_ = text.substr(0, static_cast<std::size_t>(tag.end));
    if (!is_repeatable(beginning, parts.beginning_)) return std::optional<DocumentParts>();
    parts.end_tag_ = "</" + name_of(text.substr(static_cast<std::size_t>(tag.begin))) + ">";
    for (const ByteRange& record : beginning.tags) {
        std::string name = name_of(text.substr(static_cast<std::size_t>(record.begin)));
        const bool is_known =
            std::find(parts.names_.begin(), parts.names_.end(), name) != parts.names_.end();
        if (!is_known) parts.names_.push_back(std::move(name));
    }
    parts.file_ = file;
    parts.shown_name_ = shown_name;
    parts.part_size_ = std::max<std::uint64_t>(1, part_size);
    return std::optional(std::move(parts));
}

std::uint64_t DocumentParts::count() const {
    return (size_ - beginning_.size() + part_size_ - 1) / part_size_;
}

// Where a part is to begin, if there is a cut before the next one's place.
std::uint64_t DocumentParts::guess(std::uint64_t part) const {
    return part >= count() ? size_ : beginning_.size() + part * part_size_;
}

Result<ByteRange> DocumentParts::bytes(std::uint64_t part) const {
    ByteRange range{guess(part), size_};
    if (part > 0) {
        const auto cut = find_cut(guess(part), guess(part + 1));
        if (!cut) return cut.problem();
        if (!*cut) return ByteRange{range.begin, range.begin};  // the part before goes on
        range.begin = **cut;
    }
    for (std::uint64_t next = part + 1; next < count(); ++next) {
        const auto cut = find_cut(guess(next), guess(next + 1));
        if (!cut) return cut.problem();
        if (!*cut) continue;
        range.end = **cut;
        break;
    }
    return range;
}

// The place after the first end tag of a record that begins in a range.
Result<std::optional<std::uint64_t>> DocumentParts::find_cut(std::uint64_t begin,
                                                             std::uint64_t end) const {
    while (begin < end) {
        const std::uint64_t piece_end = std::min(end, begin + PIECE);
        // With what a tag may have beyond the piece.
        const auto bytes = bytes_of(file_, {begin, std::min(size_, piece_end + LONGEST_BEGINNING)});
        if (!bytes) return bytes.problem();
        const std::string_view text = *bytes;
        const auto size = static_cast<std::size_t>(piece_end - begin);
        for (std::size_t at = text.find("</"); at < size; at = text.find("</", at + 2)) {
            const auto length = end_of_record_tag(text.substr(at));
            if (length) return std::optional(begin + at + *length);
        }
        begin = piece_end;
    }
    return std::optional<std::uint64_t>();
}

// The length of the end tag that a text begins with, when it is one of a record.
std::optional<std::size_t> DocumentParts::end_of_record_tag(std::string_view text) const {
    for (const std::string& name : names_) {
        if (text.substr(2, name.size()) != name) continue;
        std::size_t at = 2 + name.size();
        while (at < text.size() && is_blank(text[at])) ++at;
        if (at < text.size() && text[at] == '>') return at + 1;
    }
    return std::nullopt;
}

}  // namespace conversion
