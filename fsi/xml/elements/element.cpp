#include "fsi/xml/elements/element.h"

#include <cstring>

#include "fsi/xml/elements/name_index.h"
#include "fsi/xml/elements/occurrence_numbers.h"
#include "fsi/xml/elements/owned_text.h"
#include "host/arrays.h"
#include "host/handles.h"

namespace {

constexpr std::uint32_t NO_SIBLING = 0xFFFFFFFF;

// The handle type of elements; 0 until the first element is created.
std::uint32_t element_type = 0;

bool is_element(std::uint32_t handle) {
    return element_type != 0 && host_handle_type(handle) == element_type;
}

// Takes an element out of its parent's children.
void unlink(std::uint32_t handle, XmlElement& element) {
    if (!element.sibling_node) return;
    remove_child_name(*element_of(element.parent), handle, element);
    host_list_remove(element.sibling_node, ELEMENTS_SOURCE, __LINE__, 0);
    element.sibling_node = nullptr;
}

// Releases everything below an element, leaves first: so the release of a handle never leads to the
// release of another one, and depth costs no stack.
void release_descendants(XmlElement& top) {
    drop_child_names(top);
    XmlElement* element = &top;
    for (;;) {
        if (const HostListNode* const node = first_child_node(*element)) {
            element = element_of(node->value);
            drop_child_names(*element);
        } else if (element != &top) {
            const std::uint32_t leaf = element->sibling_node->value;
            element = element_of(element->parent);
            host_handle_free(leaf, ELEMENTS_SOURCE, __LINE__, 0);
        } else {
            return;
        }
    }
}

void release_attributes(XmlElement& element) {
    const std::uint32_t count = host_array_count(element.attributes);
    for (std::uint32_t i = 0; i < count; ++i) {
        free_text(element.attributes[i].name);
        free_text(element.attributes[i].value);
    }
    host_array_free(element.attributes, ELEMENTS_SOURCE, __LINE__);
    element.attributes = nullptr;
}

void leave_holder(XmlElementHolder* holder, std::uint32_t handle) {
    if (!holder) return;
    if (holder->root == handle) holder->root = 0;
    if (holder->current == handle) holder->current = 0;
}

// Run by the host when an element's handle is released.
void destroy_element(std::uint32_t handle) {
    XmlElement& element = *element_of(handle);
    leave_holder(element.holder, handle);
    unlink(handle, element);
    free_text(element.name);
    release_descendants(element);
    host_list_free(element.children, ELEMENTS_SOURCE, __LINE__, 0);
    element.children = nullptr;
    free_text(element.value);
    free_text(element.comments);
    release_attributes(element);
}

void register_element_type() {
    if (element_type != 0) return;
    HostHandleType type{};
    type.object_size = sizeof(XmlElement);
    type.kind = HOST_HANDLE_KIND;
    type.destroy = destroy_element;
    element_type = host_handle_type_register(&type);
}

// The entry of a child among the children of `parent`; null for any other number.
HostListNode* child_entry(std::uint32_t parent, std::uint32_t child) {
    if (child == 0 || child == NO_SIBLING || !is_element(child)) return nullptr;
    const XmlElement& element = *element_of(child);
    return element.parent == parent ? element.sibling_node : nullptr;
}

// Links a new element into its parent's children and numbers it. Whatever may fail comes first, so
// that on failure the tree is as it was.
bool link_child(std::uint32_t parent_handle, XmlElement& parent, std::uint32_t handle,
                XmlElement& child, std::uint32_t before) {
    static const HostListType list_type = {"XML children list", 0};
    if (!reserve_child_name(parent)) return false;
    HostList* const list =
        parent.children ? parent.children : host_list_new(&list_type, ELEMENTS_SOURCE, __LINE__, 0);
    if (!list) return false;
    const SameName same = find_same_name(parent, child);
    HostListNode* const node = host_list_insert(handle, list, child_entry(parent_handle, before),
                                                ELEMENTS_SOURCE, __LINE__, 0);
    if (!node) {
        if (!parent.children) host_list_free(list, ELEMENTS_SOURCE, __LINE__, 0);
        return false;
    }
    parent.children = list;
    child.parent = parent_handle;
    child.sibling_node = node;
    add_child_name(parent, handle, child);
    number_child(parent, child, same);
    return true;
}

}  // namespace

XmlElement* element_of(std::uint32_t handle) {
    return static_cast<XmlElement*>(host_handle_ptr(handle));
}

XmlElement* lookup_element(std::uint32_t handle) {
    if (is_element(handle)) return element_of(handle);
    set_element_error(XMLERR_BAD_ELEMENT);
    return nullptr;
}

std::uint32_t create_element(std::uint32_t parent, const char* name, std::uint32_t before) {
    register_element_type();
    XmlElement* const above = lookup_element(parent);
    const std::uint32_t handle =
        host_handle_new(element_type, 0, 0, ELEMENTS_SOURCE, __LINE__, "XML element info", 0);
    if (handle == 0) {
        set_element_error(XMLERR_NO_MEMORY);
        return 0;
    }
    XmlElement& element = *element_of(handle);
    element.last_index = -1;
    element.name = new_text(name, "XML element name");
    if (element.name == 0 || (above && !link_child(parent, *above, handle, element, before))) {
        set_element_error(XMLERR_NO_MEMORY);
        host_handle_free(handle, ELEMENTS_SOURCE, __LINE__, 0);
        return 0;
    }
    return handle;
}

std::int32_t xml_is_element(std::uint32_t handle) {
    return is_element(handle) ? 1 : 0;
}

std::int32_t xml_free_element(std::uint32_t element) {
    if (!lookup_element(element)) return 0;
    host_handle_free(element, ELEMENTS_SOURCE, __LINE__, 0);
    return 1;
}
