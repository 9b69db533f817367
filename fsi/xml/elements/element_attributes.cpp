// Attributes of an element.
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "host/arrays.h"
#include "host/memory.h"

namespace {

// Attribute `number` of an element; null when there is none. Only the count records an error.
XmlAttribute** find_attribute(std::uint32_t element, std::uint32_t number) {
    if (number >= xml_attribute_count(element)) return nullptr;
    return &lookup_element(element)->attributes[number];
}

// The same, recording XMLERR_BAD_ATTRIBUTE for a number of a valid element.
XmlAttribute** require_attribute(std::uint32_t element, std::uint32_t number) {
    if (!lookup_element(element)) return nullptr;
    XmlAttribute** const found = find_attribute(element, number);
    if (!found) set_element_error(XMLERR_BAD_ATTRIBUTE);
    return found;
}

// An attribute without a name. Null when memory is exhausted.
XmlAttribute* new_attribute(const char* value) {
    const std::size_t size = value ? std::strlen(value) + 1 : 1;
    auto* const attribute = static_cast<XmlAttribute*>(
        host_alloc(sizeof(XmlAttribute) + size, HOST_BLOCK_RAW, ELEMENTS_SOURCE, __LINE__,
                   "XML element attribute", 0));
    if (!attribute) return nullptr;
    attribute->name = nullptr;
    std::memcpy(attribute + 1, value ? value : "", size);
    return attribute;
}

void free_attribute(XmlAttribute* attribute) {
    if (!attribute) return;
    drop_name(attribute->name);
    host_free(attribute, ELEMENTS_SOURCE, __LINE__, 0);
}

// Puts an attribute after the others. False when memory is exhausted.
bool append_attribute(XmlElement& element, XmlAttribute* attribute) {
    static const HostArrayType array_type = {sizeof(void*), 0, HOST_ARRAY_KIND,
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
    element.attributes = static_cast<XmlAttribute**>(grown);
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
    const XmlAttribute* const* const found = require_attribute(element, attribute);
    return found ? text_of(*(*found)->name) : nullptr;
}

const char* xml_attribute_value(std::uint32_t element, std::uint32_t attribute) {
    const XmlAttribute* const* const found = require_attribute(element, attribute);
    return found ? value_of(**found) : nullptr;
}

std::int32_t xml_set_attribute_value(std::uint32_t element, std::uint32_t attribute,
                                     const char* value) {
    XmlAttribute** const found = find_attribute(element, attribute);
    if (!found) return 0;
    if (!value || *value == '\0') {  // for which no memory is needed
        *reinterpret_cast<char*>(*found + 1) = '\0';
        return 1;
    }
    XmlAttribute* const changed = new_attribute(value);
    if (!changed) {
        set_element_error(XMLERR_NO_MEMORY);
        return 0;
    }
    changed->name = (*found)->name;
    (*found)->name = nullptr;
    free_attribute(*found);
    *found = changed;
    return 1;
}

bool add_attribute(XmlElement& element, const char* name, const char* value) {
    XmlAttribute* const attribute = new_attribute(value);
    if (attribute) {
        attribute->name = use_name(name ? std::string_view(name) : std::string_view());
        if (attribute->name && append_attribute(element, attribute)) return true;
    }
    free_attribute(attribute);
    set_element_error(XMLERR_NO_MEMORY);
    return false;
}

std::uint32_t xml_add_attribute(std::uint32_t element, const char* name, const char* value) {
    XmlElement* const found = lookup_element(element);
    if (!found || !add_attribute(*found, name, value)) return 0;
    return host_array_count(found->attributes);
}

std::int32_t xml_delete_attribute(std::uint32_t element, std::uint32_t attribute) {
    XmlAttribute** const found = require_attribute(element, attribute);
    if (!found) return 0;
    free_attribute(*found);
    host_array_delete(lookup_element(element)->attributes, attribute, 1);
    return 1;
}

void clear_attributes(XmlElement& element) {
    if (!element.attributes) return;
    const std::uint32_t count = host_array_count(element.attributes);
    for (std::uint32_t i = 0; i < count; ++i) free_attribute(element.attributes[i]);
    host_array_free(element.attributes, ELEMENTS_SOURCE, __LINE__);
    element.attributes = nullptr;
}
