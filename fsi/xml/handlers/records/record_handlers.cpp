#include "fsi/xml/handlers/records/record_handlers.h"

#include <cstring>

#include "fsi/xml/handlers/early_events.h"
#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/latin1.h"
#include "fsi/xml/handlers/records/record_tree.h"
#include "host/memory.h"

namespace {

// The name under which elements written as `written` are stored; 0 when memory is exhausted.
std::uint32_t stored_number(const XmlParser& parser, RecordNames& names, std::uint32_t written) {
    char* const stored = stored_name(parser, name_text(names, written));
    if (!stored) return 0;
    const std::uint32_t number = number_of_name(names, stored);
    host_free(stored, HANDLERS_SOURCE, __LINE__, 0);
    names.names[written].stored_as = number;
    return number;
}

bool append_latin1(RecordTree& tree, const char* text, std::size_t length) {
    char* const room = record_text_room(tree, length);
    if (!room) return false;
    std::memcpy(room, text, length);
    room[length] = '\0';
    return keep_record_text(tree, utf8_to_latin1(room));
}

// Expat spends nothing on texts that nobody keeps, where nobody wants to know of them.
void choose_text_handler(const XmlParser& parser, bool kept_before) {
    const bool kept = parser.record->keeps_text;
    if (kept != kept_before)
        XML_SetCharacterDataHandler(parser.expat, kept ? text_in_record : nullptr);
}

// Whether an event is one that is neither ignored nor kept for later. While a record is read, all
// are.
bool is_due(const XmlParser& parser) {
    return (parser.state & (XMLPS_OUT_OF_MEMORY | XMLPS_RECORD_ENDED)) == 0;
}

[[gnu::noinline]] bool start_another(const XmlParser& parser, const char* name) {
    const std::uint32_t stored = stored_name_number(parser, name);
    return stored != 0 && start_record_element(*parser.record, stored);
}

bool start_in_tree(const XmlParser& parser, const char* name) {
    return repeat_element(*parser.record, name) || start_another(parser, name);
}

// Apart, so that the many texts that are left out at once pay nothing for it.
[[gnu::noinline]] void store_text(XmlParser& parser, const char* text, std::size_t length) {
    if (stopped(parser)) return;
    if (is_early(parser)) return keep_text(parser, text, length);
    RecordTree& tree = *parser.record;
    if (!tree.keeps_text) return note_lost_text(tree, text, length);
    const bool appended = stores_latin1(parser) ? append_latin1(tree, text, length)
                                                : append_record_text(tree, text, length);
    if (!appended) stop_out_of_memory(parser);
}

}  // namespace

std::uint32_t stored_name_number(const XmlParser& parser, const char* name) {
    RecordNames& names = parser.record->names;
    const std::uint32_t written = number_of_next_name(names, name);
    if (!written) return 0;
    const std::uint32_t stored = names.names[written].stored_as;
    return stored ? stored : stored_number(parser, names, written);
}

void deliver_records(XmlParser& parser, RecordTree* tree) {
    if (!parser.expat || parser.record == tree) return;
    parser.record = tree;
    if (tree) {
        XML_SetElementHandler(parser.expat, start_in_record, end_in_record);
        const bool wants_text = tree->keeps_text || tree->notes_unused;
        XML_SetCharacterDataHandler(parser.expat, wants_text ? text_in_record : nullptr);
    } else {
        XML_SetElementHandler(parser.expat, start_element, end_element);
        XML_SetCharacterDataHandler(parser.expat, char_data);
    }
}

void start_in_record(void* expat, const char* name, const char** attributes) {
    XmlParser& parser = parser_of(expat);
    if (!is_due(parser)) {
        if (stopped(parser)) return;
        if (is_early(parser)) return keep_start(parser, name, attributes);
    }
    RecordTree& tree = *parser.record;
    const bool kept_text = tree.keeps_text;
    ++parser.depth;
    if (!start_in_tree(parser, name)) return stop_out_of_memory(parser);
    if (parser.depth == 2) start_record(parser);
    if (!tree.notes_unused) return choose_text_handler(parser, kept_text);
    for (; *attributes; attributes += 2) note_attribute(tree, *attributes);
}

void end_in_record(void* expat, const char* name) {
    XmlParser& parser = parser_of(expat);
    if (!is_due(parser)) {
        if (stopped(parser)) return;
        if (is_early(parser)) return keep_end(parser, name);
    }
    if (parser.depth < 2) return end_element(expat, name);
    RecordTree& tree = *parser.record;
    const bool kept_text = tree.keeps_text;
    tree.elements[tree.current].is_trimmed = true;
    end_record_element(tree);
    if (!tree.notes_unused) choose_text_handler(parser, kept_text);
    if (--parser.depth > 1) return;
    if (!end_record(parser)) XML_SetCharacterDataHandler(parser.expat, text_in_record);
}

void text_in_record(void* expat, const char* text, int length) {
    XmlParser& parser = parser_of(expat);
    const auto size = static_cast<std::size_t>(length);
    RecordTree& tree = *parser.record;
    if (!tree.keeps_text) {
        // Most texts that are not kept are the white space between elements.
        if (parser.depth > 1 && is_blank(text, size)) return;
    } else if (is_due(parser) && !stores_latin1(parser)) {
        if (char* const room = first_text_room(tree, size)) {
            std::memcpy(room, text, size);
            return;
        }
    }
    store_text(parser, text, size);
}
