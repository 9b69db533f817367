#include "fsi/xml/handlers/records/record_tree.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "fsi/xml/handlers/make_room.h"
#include "host/encoding.h"

namespace {

// The name's entry, ready for this record.
RecordName& name_in_record(RecordTree& tree, std::uint32_t number) {
    RecordName& name = tree.names.names[number];
    if (name.record != tree.record) {
        name.record = tree.record;
        name.first = name.last = name.sibling = 0;
    }
    return name;
}

// Numbers a new child, whose parent is the innermost open element. RecordName::sibling tells the
// sibling before it, unless that is an element elsewhere: then the child is the first of its kind,
// and what it hides shows again when the parent ends.
void number_among_siblings(RecordTree& tree, RecordName& name, std::uint32_t number) {
    RecordElement& element = tree.elements[number];
    RecordElement* const sibling = name.sibling ? &tree.elements[name.sibling] : nullptr;
    if (sibling && sibling->parent == element.parent) {
        if (sibling->number == 0) sibling->number = 1;
        element.number = sibling->number + 1;
        tree.has_numbers = true;
    } else {
        RecordElement& parent = tree.elements[element.parent];
        element.outer_sibling = name.sibling;
        element.next_of_kind = parent.first_of_kind;
        parent.first_of_kind = number;
    }
    name.sibling = number;
}

void link_child(RecordTree& tree, std::uint32_t number) {
    RecordElement& parent = tree.elements[tree.current];
    if (parent.last_child)
        tree.elements[parent.last_child].next_sibling = number;
    else
        parent.first_child = number;
    parent.last_child = number;
}

// Documents have no other characters up to the space.
bool may_be_white_space(char byte) {
    return static_cast<unsigned char>(byte) <= ' ';
}

void trim(std::int32_t encoding, const char** text, std::size_t* length) {
    const bool is_trim =
        *length == 0 || (!may_be_white_space(**text) && !may_be_white_space((*text)[*length - 1]));
    if (is_trim) return;
    const HostTextSpan span{*text, *length, encoding};
    std::uint64_t start = 0;
    std::uint64_t end = *length;
    host_trim_span(&span, &start, &end);
    *text += start;
    *length = end - start;
}

// Puts the pieces of a text together after the texts.
const char* joined_text(RecordTree& tree, const RecordElement& element, std::size_t* length) {
    *length = element.text_length;
    for (std::uint32_t at = element.first_piece; at; at = tree.pieces[at].next)
        *length += tree.pieces[at].length;
    char* const joined = record_text_room(tree, *length);
    if (!joined) return nullptr;
    std::memcpy(joined, tree.text + element.text_start, element.text_length);
    char* end = joined + element.text_length;
    for (std::uint32_t at = element.first_piece; at; at = tree.pieces[at].next) {
        std::memcpy(end, tree.text + tree.pieces[at].start, tree.pieces[at].length);
        end += tree.pieces[at].length;
    }
    return joined;
}

void enter(RecordTree& tree, std::uint32_t number) {
    tree.current = number;
    tree.keeps_text = number != 0 && tree.elements[number].keeps_text;
}

void forget_text(RecordElement& element) {
    element.first_piece = element.last_piece = 0;
    element.has_text = element.is_trimmed = element.is_moved = false;
    element.has_other_text = element.has_attributes = false;
}

// Links an element below the innermost open one, and makes it that.
void link_element(RecordTree& tree, std::uint32_t number) {
    RecordElement& element = tree.elements[number];
    element.parent = tree.current;
    element.first_child = element.last_child = element.next_sibling = element.next_of_name = 0;
    element.first_of_kind = element.number = element.numbered = element.number_count = 0;
    RecordName& name = name_in_record(tree, element.name);
    element.keeps_text = name.is_field;
    if (name.last)
        tree.elements[name.last].next_of_name = number;
    else
        name.first = number;
    name.last = number;
    number_among_siblings(tree, name, number);
    link_child(tree, number);
    enter(tree, number);
}

void leave_element(RecordTree& tree) {
    const RecordElement& element = tree.elements[tree.current];
    for (std::uint32_t child = element.first_of_kind; child;) {
        const RecordElement& first = tree.elements[child];
        tree.names.names[first.name].sibling = first.outer_sibling;
        child = first.next_of_kind;
    }
    enter(tree, element.parent);
}

void begin_links(RecordTree& tree) {
    tree.is_known = tree.has_numbers = tree.is_numbered = false;
    ++tree.record;
    tree.current = 0;
    if (tree.elements) tree.elements[0] = {};  // stands in for the parent of the record's element
}

// Whether the element of that number had its place in the record before where the next one starts.
bool is_next_known(const RecordTree& tree, std::uint32_t number) {
    return number <= tree.known_elements && tree.elements[number].parent == tree.current;
}

void start_known(RecordTree& tree, std::uint32_t number) {
    RecordElement& known = tree.elements[number];
    forget_text(known);
    tree.last_element = tree.current = number;
    tree.keeps_text = known.keeps_text;
}

// The record is another one than the one before: links its elements anew.
void relink(RecordTree& tree) {
    const std::uint32_t open = tree.current;
    begin_links(tree);
    for (std::uint32_t number = 1; number <= tree.last_element; ++number) {
        while (tree.current != tree.elements[number].parent) leave_element(tree);
        link_element(tree, number);
    }
    while (tree.current != open) leave_element(tree);
}

}  // namespace

void clear_record(RecordTree& tree) {
    const bool is_complete = tree.current == 0;
    const bool forgotten = limit_names(tree.names);
    tree.known_elements = is_complete && !forgotten ? tree.last_element : 0;
    tree.last_element = tree.last_piece = 0;
    tree.text_size = 0;
    tree.texts_left = 0;
    tree.keeps_text = tree.has_unused_parts = false;
    if (tree.known_elements > 0)
        tree.is_known = true;
    else
        begin_links(tree);
}

bool repeat_element(RecordTree& tree, const char* name) {
    const std::uint32_t number = tree.last_element + 1;
    if (!tree.is_known || !is_next_known(tree, number)) return false;
    const std::uint32_t known = tree.elements[number].name;
    if (!repeat_name(tree.names, known, name)) return false;
    start_known(tree, number);
    return true;
}

bool start_record_element(RecordTree& tree, std::uint32_t name) {
    const std::uint32_t number = tree.last_element + 1;
    if (tree.is_known) {
        const bool is_same = is_next_known(tree, number) && tree.elements[number].name == name;
        if (is_same) {
            start_known(tree, number);
            return true;
        }
        relink(tree);
    }
    const std::size_t needed = std::size_t{number} + 1;
    const bool is_first = tree.elements == nullptr;
    if (!make_room(tree.elements, tree.element_room, needed, "XML record elements")) return false;
    if (is_first) tree.elements[0] = {};
    tree.last_element = number;
    RecordElement& element = tree.elements[number];
    element.name = name;
    forget_text(element);
    link_element(tree, number);
    return true;
}

void end_record_element(RecordTree& tree) {
    if (!tree.is_known) return leave_element(tree);
    enter(tree, tree.elements[tree.current].parent);
}

void complete_record(RecordTree& tree) {
    if (tree.is_known && tree.last_element != tree.known_elements) relink(tree);
}

char* record_text_room(RecordTree& tree, std::size_t length) {
    if (length > SIZE_MAX / 4) return nullptr;
    const std::size_t needed = tree.text_size + length + 1;
    if (!make_room(tree.text, tree.text_room, needed, "XML record text")) return nullptr;
    return tree.text + tree.text_size;
}

namespace {

// Text after other text than the element's own.
bool add_piece(RecordTree& tree, RecordElement& element, std::size_t length) {
    const std::size_t needed = std::size_t{tree.last_piece} + 2;
    if (!make_room(tree.pieces, tree.piece_room, needed, "XML record text")) return false;
    const std::uint32_t number = ++tree.last_piece;
    tree.pieces[number] = {tree.text_size, length, 0};
    if (element.last_piece)
        tree.pieces[element.last_piece].next = number;
    else
        element.first_piece = number;
    element.last_piece = number;
    return true;
}

}  // namespace

bool keep_record_text(RecordTree& tree, std::size_t length) {
    RecordElement& element = tree.elements[tree.current];
    if (!element.has_text) {
        element.text_start = tree.text_size;
        element.text_length = length;
        element.has_text = true;
        ++tree.texts_left;
    } else if (!element.last_piece && element.text_start + element.text_length == tree.text_size) {
        element.text_length += length;
    } else if (!add_piece(tree, element, length)) {
        return false;
    }
    tree.text_size += length;
    return true;
}

void note_attribute(RecordTree& tree, const char* name) {
    constexpr const char* NO_DATA[] = {"xmlns", "xml:", "xsi:"};
    const auto begins = [name](const char* start) {
        return std::strncmp(name, start, std::strlen(start)) == 0;
    };
    if (std::none_of(std::begin(NO_DATA), std::end(NO_DATA), begins)) {
        tree.elements[tree.current].has_attributes = tree.has_unused_parts = true;
    }
}

void note_lost_text(RecordTree& tree, const char* text, std::size_t length) {
    if (!tree.notes_unused || tree.current == 0) return;
    if (is_blank(text, length)) return;
    tree.elements[tree.current].has_other_text = tree.has_unused_parts = true;
}

bool append_record_text(RecordTree& tree, const char* text, std::size_t length) {
    char* const room = record_text_room(tree, length);
    if (!room) return false;
    std::memcpy(room, text, length);
    return keep_record_text(tree, length);
}

RecordText get_record_text(RecordTree& tree, std::uint32_t number, std::int32_t encoding,
                           const char** text, std::size_t* length) {
    const RecordElement& element = tree.elements[number];
    if (!element.has_text) return RecordText::NONE;
    *text = tree.text + element.text_start;
    *length = element.text_length;
    if (element.first_piece) *text = joined_text(tree, element, length);
    if (!*text) return RecordText::NO_MEMORY;
    if (element.is_trimmed) trim(encoding, text, length);
    return RecordText::FOUND;
}

void number_elements(RecordTree& tree) {
    if (tree.is_numbered) return;
    tree.is_numbered = true;
    if (!tree.has_numbers) return;
    for (std::uint32_t number = 1; number <= tree.last_element; ++number) {
        RecordElement& element = tree.elements[number];
        const RecordElement& parent = tree.elements[element.parent];
        const bool gains = element.number && parent.number_count < XML_INDEX_LIMIT;
        element.numbered = gains ? number : parent.numbered;
        element.number_count = parent.number_count + (gains ? 1 : 0);
    }
}

int occurrence_numbers(const RecordTree& tree, std::uint32_t number,
                       std::uint32_t (&numbers)[XML_INDEX_LIMIT]) {
    const std::uint32_t count = tree.elements[number].number_count;
    std::uint32_t at = tree.elements[number].numbered;
    for (std::uint32_t left = count; left > 0; --left) {
        const RecordElement& numbered = tree.elements[at];
        numbers[left - 1] = numbered.number;
        at = tree.elements[numbered.parent].numbered;
    }
    return static_cast<int>(count);
}

void free_record_tree(RecordTree& tree) {
    free_names(tree.names);
    host_free(tree.elements, HANDLERS_SOURCE, __LINE__, 0);
    host_free(tree.pieces, HANDLERS_SOURCE, __LINE__, 0);
    host_free(tree.text, HANDLERS_SOURCE, __LINE__, 0);
    tree = {};
}
