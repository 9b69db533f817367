#include "fsi/xml/elements/element.h"

#include "fsi/xml/elements/name_index.h"
#include "fsi/xml/elements/occurrence_numbers.h"
#include "host/handles.h"

namespace {

constexpr std::uint32_t NO_SIBLING = 0xFFFFFFFF;

// The handle type of elements; 0 until the first element is created.
std::uint32_t element_type = 0;

bool is_element(std::uint32_t handle) {
    return element_type != 0 && host_handle_type(handle) == element_type;
}

XmlElement* element_of(std::uint32_t handle) {
    return static_cast<XmlElement*>(host_handle_ptr(handle));
}

// Puts an element among the children of its parent, before `before` or after the others.
void link(XmlElement& parent, XmlElement& element, XmlElement* before) {
    element.parent = &parent;
    element.next = before;
    element.previous = before ? before->previous : parent.last_child;
    (element.previous ? element.previous->next : parent.first_child) = &element;
    (before ? before->previous : parent.last_child) = &element;
    ++parent.child_count;
    parent.had_children = true;
}

// Takes an element out of its parent's children.
void unlink(XmlElement& element) {
    if (!element.parent) return;
    XmlElement& parent = *element.parent;
    remove_child_name(parent, element);
    (element.previous ? element.previous->next : parent.first_child) = element.next;
    (element.next ? element.next->previous : parent.last_child) = element.previous;
    --parent.child_count;
    element.parent = element.next = element.previous = nullptr;
}

// Releases everything below an element, leaves first: so the release of a handle never leads to the
// release of another one, and depth costs no stack.
void release_descendants(XmlElement& top) {
    drop_child_names(top);
    XmlElement* element = &top;
    for (;;) {
        if (element->first_child) {
            element = element->first_child;
            drop_child_names(*element);
        } else if (element != &top) {
            const std::uint32_t leaf = element->handle;
            element = element->parent;
            host_handle_free(leaf, ELEMENTS_SOURCE, __LINE__, 0);
        } else {
            return;
        }
    }
}

void leave_holder(XmlElement& element) {
    XmlElementHolder* const holder = element.holder;
    if (!holder) return;
    if (holder->root == &element) holder->root = nullptr;
    if (holder->current == &element) holder->current = nullptr;
}

// Run by the host when an element's handle is released.
void destroy_element(std::uint32_t handle) {
    XmlElement& element = *element_of(handle);
    leave_holder(element);
    unlink(element);
    drop_name(element.name);
    release_descendants(element);
    free_text(element.value);
    clear_comments(element);
    clear_attributes(element);
}

void register_element_type() {
    if (element_type != 0) return;
    HostHandleType type{};
    type.object_size = sizeof(XmlElement);
    type.kind = HOST_HANDLE_KIND;
    type.destroy = destroy_element;
    element_type = host_handle_type_register(&type);
}

// The child of `parent` that a handle stands for; null for any other number.
XmlElement* child_of(const XmlElement& parent, std::uint32_t handle) {
    if (handle == 0 || handle == NO_SIBLING || !is_element(handle)) return nullptr;
    XmlElement* const element = element_of(handle);
    return element->parent == &parent ? element : nullptr;
}

// Links a new element into its parent's children and numbers it. Whatever may fail comes first, so
// that on failure the tree is as it was.
bool add_to_parent(XmlElement& parent, XmlElement& child, std::uint32_t before) {
    if (!reserve_child_name(parent)) return false;
    const SameName same = find_same_name(parent, *child.name);
    link(parent, child, child_of(parent, before));
    add_child_name(parent, child);
    number_child(parent, child, same);
    return true;
}

}  // namespace

XmlElement* lookup_element(std::uint32_t handle) {
    if (is_element(handle)) return element_of(handle);
    set_element_error(XMLERR_BAD_ELEMENT);
    return nullptr;
}

XmlElement* next_in_tree(const XmlElement* element, const XmlElement* top, bool descends) {
    if (descends && element->first_child) return element->first_child;
    for (; element != top; element = element->parent) {
        if (element->next) return element->next;
    }
    return nullptr;
}

XmlElement* create_element(XmlElement* parent, const char* name, std::uint32_t before) {
    register_element_type();
    const std::uint32_t handle =
        host_handle_new(element_type, 0, 0, ELEMENTS_SOURCE, __LINE__, "XML element info", 0);
    if (handle == 0) {
        set_element_error(XMLERR_NO_MEMORY);
        return nullptr;
    }
    XmlElement& element = *element_of(handle);
    element.handle = handle;
    element.name = use_name(name ? std::string_view(name) : std::string_view());
    if (!element.name || (parent && !add_to_parent(*parent, element, before))) {
        set_element_error(XMLERR_NO_MEMORY);
        host_handle_free(handle, ELEMENTS_SOURCE, __LINE__, 0);
        return nullptr;
    }
    return &element;
}

std::int32_t xml_is_element(std::uint32_t handle) {
    return is_element(handle) ? 1 : 0;
}

std::int32_t xml_free_element(std::uint32_t element) {
    if (!lookup_element(element)) return 0;
    host_handle_free(element, ELEMENTS_SOURCE, __LINE__, 0);
    return 1;
}
