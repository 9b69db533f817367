// Character data and comments of an element.
#include <cstddef>
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "fsi/xml/elements/owned_text.h"
#include "host/strings.h"

namespace {

constexpr const char* VALUE_DESCRIPTION = "XML Character data";

std::int32_t out_of_memory() {
    set_element_error(XMLERR_NO_MEMORY);
    return 0;
}

// The number of bytes that a caller's text and length mean.
std::size_t text_length(const char* text, std::int64_t length) {
    if (!text) return 0;
    return length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
}

// Cuts the value to the length given with its own buffer.
std::int32_t shorten_value(const XmlElement& element, std::size_t length) {
    const std::size_t present = host_string_length(element.value);
    if (present < length) return 0;
    host_string_chop(element.value, present - length);
    return 1;
}

// Appends to one of the element's strings, which is made when there is none.
bool append_text(std::uint32_t& string, const char* text, std::size_t n, const char* description) {
    if (string == 0) {
        string = new_text(text, n, description);
        return string != 0;
    }
    return n == 0 || host_string_append_n(string, text, n, ELEMENTS_SOURCE, __LINE__, 0);
}

}  // namespace

const char* xml_element_value(std::uint32_t element, std::uint64_t* length) {
    const XmlElement* const found = lookup_element(element);
    if (!found) return nullptr;
    if (found->value == 0) {
        set_element_error(XMLERR_NO_VALUE);
        return nullptr;
    }
    if (length) *length = host_string_length(found->value);
    return host_string_text(found->value);
}

std::int32_t xml_value_encoding(std::uint32_t element) {
    const XmlElement* const found = lookup_element(element);
    if (!found) return -1;
    if (found->value == 0) {
        set_element_error(XMLERR_NO_VALUE);
        return -1;
    }
    return found->value_encoding;
}

std::int32_t xml_set_element_value(std::uint32_t element, const char* text, std::int64_t length,
                                   std::int32_t encoding) {
    XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    const std::size_t n = text_length(text, length);
    if (found->value != 0 && text == host_string_text(found->value)) {
        found->value_encoding = encoding;
        return shorten_value(*found, n);
    }
    if (!replace_text(found->value, text, n, VALUE_DESCRIPTION)) return out_of_memory();
    found->value_encoding = encoding;
    return 1;
}

std::int32_t xml_append_element_value(std::uint32_t element, const char* text, std::int64_t length,
                                      std::int32_t encoding) {
    XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    const bool is_first = found->value == 0;
    if (!append_text(found->value, text, text_length(text, length), VALUE_DESCRIPTION)) {
        return out_of_memory();
    }
    if (is_first) found->value_encoding = encoding;
    return 1;
}

std::int32_t xml_add_comment(std::uint32_t element, const char* text) {
    XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    const bool added = append_text(found->comments, text, text_length(text, -1), "XML comments");
    return added ? 1 : out_of_memory();
}

void xml_clear_comments(std::uint32_t element) {
    if (XmlElement* const found = lookup_element(element)) free_text(found->comments);
}

const char* xml_element_comments(std::uint32_t element, std::uint64_t* length) {
    if (length) *length = 0;
    const XmlElement* const found = lookup_element(element);
    if (!found || found->comments == 0) return nullptr;
    if (length) *length = host_string_length(found->comments);
    return host_string_text(found->comments);
}
