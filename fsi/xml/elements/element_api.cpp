// Making, walking and reading elements by their handles.
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "host/strings.h"

namespace {

// The element of an entry next to `element`'s own; 0 with XMLERR_NO_SIBLINGS when there is none.
std::uint32_t sibling(std::uint32_t element, HostListNode* HostListNode::*direction) {
    const XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    const HostListNode* const node =
        found->sibling_node ? found->sibling_node->*direction : nullptr;
    if (!node) {
        set_element_error(XMLERR_NO_SIBLINGS);
        return 0;
    }
    return node->value;
}

}  // namespace

std::uint32_t xml_new_element(std::uint32_t parent, const char* name, std::uint32_t before) {
    return create_element(parent, name, before);
}

std::uint32_t xml_add_child(std::uint32_t parent, const char* name) {
    return create_element(parent, name, 0);
}

std::uint32_t xml_add_sibling(std::uint32_t element, const char* name) {
    const std::uint32_t parent = xml_parent(element);
    if (parent == 0) {
        set_element_error(XMLERR_HAS_TOP_LEVEL);
        return 0;
    }
    return create_element(parent, name, xml_next_sibling(element));
}

std::uint32_t xml_first_child(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    const HostListNode* const node = first_child_node(*found);
    if (!node) {
        set_element_error(XMLERR_NO_CHILDREN);
        return 0;
    }
    return node->value;
}

std::uint32_t xml_next_sibling(std::uint32_t element) {
    return sibling(element, &HostListNode::next);
}

std::uint32_t xml_previous_sibling(std::uint32_t element) {
    return sibling(element, &HostListNode::previous);
}

std::uint32_t xml_parent(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    if (found->parent == 0) set_element_error(XMLERR_TOP_LEVEL);
    return found->parent;
}

const char* xml_element_name(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    return found ? host_string_text(found->name) : nullptr;
}

std::int32_t xml_last_index(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    return found ? found->last_index : -1;
}

std::uint32_t xml_element_index(std::uint32_t element, std::int32_t position) {
    const XmlElement* const found = lookup_element(element);
    if (!found || position < 0 || position > found->last_index) return XML_NO_INDEX;
    return found->indices[position];
}

std::int32_t xml_set_user_data(std::uint32_t element, void* data) {
    XmlElement* const found = lookup_element(element);
    if (!found || found->user_data) return 0;
    found->user_data = data;
    return 1;
}

void* xml_get_user_data(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    return found ? found->user_data : nullptr;
}

std::uint64_t xml_copy_string(char* destination, std::uint64_t /*unused*/, const char* source) {
    if (!source) source = "";
    const std::size_t length = std::strlen(source);
    if (destination) std::memcpy(destination, source, length + 1);
    return length;
}
