// The plan of writing a record, made once when a file is opened for output: for each record layout
// the fields in the order in which they are written, and between them the markup that stands there
// in every record. A record is written by plan when nothing is traced and empty elements are not
// left out; all others are written by walking the items. Of a record that is too short to hold
// every field, those items are passed over that it has no place for.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fsi/xml/sxml/writing/item_tags.h"
#include "host/record_description.h"

struct PlanStep {
    enum Kind : std::uint8_t {
        TEXT,    // characters in an encoding of bytes, not many
        NUMBER,  // converted by the host
        OTHER,   // whatever the walk over the items would make of the field
        END      // no field: the markup after the last one
    };
    std::uint32_t markup_length;  // bytes of markup before the field
    std::int32_t item;            // index of the field
    std::int32_t offset;          // of its bytes; they lie in a record of full length
    std::uint32_t length;         // in bytes; of a number, those of its text
    std::int16_t condition;
    Kind kind;
    std::uint32_t room;  // bytes that the field, and markup that is put at once, may take
};

// An item below the one that opens the layout: what is left out, from its start tag to its end tag,
// where a record has no place for it.
struct PlanChild {
    std::uint32_t extent;  // bytes from which on a record has a place for it
    std::uint32_t markup;  // where its markup begins and ends
    std::uint32_t markup_end;
    std::uint32_t next_step;   // after those of its fields
    std::uint32_t next_child;  // after those below it
};

struct LayoutPlan {
    std::int32_t item;           // index of the item that opens the layout
    std::uint32_t full_length;   // bytes from which on a record holds every field
    std::uint32_t least_length;  // bytes from which on it holds a field whole or not at all
    std::uint32_t child_count;
    const PlanStep* steps;  // up to the END
    const PlanChild* children;
    const char* markup;  // of all steps
};

// One block: the layouts' steps, children and markup follow.
struct WritePlan {
    std::size_t layout_count;
    LayoutPlan layouts[1];  // ascending by item

    // Null for a layout that has no plan.
    const LayoutPlan* of_layout(std::int32_t item) const;
};

// The longest field of kind TEXT.
constexpr std::int32_t MOST_PLANNED_TEXT = 1024;
// So many bytes may be read from where any piece of markup begins, in steps of as many.
constexpr std::size_t MARKUP_READ_SIZE = 32;
// Blanks for a number are put in runs of so many bytes, the last one whole.
constexpr std::size_t NUMBER_RUN = 16;
// Longer markup is put in pieces.
constexpr std::size_t MOST_MARKUP_AT_ONCE = 1024;

// Room for a text as it may become, trimmed and escaped, and a word that is written beyond it.
constexpr std::size_t room_for_text(std::size_t length) {
    constexpr std::size_t LONGEST_ENTITY = 6;
    return LONGEST_ENTITY * length + sizeof(std::uint64_t);
}

// A plan of the layouts, up to the first with which the walks of all together become longer than
// the description has items. Null when memory is exhausted. Released with host_free.
WritePlan* new_write_plan(const Xfd& xfd, const ItemTags& tags);
