// The names of elements and attributes. Each is kept once, however many elements have it, so two
// names are the same when their addresses are.
#pragma once

#include <cstdint>
#include <string_view>

// A name in a tracked block of its own; its text, with a NUL after it, follows.
struct XmlName {
    XmlName* next;       // in the same chain of the table
    std::uint64_t uses;  // it goes with the last one
    std::uint32_t hash;
    std::uint32_t length;
};

inline const char* text_of(const XmlName& name) {
    return reinterpret_cast<const char*>(&name + 1);
}
inline std::string_view view_of(const XmlName& name) {
    return {text_of(name), name.length};
}

// The name of a text, for one use more. Null when memory is exhausted; nothing has changed then.
XmlName* use_name(std::string_view text);

// Ends one use of a name and clears the pointer; null is allowed.
void drop_name(XmlName*& name);
