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

// Expat spends nothing on texts that nobody keeps.
void choose_text_handler(const XmlParser& parser, bool kept_before) {
    const RecordTree& tree = *parser.record;
    const bool kept = tree.keeps_text;
    if (kept != kept_before && !tree.notes_unused)
        XML_SetCharacterDataHandler(parser.expat, kept ? text_in_record : nullptr);
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
    if (stopped(parser)) return;
    if (is_early(parser)) return keep_start(parser, name, attributes);
    RecordTree& tree = *parser.record;
    const bool kept_text = tree.keeps_text;
    ++parser.depth;
    const std::uint32_t stored = stored_name_number(parser, name);
    if (!stored || !start_record_element(tree, stored)) return stop_out_of_memory(parser);
    for (; *attributes && tree.notes_unused; attributes += 2) note_attribute(tree, *attributes);
    if (parser.depth == 2) start_record(parser);
    choose_text_handler(parser, kept_text);
}

void end_in_record(void* expat, const char* name) {
    XmlParser& parser = parser_of(expat);
    if (stopped(parser)) return;
    if (is_early(parser)) return keep_end(parser, name);
    if (parser.depth < 2) return end_element(expat, name);
    RecordTree& tree = *parser.record;
    const bool kept_text = tree.keeps_text;
    tree.elements[tree.current].is_trimmed = true;
    end_record_element(tree);
    choose_text_handler(parser, kept_text);
    if (--parser.depth > 1) return;
    if (!end_record(parser)) XML_SetCharacterDataHandler(parser.expat, text_in_record);
}

void text_in_record(void* expat, const char* text, int length) {
    XmlParser& parser = parser_of(expat);
    const auto size = static_cast<std::size_t>(length);
    // Most texts that are not kept are the white space between elements.
    if (parser.depth > 1 && !parser.record->keeps_text && is_blank(text, size)) return;
    if (stopped(parser)) return;
    if (is_early(parser)) return keep_text(parser, text, size);
    RecordTree& tree = *parser.record;
    if (!tree.keeps_text) return note_lost_text(tree, text, size);
    const bool appended = stores_latin1(parser) ? append_latin1(tree, text, size)
                                                : append_record_text(tree, text, size);
    if (!appended) stop_out_of_memory(parser);
}
