#include "fsi/xml/sxml/reading/copy_record.h"

#include "sxml/xml_api.h"

namespace {

bool copy_element(RecordTree& tree, std::uint32_t element) {
    const std::uint32_t name = number_of_name(tree.names, xml_element_name(element));
    if (name == 0 || !start_record_element(tree, name)) return false;
    const bool notes_all = tree.notes_unused;
    const std::uint32_t attributes = notes_all ? xml_attribute_count(element) : 0;
    for (std::uint32_t i = 0; i < attributes; ++i) {
        note_attribute(tree, xml_attribute_name(element, i));
    }
    std::uint64_t length = 0;
    const bool is_wanted = tree.keeps_text || notes_all;
    const char* const text = is_wanted ? xml_element_value(element, &length) : nullptr;
    if (text == nullptr) return true;
    if (tree.keeps_text) return append_record_text(tree, text, length);
    note_lost_text(tree, text, length);
    return true;
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
