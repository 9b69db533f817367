// The element tree: what an element holds, and how elements are found, made and released. The
// operations on elements are the functions of sxml/xml_api.h; inside the module they are called on
// the element itself, so that its handle is looked up once.
#pragma once

#include <cstdint>
#include <string_view>

#include "fsi/xml/elements/element_error.h"
#include "fsi/xml/elements/interned_names.h"
#include "fsi/xml/elements/owned_text.h"
#include "sxml/xml_api.h"

struct NameIndex;
struct XmlElement;

// The path under which the elements' memory is accounted for.
constexpr const char* ELEMENTS_SOURCE = "fsi/xml/elements";

// One attribute of an element, in a tracked block of its own; its value, with a NUL after it,
// follows.
struct XmlAttribute {
    XmlName* name;
};
inline const char* value_of(const XmlAttribute& attribute) {
    return reinterpret_cast<const char*>(&attribute + 1);
}

// A reference that somebody else keeps into a tree. It becomes null when the element is released,
// so that neither outlives it.
struct XmlElementHolder {
    XmlElement* root;     // the top-level element
    XmlElement* current;  // an element of its tree
};

// An element, known to callers of the API by its handle alone. It owns its texts, its attributes
// and its children, which refer to each other and to it.
struct XmlElement {
    XmlName* name;  // never changed
    XmlElement* parent;
    XmlElement* next;  // among the children of the parent
    XmlElement* previous;
    XmlElement* first_child;
    XmlElement* last_child;
    OwnedText value;            // counts while there is a value
    OwnedText* comments;        // tracked block; null when there are none
    XmlAttribute** attributes;  // host array; null until there is an attribute
    void* user_data;            // attached by a caller, not owned
    XmlElementHolder* holder;   // not owned, outlives the element; null for none

    // Bookkeeping of occurrence_numbers.h: the nearest element with a number of its own, up from
    // and including this one, and when it, or this one, came by what it has.
    XmlElement* numbered;
    std::uint64_t numbered_at;
    std::uint64_t full_at;

    // Bookkeeping of name_index.h.
    NameIndex* child_names;     // of an element with more than a few children
    XmlElement* next_same;      // ring of the children of one name, while the parent keeps an
    XmlElement* previous_same;  // index of names

    std::uint32_t handle;
    std::uint32_t number;  // among the siblings of its name; 0 when it has none of its own
    std::uint32_t child_count;
    std::int32_t value_encoding;  // host encoding code, counts while there is a value
    std::uint8_t number_count;    // with those of the elements above
    bool has_value;
    bool had_children;
};

// The element behind a handle; null with XMLERR_BAD_ELEMENT when there is none.
XmlElement* lookup_element(std::uint32_t handle);

// The handle of an element; 0 for null.
inline std::uint32_t handle_of(const XmlElement* element) {
    return element ? element->handle : 0;
}

// The element after `element` in document order below `top`; null after the last. Without
// `descends` the descendants of `element` are skipped.
XmlElement* next_in_tree(const XmlElement* element, const XmlElement* top, bool descends = true);

// Creates an element below `parent`, before the child with the handle `before` or after the others.
// See xml_new_element.
XmlElement* create_element(XmlElement* parent, const char* name, std::uint32_t before);

// What the functions of the API do with an element. Those that add something give false with
// XMLERR_NO_MEMORY and leave it as it was; a negative length means the text up to its NUL.
bool append_value(XmlElement& element, const char* text, std::int64_t length,
                  std::int32_t encoding);
bool add_attribute(XmlElement& element, const char* name, const char* value);
bool add_comment(XmlElement& element, const char* text);
void clear_comments(XmlElement& element);
void clear_attributes(XmlElement& element);
