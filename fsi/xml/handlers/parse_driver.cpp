#include "fsi/xml/handlers/parse_driver.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "fsi/xml/handlers/early_events.h"
#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/trace_message.h"
#include "host/errors.h"

namespace {

// The encoding shows in this many bytes, when it shows at all.
constexpr std::size_t DETECTION_SIZE = 4;

// A tag or comment that Expat has seen this much of without its end is fed in pieces as large as
// what it has seen. Expat looks at an unfinished token from its start every time, so pieces of
// fixed size (or one for every `>` in an attribute) would take quadratic time.
constexpr std::uint64_t LONG_TOKEN = 4096;

// Largest piece given to Expat at once.
constexpr std::size_t MAX_PIECE = INT_MAX / 4;

void report_parse_error(XmlParser& parser) {
    const XML_Error code = XML_GetErrorCode(parser.expat);
    parser.state |= XMLPS_FAILED;
    *host_file_error() = HOST_FILE_XML;
    *host_error_detail(HOST_FILE_XML) = HOST_DETAIL_EXPAT;
    *host_error_subcode() = static_cast<std::int32_t>(code);
    const bool is_too_deep = (parser.state & XMLPS_ENTITIES_TOO_DEEP) != 0;
    *host_error_text() =
        keep_error_text(is_too_deep ? ENTITIES_NEST_TOO_DEEP : XML_ErrorString(code));
    if (host_trace_on) host_trace(-1, HOST_TRACE_PARSER, "Parse error");
}

void leave(const char* text) {
    if (host_trace_on) host_trace(-1, HOST_TRACE_PARSER, "%s", text);
}

void leave_out_of_memory() {
    *host_file_error() = HOST_FILE_NO_MEMORY;
    leave("Leaving, out of memory");
}

void leave_at_end(const XmlParser& parser) {
    *host_file_error() = HOST_FILE_END;
    *host_error_subcode() = parser.missing;
    leave("Leaving, EOF");
}

// True when the parse has ended; the outcome is then reported again.
bool is_over(XmlParser& parser) {
    if (!parser.expat)
        leave_at_end(parser);
    else if (stopped(parser))
        leave_out_of_memory();
    else if ((parser.state & XMLPS_FAILED) && !parser.first_early)
        report_parse_error(parser);
    else
        return false;
    return true;
}

// Records Expat's result for a piece of input. False when the parse is over, which is then
// reported.
bool accept(XmlParser& parser, XML_Status status) {
    if (stopped(parser)) {
        leave_out_of_memory();
        return false;
    }
    if (status == XML_STATUS_ERROR && is_early(parser)) {
        // What is wrong comes after the record that was asked for.
        parser.state |= XMLPS_FAILED;
        leave("Leaving");
        return false;
    }
    if (status == XML_STATUS_ERROR) {
        report_parse_error(parser);
        return false;
    }
    if (status == XML_STATUS_SUSPENDED) parser.state |= XMLPS_SUSPENDED;
    return true;
}

bool feed(XmlParser& parser, std::size_t length) {
    const int size = static_cast<int>(length);
    if (!accept(parser, XML_Parse(parser.expat, parser.position, size, XML_FALSE))) return false;
    parser.position += length;
    parser.bytes_fed += length;
    return true;
}

// Keeps what Expat misses at the end of the input. False when it is memory or nothing.
bool is_incomplete(XmlParser& parser, XML_Status status) {
    const XML_Error code =
        status == XML_STATUS_ERROR ? XML_GetErrorCode(parser.expat) : XML_ERROR_NONE;
    if (code == XML_ERROR_NONE || code == XML_ERROR_NO_MEMORY) return false;
    parser.missing = static_cast<std::int32_t>(code);
    return true;
}

bool resume(XmlParser& parser) {
    parser.state &= ~std::uint32_t{XMLPS_SUSPENDED};
    const XML_Status status = XML_ResumeParser(parser.expat);
    const bool has_ended = (parser.state & XMLPS_INPUT_ENDED) && !stopped(parser);
    return (has_ended && is_incomplete(parser, status)) || accept(parser, status);
}

// Bytes given to Expat that it has not used yet: the beginning of an unfinished token.
std::uint64_t unused_bytes(const XmlParser& parser) {
    const std::int64_t used = current_byte_index(parser);
    return used < 0 ? parser.bytes_fed : parser.bytes_fed - static_cast<std::uint64_t>(used);
}

// Feeds up to `wanted` bytes as one piece, reading more input straight into Expat's own buffer
// where the parser's buffer holds less.
bool feed_long_piece(XmlParser& parser, HostStream* stream, std::size_t wanted) {
    const auto buffered = static_cast<std::size_t>(parser.end - parser.position);
    if (buffered >= wanted || !stream) return feed(parser, std::min(buffered, wanted));

    auto* space = static_cast<char*>(XML_GetBuffer(parser.expat, static_cast<int>(wanted)));
    if (!space) {
        report_parse_error(parser);
        return false;
    }
    std::memcpy(space, parser.position, buffered);
    parser.position = parser.end;
    std::size_t filled = buffered;
    while (filled < wanted) {
        const std::size_t count = host_fread(space + filled, 1, wanted - filled, stream);
        if (count == 0) break;
        filled += count;
    }
    parser.bytes_fed += filled;
    return accept(parser, XML_ParseBuffer(parser.expat, static_cast<int>(filled), XML_FALSE));
}

// Reads more input into the empty buffer. The first time, enough of it to tell the encoding by.
// False at the end of the input.
bool read_more(XmlParser& parser, HostStream* stream) {
    if (!stream || (parser.state & XMLPS_INPUT_ENDED)) return false;
    const std::size_t least = parser.bytes_fed == 0 ? DETECTION_SIZE : 1;
    std::size_t filled = 0;
    while (filled < least) {
        const std::size_t count =
            host_fread(parser.buffer + filled, 1, XML_READ_SIZE - filled, stream);
        if (count == 0) break;
        filled += count;
    }
    parser.position = parser.buffer;
    parser.end = parser.buffer + filled;
    return filled > 0;
}

// Tells Expat that the input has ended, so that it hands over what it held back. Missing parts of
// the document are not an error; only text lost for lack of memory is.
void finish(XmlParser& parser) {
    if (!(parser.state & XMLPS_INPUT_ENDED)) {
        const XML_Status status = XML_Parse(parser.expat, parser.buffer, 0, XML_TRUE);
        if (stopped(parser)) return leave_out_of_memory();
        if (!is_incomplete(parser, status) && status == XML_STATUS_ERROR)
            return report_parse_error(parser);
        parser.state |= XMLPS_INPUT_ENDED;
        if (status == XML_STATUS_SUSPENDED) {
            parser.state |= XMLPS_SUSPENDED;
            return leave("Leaving");
        }
    }
    leave_at_end(parser);
}

// The encoding of a document by its first bytes. What Expat takes for 16-bit units must be searched
// as such, also where the document begins with white space.
std::int32_t detect_encoding(const HostTextSpan& span) {
    const std::int32_t code = host_detect_encoding(&span);
    if (host_unit_width(code) > 1 || span.length < 2) return code;
    if (span.text[0] == '\0') return HOST_ENCODING_UTF16BE;
    if (span.text[1] == '\0') return HOST_ENCODING_UTF16LE;
    return code;
}

HostTextSpan unread_span(XmlParser& parser) {
    HostTextSpan span{parser.position, static_cast<std::uint64_t>(parser.end - parser.position),
                      HOST_ENCODING_NONE};
    if (parser.input_encoding == HOST_ENCODING_UNKNOWN &&
        !(parser.state & XMLPS_ENCODING_DETECTED)) {
        set_input_encoding(parser, detect_encoding(span));
        parser.state |= XMLPS_ENCODING_DETECTED;
    }
    span.encoding = parser.input_encoding;
    return span;
}

// Expat suspends itself where a stepwise parser has to stop, so that all that is there can be fed;
// the trace shows every tag by itself. Where the plain lane may read records, Expat gets no more
// input than it needs.
bool feeds_freely(const XmlParser& parser) {
    constexpr std::uint32_t BOTH = XMLPS_STEPWISE | XMLPS_PLAIN_RECORDS;
    return (parser.state & BOTH) == XMLPS_STEPWISE && !host_trace_on;
}

// Feeds the next piece of the buffer. `*at_gt` tells whether it ended in a `>`.
bool feed_to_next_gt(XmlParser& parser, HostStream* stream, bool* at_gt) {
    const HostTextSpan span = unread_span(parser);
    *at_gt = false;
    const std::uint64_t unused = unused_bytes(parser);
    if (unused >= LONG_TOKEN)
        return feed_long_piece(parser, stream, std::min<std::size_t>(unused, MAX_PIECE));

    const char* gt = feeds_freely(parser) ? nullptr : host_span_find_char(&span, '>');
    std::size_t length = span.length;
    if (gt) {
        const auto width = static_cast<std::size_t>(host_unit_width(parser.input_encoding));
        length =
            std::min<std::size_t>(length, static_cast<std::size_t>(gt - parser.position) + width);
    }
    *at_gt = gt != nullptr && length <= MAX_PIECE;
    return feed(parser, std::min(length, MAX_PIECE));
}

}  // namespace

void parse_to_next_gt(XmlParser* parser, HostStream* stream) {
    if (host_trace_on) host_trace(1, HOST_TRACE_PARSER, "Parsing to next >");
    if (is_over(*parser)) return;
    if (replay_early_events(*parser)) {
        if (accept(*parser, XML_STATUS_OK)) leave("Leaving");
        return;
    }
    if ((parser->state & XMLPS_SUSPENDED) && !resume(*parser)) return;
    bool at_gt = false;
    while (!at_gt && !(parser->state & XMLPS_SUSPENDED) && !is_early(*parser)) {
        if (parser->position == parser->end && !read_more(*parser, stream)) return finish(*parser);
        if (!feed_to_next_gt(*parser, stream, &at_gt)) return;
    }
    leave("Leaving");
}

void parse_to_end(XmlParser* parser, HostStream* stream) {
    if (host_trace_on) host_trace(1, HOST_TRACE_PARSER, "Parsing to end of file");
    if (is_over(*parser)) return;
    parser->state &= ~std::uint32_t{XMLPS_STEPWISE};
    replay_early_events(*parser);
    if (is_over(*parser)) return;
    while (parser->state & XMLPS_SUSPENDED)
        if (!resume(*parser)) return;
    while (parser->position != parser->end || read_more(*parser, stream)) {
        const auto buffered = static_cast<std::size_t>(parser->end - parser->position);
        const std::uint64_t unused = unused_bytes(*parser);
        const bool long_token = stream && unused >= LONG_TOKEN;
        const std::size_t wanted = long_token ? std::max<std::size_t>(buffered, unused) : buffered;
        if (!feed_long_piece(*parser, stream, std::min(wanted, MAX_PIECE))) return;
    }
    finish(*parser);
}
