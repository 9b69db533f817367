// The element tree: what an element holds, and how elements are found, made and released. The
// operations on elements are the functions of sxml/xml_api.h.
#pragma once

#include <cstdint>

#include "fsi/xml/elements/element_error.h"
#include "host/lists.h"
#include "sxml/xml_api.h"

struct NameIndex;

// The path under which the elements' memory is accounted for.
constexpr const char* ELEMENTS_SOURCE = "fsi/xml/elements";

// One attribute of an element; the element owns both strings.
struct XmlAttribute {
    std::uint32_t name;
    std::uint32_t value;
};
static_assert(sizeof(XmlAttribute) == 8);

// Handles that somebody else keeps of elements. They become 0 when the element is released, so that
// neither outlives it.
struct XmlElementHolder {
    std::uint32_t root;     // the top-level element
    std::uint32_t current;  // an element of its tree
};

// An element, known to everybody else by its handle alone. It owns its strings, its attributes, its
// list of children and the children themselves.
struct XmlElement {
    std::uint32_t name;                      // string, never changed
    std::uint32_t parent;                    // 0 for a top-level element
    HostList* children;                      // handles; null until there is a child
    std::int32_t value_encoding;             // host encoding code, counts while there is a value
    std::uint32_t value;                     // string; 0 when there never was any data
    std::uint32_t comments;                  // string; 0 when there are none
    HostListNode* sibling_node;              // own entry in the parent's children
    XmlAttribute* attributes;                // host array; null until there is an attribute
    std::int32_t last_index;                 // -1 when there are no occurrence numbers
    std::uint32_t indices[XML_INDEX_LIMIT];  // occurrence numbers, outermost first
    void* user_data;                         // attached by a caller, not owned
    XmlElementHolder* holder;                // not owned, outlives the element; null for none

    // Bookkeeping of name_index.h.
    NameIndex* child_names;       // of an element with more than a handful of children
    std::uint32_t next_same;      // ring of the children of one name, while the parent keeps an
    std::uint32_t previous_same;  // index of names
};

// The element behind a handle; null with XMLERR_BAD_ELEMENT when there is none.
XmlElement* lookup_element(std::uint32_t handle);

// The element behind a handle that is known to be an element's.
XmlElement* element_of(std::uint32_t handle);

// The first child of an element, null when it has none. Entries lead on to the next ones.
inline const HostListNode* first_child_node(const XmlElement& element) {
    return element.children ? element.children->first : nullptr;
}

// Creates an element; see xml_new_element.
std::uint32_t create_element(std::uint32_t parent, const char* name, std::uint32_t before);
