#include "host/encoding.h"

#include <algorithm>
#include <cctype>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "host/runtime/memory/immortal.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/utf8.h"
#include "platform/character_sets.h"

const std::int32_t host_encoding_unit_width[9] = {1, 1, 1, 1, 2, 4, 2, 4, 1};

namespace {

struct NamedEncoding {
    std::string_view name;
    std::int32_t code;
};

// A name that leaves the byte order open means little-endian.
constexpr NamedEncoding FIXED_NAMES[] = {
    {"utf-8", HOST_ENCODING_UTF8},        {"utf8", HOST_ENCODING_UTF8},
    {"utf-16", HOST_ENCODING_UTF16LE},    {"utf16", HOST_ENCODING_UTF16LE},
    {"utf-16le", HOST_ENCODING_UTF16LE},  {"utf-16be", HOST_ENCODING_UTF16BE},
    {"ucs-2", HOST_ENCODING_UTF16LE},     {"iso-10646-ucs-2", HOST_ENCODING_UTF16LE},
    {"ucs-2le", HOST_ENCODING_UTF16LE},   {"ucs-2be", HOST_ENCODING_UTF16BE},
    {"utf-32", HOST_ENCODING_UTF32LE},    {"utf32", HOST_ENCODING_UTF32LE},
    {"utf-32le", HOST_ENCODING_UTF32LE},  {"utf-32be", HOST_ENCODING_UTF32BE},
    {"ucs-4", HOST_ENCODING_UTF32LE},     {"iso-10646-ucs-4", HOST_ENCODING_UTF32LE},
    {"ucs-4le", HOST_ENCODING_UTF32LE},   {"ucs-4be", HOST_ENCODING_UTF32BE},
    {"iso-8859-1", HOST_ENCODING_LATIN1}, {"iso8859-1", HOST_ENCODING_LATIN1},
    {"iso_8859-1", HOST_ENCODING_LATIN1}, {"latin1", HOST_ENCODING_LATIN1},
    {"latin-1", HOST_ENCODING_LATIN1},
};

constexpr std::size_t LONGEST_NAME = 100;
constexpr std::int32_t FIRST_FOUND_CODE = HOST_ENCODING_LATIN1 + 1;

// Names that the system's converter knows, in order of first use; the first has FIRST_FOUND_CODE.
constinit host::Immortal<std::vector<std::string>> found_names;

// Only what encoding names are made of: the converter gives a meaning of its own to an empty name
// and to what follows a slash.
bool is_encoding_name(std::string_view name) {
    constexpr std::string_view marks = "-_.:()+";
    return !name.empty() && name.size() <= LONGEST_NAME &&
           std::ranges::all_of(name, [marks](char c) {
               return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
                      marks.find(c) != marks.npos;
           });
}

bool converter_knows(const std::string& name) {
    platform::CharacterTable table;
    const auto kind = platform::find_character_set(name, table);
    if (kind == platform::CharacterSetKind::no_memory) throw std::bad_alloc();
    return kind != platform::CharacterSetKind::unknown;
}

std::int32_t find_code(std::string_view given) {
    if (!is_encoding_name(given)) return HOST_ENCODING_UNKNOWN;
    std::string name(given);
    std::ranges::transform(name, name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const NamedEncoding& fixed : FIXED_NAMES) {
        if (name == fixed.name) return fixed.code;
    }
    const auto found = std::ranges::find(*found_names, name);
    const auto code = FIRST_FOUND_CODE + static_cast<std::int32_t>(found - found_names->begin());
    if (found != found_names->end()) return code;
    if (!converter_knows(name)) return HOST_ENCODING_UNKNOWN;
    found_names->push_back(std::move(name));
    return code;
}

std::uint32_t read_unit(const char* text, std::int32_t code) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    const auto at = [bytes](int i) { return static_cast<std::uint32_t>(bytes[i]); };
    switch (code) {
        case HOST_ENCODING_UTF16LE:
            return at(0) | at(1) << 8;
        case HOST_ENCODING_UTF16BE:
            return at(1) | at(0) << 8;
        case HOST_ENCODING_UTF32LE:
            return at(0) | at(1) << 8 | at(2) << 16 | at(3) << 24;
        case HOST_ENCODING_UTF32BE:
            return at(3) | at(2) << 8 | at(1) << 16 | at(0) << 24;
        default:
            return at(0);
    }
}

bool is_white_space(std::uint32_t unit) {
    return unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n';
}

}  // namespace

std::int32_t host_encoding_code(const char* name) {
    if (name == nullptr) return HOST_ENCODING_UNKNOWN;
    try {
        return find_code(name);
    } catch (const std::bad_alloc&) {
        host::note_memory_failure();
        return HOST_ENCODING_UNKNOWN;
    }
}

std::size_t host_char_length(std::int32_t code, const void* text) {
    const std::uint32_t unit = read_unit(static_cast<const char*>(text), code);
    switch (code) {
        case HOST_ENCODING_UTF8:
            return std::max<std::size_t>(utf8::length_from(unit), 1);
        case HOST_ENCODING_UTF16LE:
        case HOST_ENCODING_UTF16BE:
            return unit >= 0xD800 && unit <= 0xDBFF ? 4 : 2;
        default:
            return static_cast<std::size_t>(host_unit_width(code));
    }
}

namespace {

// Where code units are bytes, bytes of ASCII need no look at what length they announce.
const char* find_byte(const HostTextSpan& span, std::uint8_t wanted) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(span.text);
    std::uint64_t at = 0;
    while (at < span.length) {
        if (bytes[at] == wanted) return span.text + at;
        at += bytes[at] < 0x80 ? 1 : host_char_length(span.encoding, bytes + at);
    }
    return nullptr;
}

}  // namespace

const char* host_span_find_char(const HostTextSpan* span, int character) {
    const auto width = static_cast<std::uint64_t>(host_unit_width(span->encoding));
    if (width == 1) return find_byte(*span, static_cast<std::uint8_t>(character));
    const auto wanted = static_cast<std::uint32_t>(character);
    std::uint64_t at = 0;
    while (at < span->length && span->length - at >= width) {
        const char* text = span->text + at;
        if (read_unit(text, span->encoding) == wanted) return text;
        at += host_char_length(span->encoding, text);
    }
    return nullptr;
}

namespace {

void trim_bytes(const HostTextSpan& span, std::uint64_t* start, std::uint64_t* end) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(span.text);
    std::uint64_t first = 0;
    std::uint64_t last = span.length;
    while (first < last && is_white_space(bytes[first])) ++first;
    while (first < last && is_white_space(bytes[last - 1])) --last;
    *start = first;
    *end = last;
}

}  // namespace

void host_trim_span(const HostTextSpan* span, std::uint64_t* start, std::uint64_t* end) {
    const auto width = static_cast<std::uint64_t>(host_unit_width(span->encoding));
    if (width == 1) return trim_bytes(*span, start, end);
    std::uint64_t first = 0;
    std::uint64_t last = span->length;
    const auto is_blank = [span](std::uint64_t at) {
        return is_white_space(read_unit(span->text + at, span->encoding));
    };
    while (last - first >= width && is_blank(first)) first += width;
    // Bytes at the end that do not make a whole unit are not white space.
    const bool has_rest = span->length % width != 0;
    while (!has_rest && last - first >= width && is_blank(last - width)) last -= width;
    *start = first;
    *end = last;
}

std::int32_t host_detect_encoding(const HostTextSpan* span) {
    struct Pattern {
        std::string_view start;
        std::int32_t code;
    };
    // A longer pattern stands before one that it begins with.
    using namespace std::string_view_literals;
    static constexpr Pattern patterns[] = {
        {"\xFF\xFE\0\0"sv, HOST_ENCODING_UTF32LE}, {"\0\0\xFE\xFF"sv, HOST_ENCODING_UTF32BE},
        {"<\0\0\0"sv, HOST_ENCODING_UTF32LE},      {"\0\0\0<"sv, HOST_ENCODING_UTF32BE},
        {"\xFF\xFE"sv, HOST_ENCODING_UTF16LE},     {"\xFE\xFF"sv, HOST_ENCODING_UTF16BE},
        {"<\0"sv, HOST_ENCODING_UTF16LE},          {"\0<"sv, HOST_ENCODING_UTF16BE},
    };
    const std::string_view text(span->text, span->length);
    for (const Pattern& pattern : patterns) {
        if (text.starts_with(pattern.start)) return pattern.code;
    }
    return HOST_ENCODING_UTF8;
}

std::uint32_t host_next_char(const char** cursor) {
    constexpr std::uint32_t replacement = 0xFFFD;
    const auto* bytes = reinterpret_cast<const unsigned char*>(*cursor);
    const unsigned char lead = bytes[0];
    if (lead == 0) return 0;
    const std::size_t length = std::max<std::size_t>(utf8::length_from(lead), 1);
    std::size_t good = 1;
    std::uint32_t character = lead < 0x80 ? lead : lead & (0x7FU >> length);
    if (length > 1 && utf8::may_follow(lead, bytes[1])) {
        do {
            character = character << 6 | (bytes[good] & utf8::CONTINUATION_BITS);
            ++good;
        } while (good < length && utf8::continues(bytes[good]));
    }
    *cursor += good;
    const bool is_whole = good == length && (length > 1 || lead < 0x80);
    return is_whole ? character : replacement;
}

void host_convert_case(char* name, int limit, int kind) {
    constexpr int whole_name = -3;
    const std::size_t most =
        limit == whole_name ? SIZE_MAX : static_cast<std::size_t>(std::max(limit, 0));
    for (std::size_t i = 0; i < most && name[i] != '\0'; ++i) {
        if (kind == HOST_NAME_LOWER_CASE && name[i] >= 'A' && name[i] <= 'Z') {
            name[i] = static_cast<char>(name[i] - 'A' + 'a');
        } else if (kind == HOST_NAME_UNDERSCORES && name[i] == '-') {
            name[i] = '_';
        }
    }
}
