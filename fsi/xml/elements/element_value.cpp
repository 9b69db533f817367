// Character data and comments of an element.
#include <cstddef>
#include <cstring>

#include "fsi/xml/elements/element.h"
#include "host/memory.h"

namespace {

constexpr const char* VALUE_DESCRIPTION = "XML Character data";

// The result of a function that fails because memory is exhausted.
bool out_of_memory() {
    set_element_error(XMLERR_NO_MEMORY);
    return false;
}

// The number of bytes that a caller's text and length mean.
std::size_t text_length(const char* text, std::int64_t length) {
    if (!text) return 0;
    return length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
}

// The element, when it has a value; null with the reason recorded.
XmlElement* element_with_value(std::uint32_t element) {
    XmlElement* const found = lookup_element(element);
    if (!found || found->has_value) return found;
    set_element_error(XMLERR_NO_VALUE);
    return nullptr;
}

// Comments without text. Null when memory is exhausted.
OwnedText* new_comments() {
    return static_cast<OwnedText*>(host_alloc(sizeof(OwnedText), HOST_BLOCK_ZEROED, ELEMENTS_SOURCE,
                                              __LINE__, "XML comments", 0));
}

}  // namespace

bool append_value(XmlElement& element, const char* text, std::int64_t length,
                  std::int32_t encoding) {
    const std::size_t n = text_length(text, length);
    if (!append_text(element.value, text, n, VALUE_DESCRIPTION)) return out_of_memory();
    if (!element.has_value) element.value_encoding = encoding;
    element.has_value = true;
    return true;
}

bool add_comment(XmlElement& element, const char* text) {
    OwnedText* const comments = element.comments ? element.comments : new_comments();
    if (!comments) return out_of_memory();
    if (!append_text(*comments, text, text_length(text, -1), "XML comments")) {
        if (!element.comments) host_free(comments, ELEMENTS_SOURCE, __LINE__, 0);
        return out_of_memory();
    }
    element.comments = comments;
    return true;
}

void clear_comments(XmlElement& element) {
    if (!element.comments) return;
    free_text(*element.comments);
    host_free(element.comments, ELEMENTS_SOURCE, __LINE__, 0);
    element.comments = nullptr;
}

const char* xml_element_value(std::uint32_t element, std::uint64_t* length) {
    const XmlElement* const found = element_with_value(element);
    if (!found) return nullptr;
    if (length) *length = found->value.length;
    return text_of(found->value);
}

std::int32_t xml_value_encoding(std::uint32_t element) {
    const XmlElement* const found = element_with_value(element);
    return found ? found->value_encoding : -1;
}

std::int32_t xml_set_element_value(std::uint32_t element, const char* text, std::int64_t length,
                                   std::int32_t encoding) {
    XmlElement* const found = lookup_element(element);
    if (!found) return 0;
    const std::size_t n = text_length(text, length);
    if (found->has_value && text == text_of(found->value)) {
        found->value_encoding = encoding;
        if (found->value.length < n) return 0;
        shorten_text(found->value, static_cast<std::uint32_t>(n));
        return 1;
    }
    if (!replace_text(found->value, text, n, VALUE_DESCRIPTION)) {
        out_of_memory();
        return 0;
    }
    found->has_value = true;
    found->value_encoding = encoding;
    return 1;
}

std::int32_t xml_append_element_value(std::uint32_t element, const char* text, std::int64_t length,
                                      std::int32_t encoding) {
    XmlElement* const found = lookup_element(element);
    return found && append_value(*found, text, length, encoding) ? 1 : 0;
}

std::int32_t xml_add_comment(std::uint32_t element, const char* text) {
    XmlElement* const found = lookup_element(element);
    return found && add_comment(*found, text) ? 1 : 0;
}

void xml_clear_comments(std::uint32_t element) {
    if (XmlElement* const found = lookup_element(element)) clear_comments(*found);
}

const char* xml_element_comments(std::uint32_t element, std::uint64_t* length) {
    if (length) *length = 0;
    const XmlElement* const found = lookup_element(element);
    if (!found || !found->comments) return nullptr;
    if (length) *length = found->comments->length;
    return text_of(*found->comments);
}
