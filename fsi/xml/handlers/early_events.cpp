#include "fsi/xml/handlers/early_events.h"

#include <cstring>

#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/records/record_handlers.h"
#include "host/memory.h"

enum class EventKind { START, END, TEXT, COMMENT };

// One block: the pointers to its texts follow it up to a null pointer, then come the texts.
struct EarlyEvent {
    EarlyEvent* next;
    EventKind kind;
    std::size_t length;    // of the first text
    const char* texts[1];  // name, attribute names and values; text; comment
};

namespace {

// Entities make a small piece of input large. So many bytes of events are kept.
constexpr std::size_t MOST_KEPT = std::size_t{64} << 20U;

const char* put(char*& place, const char* text, std::size_t length) {
    char* const start = place;
    std::memcpy(start, text, length);
    start[length] = '\0';
    place += length + 1;
    return start;
}

// `more`: further texts, up to a null pointer.
void keep(XmlParser& parser, EventKind kind, const char* text, std::size_t length,
          const char* const* more) {
    std::size_t count = 0;
    std::size_t bytes = length + 1;
    for (; more[count]; ++count) bytes += std::strlen(more[count]) + 1;
    const std::size_t head = sizeof(EarlyEvent) + (count + 1) * sizeof(const char*);
    if (parser.early_size + head + bytes > MOST_KEPT) {
        XML_StopParser(parser.expat, XML_FALSE);
        return;
    }
    auto* const event = static_cast<EarlyEvent*>(host_alloc(
        head + bytes, HOST_BLOCK_ZEROED, HANDLERS_SOURCE, __LINE__, "Temporary data buffer", 0));
    if (!event) return stop_out_of_memory(parser);

    char* place = reinterpret_cast<char*>(event) + head;
    event->kind = kind;
    event->length = length;
    event->texts[0] = put(place, text, length);
    for (std::size_t i = 0; i < count; ++i)
        event->texts[i + 1] = put(place, more[i], std::strlen(more[i]));
    if (parser.last_early)
        parser.last_early->next = event;
    else
        parser.first_early = event;
    parser.last_early = event;
    parser.early_size += head + bytes;
}

void keep(XmlParser& parser, EventKind kind, const char* text, std::size_t length) {
    constexpr const char* no_more = nullptr;
    keep(parser, kind, text, length, &no_more);
}

EarlyEvent* take_first(XmlParser& parser) {
    EarlyEvent* const event = parser.first_early;
    parser.first_early = event->next;
    if (!parser.first_early) {
        parser.last_early = nullptr;
        parser.early_size = 0;
    }
    return event;
}

void deliver(const XmlParser& parser, EarlyEvent& event) {
    XML_Parser expat = parser.expat;
    const bool in_record = parser.record != nullptr;
    switch (event.kind) {
        case EventKind::START:
            return (in_record ? start_in_record : start_element)(expat, event.texts[0],
                                                                 event.texts + 1);
        case EventKind::END:
            return (in_record ? end_in_record : end_element)(expat, event.texts[0]);
        case EventKind::TEXT:
            return (in_record ? text_in_record : char_data)(expat, event.texts[0],
                                                            static_cast<int>(event.length));
        case EventKind::COMMENT:
            return comment_handler(expat, event.texts[0]);
    }
}

}  // namespace

void keep_start(XmlParser& parser, const char* name, const char* const* attributes) {
    keep(parser, EventKind::START, name, std::strlen(name), attributes);
}

void keep_end(XmlParser& parser, const char* name) {
    keep(parser, EventKind::END, name, std::strlen(name));
}

void keep_text(XmlParser& parser, const char* text, std::size_t length) {
    keep(parser, EventKind::TEXT, text, length);
}

void keep_comment(XmlParser& parser, const char* text) {
    keep(parser, EventKind::COMMENT, text, std::strlen(text));
}

bool replay_early_events(XmlParser& parser) {
    parser.state &= ~std::uint32_t{XMLPS_RECORD_ENDED};
    if (!parser.first_early) return false;
    parser.state |= XMLPS_REPLAYING;
    while (parser.first_early && !is_early(parser)) {
        EarlyEvent* const event = take_first(parser);
        deliver(parser, *event);
        host_free(event, HANDLERS_SOURCE, __LINE__, 0);
    }
    parser.state &= ~std::uint32_t{XMLPS_REPLAYING};
    return true;
}

void free_early_events(XmlParser& parser) {
    while (parser.first_early) host_free(take_first(parser), HANDLERS_SOURCE, __LINE__, 0);
}
