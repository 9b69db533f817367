#include "fsi/xml/sxml/writing/item_tags.h"

#include <cstring>

#include "fsi/xml/sxml/plugin.h"
#include "host/memory.h"

namespace {

constexpr std::size_t MARKUP_SIZE = sizeof "<></>\r\n" - 1;

std::string_view item_name(const XfdItem& item) {
    return {item.name, strnlen(item.name, XFD_ITEM_NAME_SIZE)};
}

// Copies a text, each line feed in it as a line end. Result: after its last byte.
char* put(char* at, std::string_view text) {
    for (const char character : text) {
        if (character == '\n') *at++ = '\r';
        *at++ = character;
    }
    return at;
}

std::size_t texts_size(const Xfd& xfd) {
    std::size_t size = TAG_READ_SIZE;
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const std::string_view name = item_name(xfd.items[i]);
        size += 2 * name.size() + MARKUP_SIZE;
        for (const char character : name) size += character == '\n' ? 2 : 0;
    }
    return size;
}

}  // namespace

ItemTags* new_item_tags(const Xfd& xfd) {
    const auto count = static_cast<std::size_t>(xfd.item_count < 0 ? 0 : xfd.item_count);
    const std::size_t head = sizeof(ItemTags) + count * sizeof(ItemTag);
    void* const block = host_alloc(head + texts_size(xfd), HOST_BLOCK_ZEROED, SXML_SOURCE, __LINE__,
                                   "XML item tags", 0);
    auto* const tags = static_cast<ItemTags*>(block);
    if (tags == nullptr) return nullptr;
    char* const texts = static_cast<char*>(block) + head;
    tags->texts = texts;
    char* at = texts;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view name = item_name(xfd.items[i]);
        char* const start = at;
        at = put(put(put(at, "<"), name), ">");
        char* const end = at;
        at = put(put(put(at, "</"), name), ">\n");
        tags->tags[i] = {static_cast<std::size_t>(start - texts),
                         static_cast<std::uint16_t>(end - start),
                         static_cast<std::uint16_t>(at - end)};
    }
    return tags;
}
