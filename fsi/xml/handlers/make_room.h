// Blocks of the host that grow.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "fsi/xml/handlers/xml_parser.h"
#include "host/memory.h"

// Makes room for `needed` items in a block of `capacity` items (null and 0 at first), at least
// twice the room there was. The items are copied as bytes. False, with nothing changed, when memory
// is exhausted or the capacity's type cannot count so many.
template <typename Item, typename Count>
bool make_room(Item*& items, Count& capacity, std::size_t needed, const char* description) {
    if (items && needed <= capacity) return true;
    constexpr std::size_t LEAST = 64;
    constexpr std::size_t MOST =
        std::min<std::size_t>(SIZE_MAX / sizeof(Item) / 4, std::numeric_limits<Count>::max() / 2);
    if (needed > MOST) return false;
    const std::size_t doubled = std::size_t{capacity} * 2;
    const std::size_t chosen = needed > LEAST ? needed : LEAST;
    const std::size_t room = doubled > chosen ? doubled : chosen;
    void* const block = items
                            ? host_realloc(items, room * sizeof(Item), HANDLERS_SOURCE, __LINE__, 0)
                            : host_alloc(room * sizeof(Item), HOST_BLOCK_RAW, HANDLERS_SOURCE,
                                         __LINE__, description, 0);
    if (!block) return false;
    items = static_cast<Item*>(block);
    capacity = static_cast<Count>(room);
    return true;
}
