// Making, walking and reading elements by their handles.
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "fsi/xml/elements/occurrence_numbers.h"

namespace {

// The handle of the element next to another one; 0 with `error` when there is none.
std::uint32_t neighbour(std::uint32_t element, XmlElement* XmlElement::*direction,
                        XmlErrorCode error) {
    const XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    if (!(found->*direction)) set_element_error(error);
    return handle_of(found->*direction);
}

}  // namespace

std::uint32_t xml_new_element(std::uint32_t parent, const char* name, std::uint32_t before) {
    return handle_of(create_element(lookup_element(parent), name, before));
}

std::uint32_t xml_add_child(std::uint32_t parent, const char* name) {
    return xml_new_element(parent, name, 0);
}

std::uint32_t xml_add_sibling(std::uint32_t element, const char* name) {
    const std::uint32_t parent = xml_parent(element);
    if (parent == 0) {
        set_element_error(XMLERR_HAS_TOP_LEVEL);
        return 0;
    }
    return xml_new_element(parent, name, xml_next_sibling(element));
}

std::uint32_t xml_first_child(std::uint32_t element) {
    return neighbour(element, &XmlElement::first_child, XMLERR_NO_CHILDREN);
}

std::uint32_t xml_next_sibling(std::uint32_t element) {
    return neighbour(element, &XmlElement::next, XMLERR_NO_SIBLINGS);
}

std::uint32_t xml_previous_sibling(std::uint32_t element) {
    return neighbour(element, &XmlElement::previous, XMLERR_NO_SIBLINGS);
}

std::uint32_t xml_parent(std::uint32_t element) {
    return neighbour(element, &XmlElement::parent, XMLERR_TOP_LEVEL);
}

const char* xml_element_name(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    return found ? text_of(*found->name) : nullptr;
}

std::int32_t xml_last_index(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    return found ? found->number_count - 1 : -1;
}

std::uint32_t xml_element_index(std::uint32_t element, std::int32_t position) {
    const XmlElement* const found = lookup_element(element);
    if (!found || position < 0 || position >= found->number_count) return XML_NO_INDEX;
    std::uint32_t numbers[XML_INDEX_LIMIT];
    occurrence_numbers(*found, numbers);
    return numbers[position];
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
