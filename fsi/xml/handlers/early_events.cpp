#include "fsi/xml/handlers/early_events.h"

#include <cstring>

#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/record_handlers.h"
#include "host/memory.h"

// One block: the pointers to name, attribute names and values, a null pointer, then the texts.
void keep_start(XmlParser& parser, const char* name, const char* const* attributes) {
    std::size_t count = 2;
    std::size_t bytes = std::strlen(name) + 1;
    for (const char* const* text = attributes; *text; ++text, ++count)
        bytes += std::strlen(*text) + 1;
    const std::size_t pointers = count * sizeof(const char*);
    auto** kept =
        static_cast<const char**>(host_alloc(pointers + bytes, HOST_BLOCK_ZEROED, HANDLERS_SOURCE,
                                             __LINE__, "Temporary data buffer", 0));
    if (!kept) return stop_out_of_memory(parser);

    char* place = reinterpret_cast<char*>(kept) + pointers;
    const auto copy = [&place](const char* text) {
        const std::size_t size = std::strlen(text) + 1;
        char* start = place;
        std::memcpy(start, text, size);
        place += size;
        return start;
    };
    kept[0] = copy(name);
    for (std::size_t i = 1; i + 1 < count; ++i) kept[i] = copy(attributes[i - 1]);
    parser.early_start = kept;
}

bool replay_early_events(XmlParser& parser) {
    const char** start = parser.early_start;
    const bool ends = (parser.state & XMLPS_EARLY_END) != 0;
    parser.early_start = nullptr;
    parser.state &= ~std::uint32_t{XMLPS_EARLY_END | XMLPS_RECORD_ENDED};
    if (start) (parser.record ? start_in_record : start_element)(parser.expat, start[0], start + 1);
    if (ends) (parser.record ? end_in_record : end_element)(parser.expat, start ? start[0] : "");
    host_free(start, HANDLERS_SOURCE, __LINE__, 0);
    return start || ends;
}
