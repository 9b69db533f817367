#include "host/runtime/text/string_entries.h"

#include <cstring>

namespace host {

namespace {

struct Buffer {
    char* data;
    std::size_t size;
    std::size_t capacity;
};

// Makes room for `extra` bytes. A block that had to be replaced goes to `*replaced`, still intact:
// what is about to be added may lie in it.
bool reserve(Buffer& buffer, std::size_t extra, const memory::Origin& origin, char** replaced) {
    if (extra <= buffer.capacity - buffer.size) return true;
    const std::size_t doubled = buffer.capacity * 2;
    const std::size_t needed = buffer.size + extra;
    const std::size_t capacity = needed > doubled ? needed : doubled;
    auto* larger = static_cast<char*>(memory::allocate(capacity, origin));
    if (larger == nullptr) return false;
    if (buffer.size > 0) std::memcpy(larger, buffer.data, buffer.size);
    *replaced = buffer.data;
    buffer.data = larger;
    buffer.capacity = capacity;
    return true;
}

void put(Buffer& buffer, const void* bytes, std::size_t count) {
    std::memcpy(buffer.data + buffer.size, bytes, count);
    buffer.size += count;
}

}  // namespace

struct StringEntries {
    Buffer texts;   // each with its NUL
    Buffer joined;  // with line feeds in between and a NUL at the end
    Buffer starts;  // a std::size_t per entry: where in `texts` it starts
};

bool add_entry(StringEntries** entries, std::string_view text, const memory::Origin& origin) {
    StringEntries* sequence = *entries;
    if (sequence == nullptr) {
        sequence =
            static_cast<StringEntries*>(memory::allocate_zeroed(sizeof(StringEntries), origin));
        if (sequence == nullptr) return false;
        *entries = sequence;
    }
    char* replaced[3] = {};
    const std::size_t size = text.size() + 1;
    const bool has_room = reserve(sequence->texts, size, origin, &replaced[0]) &&
                          reserve(sequence->joined, size, origin, &replaced[1]) &&
                          reserve(sequence->starts, sizeof(std::size_t), origin, &replaced[2]);
    if (has_room) {
        const std::size_t start = sequence->texts.size;
        put(sequence->starts, &start, sizeof start);
        put(sequence->texts, text.data(), text.size());
        put(sequence->texts, "", 1);
        // The joined text is copied from the new entry: the given one may be the joined text.
        if (start > 0) sequence->joined.data[sequence->joined.size - 1] = '\n';
        put(sequence->joined, sequence->texts.data + start, size);
    }
    for (char* block : replaced) memory::release(block);
    return has_room;
}

std::size_t entry_count(const StringEntries* entries) {
    return entries != nullptr ? entries->starts.size / sizeof(std::size_t) : 0;
}

const char* entry_text(const StringEntries* entries, std::size_t index) {
    std::size_t start = 0;
    std::memcpy(&start, entries->starts.data + index * sizeof start, sizeof start);
    return entries->texts.data + start;
}

std::string_view joined_entries(const StringEntries* entries) {
    if (entries == nullptr || entries->joined.size == 0) return {};
    return {entries->joined.data, entries->joined.size - 1};
}

void clear_entries(StringEntries* entries) {
    if (entries == nullptr) return;
    entries->texts.size = 0;
    entries->joined.size = 0;
    entries->starts.size = 0;
}

void free_entries(StringEntries* entries) {
    if (entries == nullptr) return;
    memory::release(entries->texts.data);
    memory::release(entries->joined.data);
    memory::release(entries->starts.data);
    memory::release(entries);
}

}  // namespace host
