// Printing a tree to the trace, for people to read.
#include <algorithm>

#include "fsi/xml/elements/element.h"
#include "host/trace.h"

namespace {

constexpr std::uint64_t ATTRIBUTE_INDENT = 4;

int field_width(std::uint64_t indent) {
    return static_cast<int>(std::min<std::uint64_t>(indent, XML_INDENT_LIMIT));
}

void dump_occurrence_numbers(std::uint32_t element) {
    const std::int32_t last = xml_last_index(element);
    for (std::int32_t i = 0; i <= last; ++i) {
        host_trace_printf("%c %d", i == 0 ? '(' : ',',
                          static_cast<int>(xml_element_index(element, i)));
    }
    if (last >= 0) host_trace_printf(")");
}

void dump_attributes(std::uint32_t element, std::uint64_t indent) {
    const std::uint32_t count = xml_attribute_count(element);
    for (std::uint32_t i = 0; i < count; ++i) {
        host_trace_printf("\n%*s%s = %s", field_width(indent + ATTRIBUTE_INDENT), " ",
                          xml_attribute_name(element, i), xml_attribute_value(element, i));
    }
}

void dump_element(std::uint32_t element, std::uint64_t indent) {
    if (const char* const name = xml_element_name(element)) {
        host_trace_printf("%*s%s", field_width(indent), " ", name);
    }
    dump_occurrence_numbers(element);
    std::uint64_t length = 0;
    const char* const value = xml_element_value(element, &length);
    if (value && length > 0) host_trace_printf(" = %s", value);
    dump_attributes(element, indent);
    host_trace_printf("\n");
}

}  // namespace

void xml_dump_children(std::uint32_t element, std::uint32_t indent) {
    const std::uint32_t top = element;
    std::uint64_t depth = indent;
    std::uint32_t child = xml_first_child(top);
    while (child != 0) {
        dump_element(child, depth);
        if (const std::uint32_t below = xml_first_child(child)) {
            child = below;
            ++depth;
            continue;
        }
        std::uint32_t next = xml_next_sibling(child);
        while (next == 0) {
            child = handle_of(lookup_element(child)->parent);
            --depth;
            if (child == top) return;
            next = xml_next_sibling(child);
        }
        child = next;
    }
}
