// One record of a document as the sequential-file interface needs it: its elements in document
// order, their names as numbers, their texts end to end. Everything lies in a few blocks that serve
// record after record, so reading a record makes and releases nothing. Most records are made of the
// same elements as the one before: as long as they are, the links between the elements are left as
// they are.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fsi/xml/handlers/records/record_names.h"
#include "host/record_handler.h"
#include "sxml/xml_api.h"

// An element, numbered from 1 in document order; 0 stands for none.
struct RecordElement {
    std::uint32_t name;
    std::uint32_t parent;  // 0 for the record's own element
    std::uint32_t first_child;
    std::uint32_t last_child;
    std::uint32_t next_sibling;
    std::uint32_t next_of_name;  // the next one of the same name, in document order
    std::uint32_t
        first_of_kind;           // the children that were the first of their name, newest first ...
    std::uint32_t next_of_kind;  // ... and the next one of these
    std::uint32_t outer_sibling;  // of such a child: what RecordName::sibling was before
    std::uint32_t number;         // among the siblings of its name, from 1; 0 when it has none
    std::uint32_t numbered;  // after number_elements: the nearest element that gave a number, up
                             // from and including this one; 0 when there is none
    std::uint32_t number_count;  // after number_elements: how many numbers it has
    std::uint32_t first_piece;   // of the text, after its beginning; 0 when there is no more
    std::uint32_t last_piece;
    std::size_t text_start;  // the beginning of the text
    std::size_t text_length;
    bool has_text;
    bool keeps_text;      // texts of elements that belong to no field are not kept
    bool is_trimmed;      // white space around its text does not count
    bool is_moved;        // its text was moved into the record
    bool has_other_text;  // when the tree notes what is unused: text that is not kept
    bool has_attributes;  // and attributes
};

// More of a text, that does not lie after what came before; numbered from 1.
struct TextPiece {
    std::size_t start;
    std::size_t length;
    std::uint32_t next;
};

// Zero-filled, it is ready for use.
struct RecordTree {
    RecordNames names;
    RecordElement* elements;
    TextPiece* pieces;
    char* text;
    std::size_t text_room;
    std::size_t text_size;
    std::uint32_t element_room;
    std::uint32_t piece_room;
    std::uint32_t last_element;
    std::uint32_t last_piece;
    std::uint32_t current;              // the innermost open element
    std::uint32_t known_elements;       // of the previous record, which may occur again
    std::uint64_t record;               // counts the records that were linked anew
    std::uint32_t texts_left;           // elements with a text that was not moved into the record
    bool has_unused_parts;              // texts that are not kept, or attributes, were noted
    bool is_known;                      // all elements so far are those of the record before
    bool keeps_text;                    // of the innermost open element
    bool has_numbers;                   // an element has a number
    bool is_numbered;                   // number_elements has done its work
    bool notes_unused;                  // texts that are not kept, and attributes, are to be noted
    const HostTableMatch* table_match;  // null: as the setting says
};

// Forgets the record; the room is kept for the next one.
void clear_record(RecordTree& tree);

// Starts an element below the innermost open one. `name` is a number of the tree's names. False,
// with nothing changed, when memory is exhausted.
bool start_record_element(RecordTree& tree, std::uint32_t name);

// Starts the element that comes next in the record before, when that is one written `name` in the
// same place. False, with nothing changed, when it is another one.
bool repeat_element(RecordTree& tree, const char* name);

// Ends the innermost open element, which must be there.
void end_record_element(RecordTree& tree);

// Appends `length` bytes to the text of the innermost open element. False, with nothing changed,
// when memory is exhausted.
bool append_record_text(RecordTree& tree, const char* text, std::size_t length);

// Whether a text is nothing but white space.
inline bool is_blank(const char* text, std::size_t length) {
    const auto is_space = [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; };
    for (std::size_t i = 0; i < length; ++i) {
        if (!is_space(text[i])) return false;
    }
    return true;
}

// For a tree that notes what is unused: an attribute of the innermost open element, and a text of
// it that is not kept. Declarations of namespaces, what says how to read a document, and white
// space are no data.
void note_attribute(RecordTree& tree, const char* name);
void note_lost_text(RecordTree& tree, const char* text, std::size_t length);

// Room for that many bytes after the texts, null when memory is exhausted. What is put there
// becomes text of the innermost open element with keep_record_text, which may be less.
char* record_text_room(RecordTree& tree, std::size_t length);
bool keep_record_text(RecordTree& tree, std::size_t length);

// The same where the innermost open element has no text yet and there is room, else null: the next
// bytes become its text, which the caller puts there.
inline char* first_text_room(RecordTree& tree, std::size_t length) {
    RecordElement& element = tree.elements[tree.current];
    if (element.has_text || tree.text_room - tree.text_size <= length) return nullptr;
    element.text_start = tree.text_size;
    element.text_length = length;
    element.has_text = true;
    ++tree.texts_left;
    tree.text_size += length;
    return tree.text + element.text_start;
}

// The text of an element was moved into the record.
inline void note_moved(RecordTree& tree, std::uint32_t number) {
    RecordElement& element = tree.elements[number];
    if (!element.is_moved) --tree.texts_left;
    element.is_moved = true;
}

// The record has no more to come: now its elements may be looked at.
void complete_record(RecordTree& tree);

// The text of an element, in `encoding`, as long as the tree does not change.
enum class RecordText { FOUND, NONE, NO_MEMORY };
RecordText get_record_text(RecordTree& tree, std::uint32_t element, std::int32_t encoding,
                           const char** text, std::size_t* length);

// The first element of a name in document order, 0 when the record has none.
inline std::uint32_t first_element_of(const RecordTree& tree, std::uint32_t name) {
    const RecordName& entry = tree.names.names[name];
    return entry.record == tree.record ? entry.first : 0;
}

// Elements are numbered when the record is complete: the numbers of an element are those of
// its parent and its own, if there is another of its name below the same parent. As in the element
// tree, an element with XML_INDEX_LIMIT numbers gains none. Does nothing the second time.
void number_elements(RecordTree& tree);

// Stores the numbers of an element, outermost first. Result: how many.
int occurrence_numbers(const RecordTree& tree, std::uint32_t element,
                       std::uint32_t (&numbers)[XML_INDEX_LIMIT]);

void free_record_tree(RecordTree& tree);
