// How deep the entities of a document nest: an entity whose text refers to a second one, whose text
// refers to a third.
//
// Expat (up to version 2.6) follows an entity in another entity's text by recursion, so a chain of
// some ten thousand of them overflows the stack where its first entity is used, or where an
// attribute's default refers to it. Entities may be declared in any order, so the depth is certain
// only when the declarations have ended; while they last, a chain of twice the limit may be there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Entities that refer to others, in a chain. With more of them a document is refused.
constexpr std::uint32_t MOST_NESTED_ENTITIES = 2000;
constexpr const char* ENTITIES_NEST_TOO_DEEP = "entities nest more than 2,000 deep";

// What is known of a document's entities; zero-filled, it knows none. Released with
// forget_entities.
struct EntityReferences {
    char* names;  // of each entity that refers to others, followed by those, then an empty name
    std::size_t size;
    std::size_t room;
    std::uint32_t count;  // of entities that refer to others
};

enum class EntityDepth { ALLOWED, TOO_DEEP, NO_MEMORY };

// Takes note of an internal general entity: its name and its text, in which references to
// characters and parameter entities have been replaced. Of several entities of one name the first
// one counts. Every so often it measures, so that declarations may be used before the last one.
EntityDepth note_entity(EntityReferences& known, std::string_view name, std::string_view text);

// Measures the entities known so far. Entities that refer to each other in a circle nest without
// end; those of a document with few entities are left for the parser to find.
EntityDepth measure_entities(const EntityReferences& known);

// Releases what is known.
void forget_entities(EntityReferences& known);
