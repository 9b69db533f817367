#include "conversion/documents/document_frame.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include "conversion/documents/checked_parser.h"
#include "platform/paths.h"

namespace conversion {

namespace {

constexpr std::uint64_t PIECE = std::uint64_t{1} << 16;

struct Walk {
    DocumentFrame frame;
    const AfterChild& after_child;
    std::uint64_t depth = 0;
};

Walk& walk_of(void* parser) {
    return *static_cast<Walk*>(CheckedParser::owner(parser));
}

ByteRange event_range(void* parser) {
    return bytes_of_event(static_cast<XML_Parser>(parser));
}

void XMLCALL declare(void* parser, const XML_Char*, const XML_Char* encoding, int) {
    if (encoding != nullptr) walk_of(parser).frame.encoding = encoding;
}

void XMLCALL start_type(void* parser, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    walk_of(parser).frame.type.begin = event_range(parser).begin;
}

void XMLCALL start(void* parser, const XML_Char*, const XML_Char**) {
    Walk& walk = walk_of(parser);
    if (++walk.depth > 1) return;
    DocumentFrame& frame = walk.frame;
    frame.tag = event_range(parser);
    frame.children_end = frame.tag.end;
    // Text between the declaration and the element counts with the declaration.
    if (frame.type.begin > 0) frame.type.end = frame.tag.begin;
}

void XMLCALL finish(void* parser, const XML_Char*) {
    Walk& walk = walk_of(parser);
    const ByteRange range = event_range(parser);
    if (walk.depth == 1) {
        walk.frame.end_tag = range.begin;
        walk.frame.is_empty_tag = range.end == walk.frame.tag.end;
    } else if (walk.depth == 2 && range.end > walk.frame.children_end) {
        walk.frame.children_end = range.end;
        ++walk.frame.children;
        if (walk.after_child) walk.after_child(walk.frame, range.end);
    }
    --walk.depth;
}

// Hands the bytes of a range to `take`, piece by piece, until that has a problem.
template <class Take>
Done for_pieces(const std::string& file, ByteRange range, const Take& take) {
    std::ifstream input(platform::path_of(file), std::ios::binary);
    if (!input) return system_problem(file, errno);
    input.seekg(static_cast<std::streamoff>(range.begin));
    std::vector<char> piece(PIECE);
    for (std::uint64_t left = range.end - range.begin; left > 0;) {
        const std::uint64_t size = std::min(left, PIECE);
        if (!input.read(piece.data(), static_cast<std::streamsize>(size))) {
            if (input.bad()) return system_problem(file, errno);
            return Problem{Cause::input_output,
                           {.file = file},
                           "the file became shorter while it was read",
                           ""};
        }
        if (Done problem = take(piece.data(), static_cast<std::size_t>(size))) return problem;
        left -= size;
    }
    return {};
}

}  // namespace

Result<DocumentFrame> frame_of(const std::string& file, const std::string& shown_name,
                               const AfterChild& after_child) {
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(platform::path_of(file), error);
    if (error) return system_problem(shown_name, error.value());
    Walk walk{.frame = {}, .after_child = after_child};
    walk.frame.size = size;
    CheckedParser parser(&walk);
    XML_SetXmlDeclHandler(parser.expat(), declare);
    XML_SetStartDoctypeDeclHandler(parser.expat(), start_type);
    XML_SetElementHandler(parser.expat(), start, finish);
    const Done problem = parser.parse(file, shown_name);
    if (problem) return *problem;
    return walk.frame;
}

Result<std::string> bytes_of(const std::string& file, ByteRange range) {
    std::string bytes;
    const Done problem = for_pieces(file, range, [&bytes](const char* data, std::size_t size) {
        bytes.append(data, size);
        return Done();
    });
    if (problem) return *problem;
    return bytes;
}

Done copy_bytes(const std::string& file, ByteRange range, ByteSink& sink) {
    return for_pieces(file, range, [&sink](const char* data, std::size_t size) {
        return sink.write(data, size);
    });
}

}  // namespace conversion
