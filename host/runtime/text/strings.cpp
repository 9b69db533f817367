// String objects live in the handle registry under a type of their own.
#include "host/strings.h"

#include <cstring>

#include "host/handles.h"
#include "host/runtime/memory/tracked_memory.h"
#include "host/runtime/text/string_entries.h"

namespace {

using host::StringEntries;
using host::memory::Origin;

constexpr std::uint32_t SMALL_CAPACITY = 15;          // bytes without the NUL
constexpr std::uint32_t LARGEST_LENGTH = 0xFFFFFFFE;  // a longer text counts as exhausted memory

struct StringObject {
    union {
        char small[SMALL_CAPACITY + 1];
        char* large;
    };
    std::uint32_t length;
    std::uint32_t large_capacity;  // without the NUL; 0 while the text is small
    StringEntries* entries;        // null until the first entry
};
static_assert(sizeof(StringObject) == 32);

char* text_of(StringObject* string) {
    return string->large_capacity > 0 ? string->large : string->small;
}
std::uint32_t capacity_of(const StringObject* string) {
    return string->large_capacity > 0 ? string->large_capacity : SMALL_CAPACITY;
}

void destroy_string(std::uint32_t handle) {
    auto* string = static_cast<StringObject*>(host_handle_ptr(handle));
    if (string->large_capacity > 0) host::memory::release(string->large);
    host::free_entries(string->entries);
}

std::uint32_t string_type() {
    static constinit std::uint32_t id = 0;
    if (id == 0) {
        const HostHandleType type{sizeof(StringObject), {}, HOST_HANDLE_KIND, {}, destroy_string};
        id = host_handle_type_register(&type);
    }
    return id;
}

// Null when the handle is not a live string.
StringObject* find_string(std::uint32_t handle) {
    return handle != 0 && host_handle_type(handle) == string_type()
               ? static_cast<StringObject*>(host_handle_ptr(handle))
               : nullptr;
}

// Moves the text to a block with room for `capacity` bytes at least and hands the old block over in
// `*replaced`: the text to be appended may lie in it. False, with nothing changed, without memory.
bool enlarge(StringObject* string, std::uint32_t capacity, const Origin& origin, char** replaced) {
    const std::uint32_t present = capacity_of(string);
    const std::uint32_t doubled = present > LARGEST_LENGTH / 2 ? LARGEST_LENGTH : present * 2 + 1;
    const std::uint32_t chosen = capacity > doubled ? capacity : doubled;
    auto* larger = static_cast<char*>(host::memory::allocate(std::size_t{chosen} + 1, origin));
    if (larger == nullptr) return false;
    std::memcpy(larger, text_of(string), std::size_t{string->length} + 1);
    *replaced = string->large_capacity > 0 ? string->large : nullptr;
    string->large = larger;
    string->large_capacity = chosen;
    return true;
}

int append(StringObject* string, const char* text, std::size_t n, const char* source, int line) {
    if (n == 0) return 1;
    if (n > LARGEST_LENGTH - string->length) return 0;
    const auto length = string->length + static_cast<std::uint32_t>(n);
    char* replaced = nullptr;
    char own_text[SMALL_CAPACITY + 1];
    if (length > capacity_of(string)) {
        const Origin origin{source, line, host::memory::description_of(string)};
        // A part of a small text is overwritten by the address of the large one.
        const bool in_small_text = text >= string->small && text <= string->small + SMALL_CAPACITY;
        if (string->large_capacity == 0 && in_small_text) {
            std::memcpy(own_text, text, n);
            text = own_text;
        }
        if (!enlarge(string, length, origin, &replaced)) return 0;
    }
    char* end = text_of(string) + string->length;
    std::memmove(end, text, n);
    end[n] = '\0';
    string->length = length;
    host::memory::release(replaced);
    return 1;
}

const char* whole_text(StringObject* string) {
    if (string->length == 0 && host::entry_count(string->entries) > 0) {
        return host::joined_entries(string->entries).data();
    }
    return text_of(string);
}

std::size_t whole_length(const StringObject* string) {
    return string->length == 0 ? host::joined_entries(string->entries).size() : string->length;
}

int add_entry(StringObject* string, const char* text, std::size_t length, const char* source,
              int line) {
    const Origin origin{source, line, host::memory::description_of(string)};
    return host::add_entry(&string->entries, {text, length}, origin) ? 1 : 0;
}

}  // namespace

std::uint32_t host_string_new(const char* description, std::size_t capacity, const char* source,
                              int line, int flags) {
    if (capacity > LARGEST_LENGTH) return 0;
    const std::uint32_t handle =
        host_handle_new(string_type(), 0, 0, source, line, description, flags);
    if (handle == 0 || capacity <= SMALL_CAPACITY) return handle;
    char* replaced = nullptr;
    if (enlarge(find_string(handle), static_cast<std::uint32_t>(capacity),
                {source, line, description}, &replaced)) {
        return handle;
    }
    host_handle_free(handle, source, line, flags);
    return 0;
}

void host_string_free(std::uint32_t string, const char* source, int line) {
    if (find_string(string) != nullptr) host_handle_free(string, source, line, 0);
}

int host_string_append(std::uint32_t string, const char* text, const char* source, int line,
                       int flags) {
    return host_string_append_n(string, text, text != nullptr ? std::strlen(text) : 0, source, line,
                                flags);
}

int host_string_append_n(std::uint32_t string, const char* text, std::size_t n, const char* source,
                         int line, int /*flags*/) {
    StringObject* object = find_string(string);
    return object != nullptr ? append(object, text, n, source, line) : 0;
}

void host_string_chop(std::uint32_t string, std::size_t n) {
    StringObject* object = find_string(string);
    if (object == nullptr) return;
    object->length = n < object->length ? object->length - static_cast<std::uint32_t>(n) : 0;
    text_of(object)[object->length] = '\0';
}

void host_string_clear(std::uint32_t string) {
    StringObject* object = find_string(string);
    if (object == nullptr) return;
    object->length = 0;
    text_of(object)[0] = '\0';
    host::clear_entries(object->entries);
}

const char* host_string_text(std::uint32_t string) {
    StringObject* object = find_string(string);
    return object != nullptr ? whole_text(object) : nullptr;
}

std::size_t host_string_length(std::uint32_t string) {
    const StringObject* object = find_string(string);
    return object != nullptr ? whole_length(object) : 0;
}

int host_string_compare(std::uint32_t first, std::uint32_t second) {
    StringObject* a = find_string(first);
    StringObject* b = find_string(second);
    if (a == nullptr || b == nullptr || whole_length(a) != whole_length(b)) return 1;
    return std::memcmp(whole_text(a), whole_text(b), whole_length(a)) == 0 ? 0 : 1;
}

int host_string_add_entry(std::uint32_t string, const char* text, const char* source, int line) {
    StringObject* object = find_string(string);
    if (object == nullptr || text == nullptr) return 0;
    return add_entry(object, text, std::strlen(text), source, line);
}

int host_string_add_entries(std::uint32_t string, std::uint32_t other, const char* source,
                            int line) {
    StringObject* object = find_string(string);
    StringObject* added = find_string(other);
    if (object == nullptr || added == nullptr) return 0;
    const std::size_t length = whole_length(added);
    return length == 0 ? 1 : add_entry(object, whole_text(added), length, source, line);
}

std::size_t host_string_entry_count(std::uint32_t string) {
    const StringObject* object = find_string(string);
    if (object == nullptr) return 0;
    return host::entry_count(object->entries) + (object->length > 0 ? 1 : 0);
}

const char* host_string_entry(std::uint32_t string, std::size_t index) {
    StringObject* object = find_string(string);
    if (object == nullptr) return nullptr;
    const std::size_t count = host::entry_count(object->entries);
    if (index < count) return host::entry_text(object->entries, index);
    return index == count && object->length > 0 ? text_of(object) : nullptr;
}
