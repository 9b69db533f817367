#include "host/entities/entity_depth.h"

#include <algorithm>
#include <cstring>

#include "host/memory.h"

namespace {

constexpr const char* SOURCE = "host/entities";

struct Entity {
    const char* name;
    const char* next_reference;  // not yet followed; an empty name ends them
    std::uint32_t depth;         // of the chain that starts here; 0 until it is known
    std::uint32_t below;         // the deepest so far of those referred to
    bool is_open;                // on the path that is being followed
};

// All entities that refer to others, in order of their names.
struct Entities {
    Entity* first;
    std::uint32_t count;

    Entity* find(const char* name) const {
        Entity* const found =
            std::lower_bound(first, first + count, name, [](const Entity& entity, const char* key) {
                return std::strcmp(entity.name, key) < 0;
            });
        return found != first + count && std::strcmp(found->name, name) == 0 ? found : nullptr;
    }
};

bool is_predefined(std::string_view name) {
    for (const char* known : {"amp", "lt", "gt", "apos", "quot"})
        if (name == known) return true;
    return false;
}

// The name of the next entity that `text` refers to, which is cut off with all before it; empty
// when there is none.
std::string_view take_reference(std::string_view& text) {
    for (;;) {
        const std::size_t start = text.find('&');
        if (start == std::string_view::npos) return {};
        text.remove_prefix(start + 1);
        const std::size_t end = text.find_first_of("&;");
        if (end == std::string_view::npos) return {};
        const std::string_view name(text.data(), end);
        const bool is_entity = text[end] == ';' && end > 0 && name[0] != '#';
        if (is_entity && !is_predefined(name)) return name;
    }
}

bool make_room(EntityReferences& known, std::size_t more) {
    if (more <= known.room - known.size) return true;
    const std::size_t room = std::max<std::size_t>(2 * known.room, known.size + more + 256);
    void* const block =
        known.names ? host_realloc(known.names, room, SOURCE, __LINE__, 0)
                    : host_alloc(room, HOST_BLOCK_RAW, SOURCE, __LINE__, "Entity references", 0);
    if (!block) return false;
    known.names = static_cast<char*>(block);
    known.room = room;
    return true;
}

bool put_name(EntityReferences& known, std::string_view name) {
    if (!make_room(known, name.size() + 1)) return false;
    if (!name.empty()) std::memcpy(known.names + known.size, name.data(), name.size());
    known.size += name.size();
    known.names[known.size++] = '\0';
    return true;
}

const char* after(const char* name) {
    return name + std::strlen(name) + 1;
}

void list_entities(const EntityReferences& known, const Entities& entities) {
    const char* at = known.names;
    for (std::uint32_t i = 0; i < entities.count; ++i) {
        const char* const name = at;
        at = after(at);
        entities.first[i] = {name, at, 0, 0, false};
        while (*at) at = after(at);
        ++at;
    }
    std::sort(entities.first, entities.first + entities.count,
              [](const Entity& a, const Entity& b) {
                  const int order = std::strcmp(a.name, b.name);
                  return order != 0 ? order < 0 : a.name < b.name;
              });
}

// Follows the chains that start at an entity. False when one of them is too long or does not end.
bool measure_from(const Entities& entities, Entity* start) {
    Entity* path[MOST_NESTED_ENTITIES];
    std::uint32_t length = 0;
    for (Entity* next = start;;) {
        if (next) {
            if (next->is_open || length == MOST_NESTED_ENTITIES) return false;
            next->is_open = true;
            path[length++] = next;
        }
        Entity& entity = *path[length - 1];
        next = nullptr;
        if (*entity.next_reference) {
            Entity* const other = entities.find(entity.next_reference);
            entity.next_reference = after(entity.next_reference);
            if (other && other->depth == 0)
                next = other;
            else if (other)
                entity.below = std::max(entity.below, other->depth);
            continue;
        }
        entity.depth = entity.below + 1;
        entity.is_open = false;
        if (entity.depth > MOST_NESTED_ENTITIES) return false;
        if (--length == 0) return true;
        path[length - 1]->below = std::max(path[length - 1]->below, entity.depth);
    }
}

}  // namespace

EntityDepth note_entity(EntityReferences& known, std::string_view name, std::string_view text) {
    std::string_view reference = take_reference(text);
    if (reference.empty()) return EntityDepth::ALLOWED;
    bool has_room = put_name(known, name);
    for (; has_room && !reference.empty(); reference = take_reference(text))
        has_room = put_name(known, reference);
    if (!has_room || !put_name(known, {})) return EntityDepth::NO_MEMORY;
    ++known.count;
    return known.count % MOST_NESTED_ENTITIES == 0 ? measure_entities(known) : EntityDepth::ALLOWED;
}

EntityDepth measure_entities(const EntityReferences& known) {
    // A chain has no more links than there are entities with references.
    if (known.count <= MOST_NESTED_ENTITIES) return EntityDepth::ALLOWED;
    auto* const list = static_cast<Entity*>(
        host_alloc(known.count * sizeof(Entity), HOST_BLOCK_RAW, SOURCE, __LINE__, "Entities", 0));
    if (!list) return EntityDepth::NO_MEMORY;
    const Entities entities{list, known.count};
    list_entities(known, entities);
    EntityDepth depth = EntityDepth::ALLOWED;
    for (std::uint32_t i = 0; i < known.count && depth == EntityDepth::ALLOWED; ++i) {
        Entity* const entity = entities.find(list[i].name);
        if (entity->depth == 0 && !measure_from(entities, entity)) depth = EntityDepth::TOO_DEEP;
    }
    host_free(list, SOURCE, __LINE__, 0);
    return depth;
}

void forget_entities(EntityReferences& known) {
    host_free(known.names, SOURCE, __LINE__, 0);
    known = {};
}
