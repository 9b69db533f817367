#include "fsi/xml/elements/text_output.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "host/ascii_words.h"

namespace {

// A piece of text as a byte range.
struct Range {
    const char* begin;
    const char* end;
};

std::uint64_t write_items(HostStream* output, const char* begin, const char* end,
                          std::size_t width) {
    if (begin == end) return 0;
    return host_fwrite(begin, width, static_cast<std::size_t>(end - begin) / width, output);
}

// Bytes below 0x80 at which a run of a byte encoding ends: NUL, control bytes, markup characters.
constexpr std::array<bool, 128> make_run_ends() {
    std::array<bool, 128> ends{};
    for (std::uint32_t byte = 0; byte < ends.size(); ++byte) {
        ends[byte] = byte < 0x20 || !markup_entity(byte).empty();
    }
    return ends;
}
constexpr auto RUN_ENDS = make_run_ends();

std::uint64_t write_byte_entity(HostStream* output, unsigned char byte) {
    const std::string_view entity = markup_entity(byte);
    if (!entity.empty()) return host_fwrite(entity.data(), 1, entity.size(), output);
    constexpr char DIGITS[] = "0123456789abcdef";
    const char reference[] = {'&', '#', 'x', DIGITS[byte >> 4], DIGITS[byte & 0xF], ';'};
    return host_fwrite(reference, 1, sizeof reference, output);
}

// A byte below 0x80 is always a character of its own (host/encoding.h), so the host is asked about
// the others alone, with the result that asking about each byte would give.
std::uint64_t write_escaped_bytes(HostStream* output, Range text, std::int32_t encoding) {
    std::uint64_t written = 0;
    const char* run = text.begin;
    const char* at = text.begin;
    while (at != text.end) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte >= RUN_ENDS.size()) {
            const auto left = static_cast<std::size_t>(text.end - at);
            at += std::min(host_char_length(encoding, at), left);
        } else if (!RUN_ENDS[byte]) {
            ++at;
        } else if (byte == 0) {
            break;
        } else {
            written += write_items(output, run, at, 1);
            written += write_byte_entity(output, byte);
            run = ++at;
        }
    }
    return written + write_items(output, run, at, 1);
}

std::uint32_t code_unit(const char* at, std::size_t width, bool big_endian) {
    std::uint32_t unit = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const auto byte = static_cast<unsigned char>(at[big_endian ? i : width - 1 - i]);
        unit = unit << 8 | byte;
    }
    return unit;
}

std::uint64_t write_escaped_units(HostStream* output, std::int32_t output_encoding, Range text,
                                  std::int32_t encoding, std::size_t width) {
    const bool big_endian = encoding == HOST_ENCODING_UTF16BE || encoding == HOST_ENCODING_UTF32BE;
    const auto size = static_cast<std::size_t>(text.end - text.begin);
    const char* const end = text.begin + size / width * width;
    std::uint64_t written = 0;
    const char* run = text.begin;
    const char* at = text.begin;
    while (at != end) {
        const std::size_t length = host_char_length(encoding, at) / width * width;
        if (length > width) {
            at += std::min(length, static_cast<std::size_t>(end - at));
            continue;
        }
        const std::string_view entity = markup_entity(code_unit(at, width, big_endian));
        if (!entity.empty()) {
            written += write_items(output, run, at, width);
            written += xml_write_string(output, output_encoding, entity.data(), 0);
            run = at + width;
        }
        at += width;
    }
    return written + write_items(output, run, at, width);
}

Range trimmed(const XmlTextSpan& span, std::size_t width) {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    host_trim_span(&span, &start, &end);
    end = std::min(end, span.length);
    if (start >= end) return {span.text, span.text};
    return {span.text + start / width * width, span.text + end};
}

std::uint64_t write_raw(HostStream* output, std::int32_t output_encoding, const XmlTextSpan& span) {
    const char* end = span.text + span.length;
    if (output_encoding == HOST_ENCODING_UNKNOWN || output_encoding == HOST_ENCODING_NONE ||
        output_encoding == HOST_ENCODING_UTF8) {
        const void* nul = std::memchr(span.text, 0, span.length);
        if (nul != nullptr) end = static_cast<const char*>(nul);
    }
    return write_items(output, span.text, end, 1);
}

std::uint64_t write_piece(HostStream* output, std::int32_t output_encoding, Range piece,
                          std::uint8_t flags) {
    if (piece.begin == piece.end) return 0;
    const XmlTextSpan span = {piece.begin, static_cast<std::uint64_t>(piece.end - piece.begin),
                              HOST_ENCODING_NONE};
    return xml_write_text(output, output_encoding, &span, flags);
}

}  // namespace

std::uint64_t xml_write_text(HostStream* output, std::int32_t output_encoding,
                             const XmlTextSpan* span, std::uint8_t flags) {
    if (span == nullptr || span->text == nullptr || span->length == 0) return 0;
    if ((flags & XML_TEXT_ESCAPE) == 0) return write_raw(output, output_encoding, *span);
    if (span->encoding < HOST_ENCODING_UNKNOWN || span->encoding > HOST_ENCODING_LATIN1) return 0;

    const auto width = static_cast<std::size_t>(host_unit_width(span->encoding));
    const Range text = (flags & XML_TEXT_TRIM) != 0 ? trimmed(*span, width)
                                                    : Range{span->text, span->text + span->length};
    if (width == 1) return write_escaped_bytes(output, text, span->encoding);
    return write_escaped_units(output, output_encoding, text, span->encoding, width);
}

std::uint64_t xml_write_newline(HostStream* output, std::int32_t) {
    return host_fwrite("\r\n", 1, 2, output);
}

std::uint64_t xml_write_string(HostStream* output, std::int32_t output_encoding, const char* text,
                               std::uint8_t flags) {
    if (text == nullptr) return 0;
    const char* const end = text + std::strlen(text);
    std::uint64_t written = 0;
    for (const char* at = text; at != end;) {
        const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
        const char* const line_end = found != nullptr ? static_cast<const char*>(found) : end;
        written += write_piece(output, output_encoding, {at, line_end}, flags);
        if (found == nullptr) break;
        written += xml_write_newline(output, output_encoding);
        at = line_end + 1;
    }
    return written;
}

std::string_view plain_text(const XmlTextSpan& span) {
    if (span.text == nullptr || span.length == 0 || span.encoding < HOST_ENCODING_UNKNOWN ||
        span.encoding > HOST_ENCODING_LATIN1 || host_unit_width(span.encoding) != 1) {
        return {};
    }
    const Range text = trimmed(span, 1);
    for (const char* at = text.begin; at != text.end;) {
        const auto left = static_cast<std::size_t>(text.end - at);
        const ascii::Word word = ascii::load_short(at, left);
        if (ascii::is_odd(ascii::oddities(word))) return {};
        if (ascii::has_markup(ascii::lacks_markup(word))) return {};
        at += std::min(left, ascii::WORD_SIZE);
    }
    return {text.begin, static_cast<std::size_t>(text.end - text.begin)};
}
