// Attributes of an element.
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "fsi/xml/elements/owned_text.h"
#include "host/arrays.h"
#include "host/strings.h"

namespace {

constexpr const char* VALUE_DESCRIPTION = "XML element attribute value";

// Attribute `number` of an element; null when there is none. Only the count records an error.
XmlAttribute* find_attribute(std::uint32_t element, std::uint32_t number) {
    if (number >= xml_attribute_count(element)) return nullptr;
    return &element_of(element)->attributes[number];
}

// The same, recording XMLERR_BAD_ATTRIBUTE for a number of a valid element.
XmlAttribute* require_attribute(std::uint32_t element, std::uint32_t number) {
    if (!lookup_element(element)) return nullptr;
    XmlAttribute* const found = find_attribute(element, number);
    if (!found) set_element_error(XMLERR_BAD_ATTRIBUTE);
    return found;
}

// Puts an attribute after the others. False when memory is exhausted.
bool append_attribute(XmlElement& element, const XmlAttribute& attribute) {
    static const HostArrayType array_type = {sizeof(XmlAttribute), 0, HOST_ARRAY_KIND,
                                             "XML elements attributes array"};
    void* const array = element.attributes ? element.attributes
                                           : host_array_new(&array_type, ELEMENTS_SOURCE, __LINE__);
    if (!array) return false;
    void* const grown =
        host_array_insert(array, &attribute, HOST_ARRAY_END, ELEMENTS_SOURCE, __LINE__);
    if (!grown) {
        if (!element.attributes) host_array_free(array, ELEMENTS_SOURCE, __LINE__);
        return false;
    }
    element.attributes = static_cast<XmlAttribute*>(grown);
    return true;
}

}  // namespace

std::uint32_t xml_attribute_count(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    if (!found->attributes) {
        set_element_error(XMLERR_NO_ATTRIBUTES);
        return 0;
    }
    return host_array_count(found->attributes);
}

const char* xml_attribute_name(std::uint32_t element, std::uint32_t attribute) {
    const XmlAttribute* const found = require_attribute(element, attribute);
    return found ? host_string_text(found->name) : nullptr;
}

const char* xml_attribute_value(std::uint32_t element, std::uint32_t attribute) {
    const XmlAttribute* const found = require_attribute(element, attribute);
    return found ? host_string_text(found->value) : nullptr;
}

std::int32_t xml_set_attribute_value(std::uint32_t element, std::uint32_t attribute,
                                     const char* value) {
    XmlAttribute* const found = find_attribute(element, attribute);
    if (!found) return 0;
    if (!replace_text(found->value, value, value ? std::strlen(value) : 0, VALUE_DESCRIPTION)) {
        set_element_error(XMLERR_NO_MEMORY);
        return 0;
    }
    return 1;
}

std::uint32_t xml_add_attribute(std::uint32_t element, const char* name, const char* value) {
    XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    XmlAttribute attribute = {new_text(name, "XML element attribute name"),
                              new_text(value, VALUE_DESCRIPTION)};
    if (attribute.name == 0 || attribute.value == 0 || !append_attribute(*found, attribute)) {
        free_text(attribute.name);
        free_text(attribute.value);
        set_element_error(XMLERR_NO_MEMORY);
        return 0;
    }
    return host_array_count(found->attributes);
}

std::int32_t xml_delete_attribute(std::uint32_t element, std::uint32_t attribute) {
    XmlAttribute* const found = require_attribute(element, attribute);
    if (!found) return 0;
    free_text(found->name);
    free_text(found->value);
    host_array_delete(element_of(element)->attributes, attribute, 1);
    return 1;
}
