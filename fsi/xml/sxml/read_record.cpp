#include <algorithm>
#include <cstring>
#include <limits>

#include "fsi/xml/sxml/array_signature.h"
#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/find_element.h"
#include "fsi/xml/sxml/host_functions.h"
#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/settings.h"
#include "fsi/xml/sxml/xml_file.h"
#include "fsi/xml/xml_api.h"
#include "host/encoding.h"
#include "host/errors.h"
#include "host/trace.h"

namespace {

// Above this trace level each record is written to standard error.
constexpr int DUMP_ABOVE = 10;

std::int32_t leave_without_data(const char* why) {
    if (host_trace_on != 0) host_trace(-1, 2, "%s", why);
    return 0;
}

// The record that a description describes is as long as its items say; what no record can hold is
// not filled.
bool lies_in_record(const XfdItem& field) {
    return field.offset >= 0 && field.data.length >= 0 &&
           field.offset < std::numeric_limits<std::int32_t>::max() - field.data.length;
}

void mark_moved(std::uint32_t element) {
    auto* const entry = static_cast<XmlHashEntry*>(xml_get_user_data(element));
    if (entry != nullptr) entry->used |= 1;
}

void move_number(XfdItem& field, char* target, const char* text, std::uint64_t length) {
    XfdDataDesc source = field.data;
    source.address = const_cast<char*>(text);
    source.length = static_cast<std::int32_t>(length);
    source.type = 0;
    source.digits = static_cast<std::int8_t>(length);
    field.data.address = target;
    host_functions::convert()(&field.data, &source, 1);
}

void move_characters(const XfdItem& field, char* target, const char* text, std::uint64_t length) {
    const auto size = static_cast<std::size_t>(field.data.length);
    const std::size_t copied = std::min<std::size_t>(length, size);
    std::memcpy(target, text, copied);
    std::memset(target + copied, ' ', size - copied);
}

// Fills the field at `index` from its element. Result: where the field ends in the record, or 0
// when it was left as it is.
std::int32_t read_xml_data(const XmlFile& file, std::int32_t index, char* record) {
    XfdItem& field = file.xfd->items[index];
    if (host_trace_on != 0) host_trace(1, 2, "read_xml_data %d (%s)", index, field.name);
    const std::uint32_t element = find_element(file, index);
    std::uint64_t length = 0;
    const char* const text = element != 0 ? xml_element_value(element, &length) : nullptr;
    if (text == nullptr || !lies_in_record(field)) return leave_without_data("Leaving, no data");
    if (settings::exact_table_match() && !same_array_signature(element, field)) {
        return leave_without_data("Leaving, no data (bad array)");
    }
    mark_moved(element);
    if (host_trace_on != 0) host_trace(0, 10, "%s", text);
    char* const target = record + field.offset;
    if (is_numeric_type(field.data.type)) {
        move_number(field, target, text, length);
    } else {
        move_characters(field, target, text, length);
    }
    if (host_trace_on != 0) host_trace(-1, 2, "Leaving");
    return field.offset + field.data.length;
}

// Fills the fields of every record, then those of each condition that holds on the record as filled
// so far. Result: where the last of the fields that received data ends.
std::int32_t fill_record(const XmlFile& file, char* record) {
    const InputItems& items = *file.input_items;
    std::int32_t best = 0;
    std::int32_t at = 0;
    for (int number = 0; number <= file.xfd->condition_count; ++number) {
        if (number > 0) host_functions::test_condition()(file.xfd, number, record);
        const bool holds = number == 0 || condition_holds(*file.xfd, number);
        for (; at < items.field_count; ++at) {
            const std::int32_t field = items.fields[at];
            if (file.xfd->items[field].condition != number) break;
            if (holds) best = std::max(best, read_xml_data(file, field, record));
        }
    }
    return best;
}

void dump_record(const XmlFile& file) {
    host_trace_printf(" dump_sxml_element\n");
    xml_write_element(host_standard_error(), HOST_ENCODING_NONE, xml_parser_current(file.parser),
                      0);
}

}  // namespace

int xml_sread(XmlFile* file, void* record) {
    *host_file_error() = HOST_FILE_OK;
    if (file->parser == 0) {
        *host_file_error() = HOST_FILE_UNSUPPORTED;
        return 0;
    }
    if (host_trace_on != 0) host_trace(1, 1, "xml_sread");
    if (SxmlParser_parse_record(file->parser) == 0) {
        if (host_trace_on != 0) host_trace(-1, 1, "Leaving, SxmlParser_parse_record");
        return 0;
    }
    if (host_trace_on > DUMP_ABOVE) dump_record(*file);
    forget_record(file->input_items->record_index);
    const std::int32_t best = fill_record(*file, static_cast<char*>(record));
    // Where the document ends inside a record, the innermost open element is not the document
    // element but one of those that go.
    xml_free_element(xml_first_child(xml_parser_root(file->parser)));
    if (host_trace_on != 0) host_trace(-1, 1, "Leaving, %d", best + 1);
    return best + 1;
}
