// Where Expat's present event stands in its document. The older functions of Expat are as wide as a
// long; the newer ones are used where the library has them.
#pragma once

#include <expat.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace conversion {

// Bytes of a file, from 0; `end` is the first one that does not belong to them.
struct ByteRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

// Both from 1, the column in bytes.
inline std::uint64_t line_of_event(XML_Parser parser) {
#ifdef SXML_HAS_XML_GetCurrentLineNumber64
    return XML_GetCurrentLineNumber64(parser);
#else
    return XML_GetCurrentLineNumber(parser);
#endif
}
inline std::uint64_t column_of_event(XML_Parser parser) {
#ifdef SXML_HAS_XML_GetCurrentLineNumber64
    return XML_GetCurrentColumnNumber64(parser) + 1;
#else
    return XML_GetCurrentColumnNumber(parser) + 1;
#endif
}

// Within an entity the range is that of the reference to it.
inline ByteRange bytes_of_event(XML_Parser parser) {
#ifdef SXML_HAS_XML_GetCurrentByteIndex64
    const auto begin = static_cast<std::uint64_t>(XML_GetCurrentByteIndex64(parser));
#else
    const auto begin = static_cast<std::uint64_t>(XML_GetCurrentByteIndex(parser));
#endif
#ifdef SXML_HAS_XML_GetCurrentByteCount64
    const auto count = static_cast<std::uint64_t>(XML_GetCurrentByteCount64(parser));
#else
    const auto count = static_cast<std::uint64_t>(XML_GetCurrentByteCount(parser));
#endif
    return {begin, begin + count};
}

// What Expat holds of the input, from the event on; valid within the handler that is called.
inline std::string_view input_at_event(XML_Parser parser) {
#ifdef SXML_HAS_XML_GetInputContext64
    std::int64_t offset = 0;
    std::uint64_t size = 0;
    const char* const text = XML_GetInputContext64(parser, &offset, &size);
#else
    int offset = 0;
    int size = 0;
    const char* const text = XML_GetInputContext(parser, &offset, &size);
#endif
    if (text == nullptr) return {};
    return {text + offset, static_cast<std::size_t>(size) - static_cast<std::size_t>(offset)};
}

}  // namespace conversion
