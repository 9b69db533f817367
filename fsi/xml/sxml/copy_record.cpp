#include "fsi/xml/sxml/copy_record.h"

#include "sxml/xml_api.h"

namespace {

bool copy_element(RecordTree& tree, std::uint32_t element) {
    const std::uint32_t name = number_of_name(tree.names, xml_element_name(element));
    if (name == 0 || !start_record_element(tree, name)) return false;
    std::uint64_t length = 0;
    const char* const text = tree.keeps_text ? xml_element_value(element, &length) : nullptr;
    return text == nullptr || append_record_text(tree, text, length);
}

}  // namespace

bool copy_record(RecordTree& tree, std::uint32_t record) {
    std::uint32_t element = record;
    for (;;) {
        if (!copy_element(tree, element)) return false;
        if (const std::uint32_t child = xml_first_child(element)) {
            element = child;
            continue;
        }
        for (;;) {
            end_record_element(tree);
            if (element == record) return true;
            if (const std::uint32_t next = xml_next_sibling(element)) {
                element = next;
                break;
            }
            element = xml_parent(element);
        }
    }
}
