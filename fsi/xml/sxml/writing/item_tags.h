// The tags of a description's items, made once when a file is opened for output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/record_description.h"

struct ItemTag {
    std::size_t start;  // where the start tag lies among the texts; the end tag is after it
    std::uint16_t start_length;
    std::uint16_t end_length;  // with the line end after the tag
};

// One block: the texts follow it.
struct ItemTags {
    const char* texts;
    ItemTag tags[1];  // one for each item

    std::string_view start_tag(std::int32_t item) const {
        return {texts + tags[item].start, tags[item].start_length};
    }
    std::string_view end_tag(std::int32_t item) const {
        return {texts + tags[item].start + tags[item].start_length, tags[item].end_length};
    }
};

// So many bytes may be read from where any tag begins, however short it is.
constexpr std::size_t TAG_READ_SIZE = 32;

// Null when memory is exhausted. Released with host_free.
ItemTags* new_item_tags(const Xfd& xfd);
