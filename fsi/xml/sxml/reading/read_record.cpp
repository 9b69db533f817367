#include <algorithm>
#include <climits>
#include <cstring>
#include <limits>

#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/records/record_handlers.h"
#include "fsi/xml/parsexml/parser_handle.h"
#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/host_functions.h"
#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/reading/array_signature.h"
#include "fsi/xml/sxml/reading/copy_record.h"
#include "fsi/xml/sxml/reading/find_element.h"
#include "fsi/xml/sxml/xml_file.h"
#include "host/encoding.h"
#include "host/errors.h"
#include "host/trace.h"
#include "sxml/xml_api.h"

namespace {

// Above this trace level each record is written to standard error.
constexpr int DUMP_ABOVE = 10;

std::int32_t leave_without_data(const char* why) {
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_DATA, "%s", why);
    return 0;
}

// The record that a description describes is as long as its items say; what no record can hold is
// not filled.
bool lies_in_record(const XfdItem& field) {
    return field.offset >= 0 && field.data.length >= 0 &&
           field.offset < std::numeric_limits<std::int32_t>::max() - field.data.length;
}

// False when the element has no text. Without memory for it the parser is stopped.
bool find_text(const XmlFile& file, std::uint32_t element, const char** text, std::size_t* length) {
    InputItems& items = *file.input_items;
    const RecordText result =
        get_record_text(items.tree, element, items.text_encoding, text, length);
    if (result == RecordText::NO_MEMORY) stop_out_of_memory(*lookup_parser(file.parser));
    return result == RecordText::FOUND;
}

// While nothing is traced, the setting is asked for where it makes a difference only.
bool fits(InputItems& input, std::uint32_t element, const XfdItem& field) {
    RecordTree& tree = input.tree;
    if (host_trace_on != 0 && !matches_exactly(tree)) return true;
    const RecordElement& found = tree.elements[element];
    const bool is_settled = !matches_by_place(tree) || !tree.names.names[found.name].is_ambiguous;
    const bool is_simple = field.dimensions() == 0 && is_settled && host_trace_on == 0;
    if (is_simple && !tree.has_numbers) return true;
    number_elements(tree);
    if (is_simple && found.number_count == 0) return true;
    if (same_array_signature(input, element, field)) return true;
    return host_trace_on == 0 && !matches_exactly(tree);
}

// The element of the field at `index`, when that is known to fit from another record of the same
// elements; else 0.
std::uint32_t fitting_element(const InputItems& input, std::int32_t index) {
    const RecordTree& tree = input.tree;
    const KnownElement& known = input.known[index];
    const bool is_known = known.fits && known.record == tree.record && host_trace_on == 0 &&
                          tree.table_match != nullptr && *tree.table_match == known.match;
    return is_known && !tree.elements[known.element].is_moved ? known.element : 0;
}

// Whether an element fits depends on nothing but the links of the elements and how tables are
// matched.
void note_fitting(InputItems& input, std::int32_t index, std::uint32_t element) {
    const RecordTree& tree = input.tree;
    KnownElement& known = input.known[index];
    if (known.record != tree.record || known.element != element) return;
    if (tree.table_match == nullptr || host_trace_on != 0) return;
    known.fits = true;
    known.match = static_cast<std::int8_t>(*tree.table_match);
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

void note_missing(const XmlFile& file, std::int32_t index) {
    if (file.handler == nullptr || file.handler->missing == nullptr) return;
    file.handler->missing(file.handler->context, index);
}

// Moves the text of its element into the field at `index`. Result: where the field ends in the
// record.
std::int32_t move_text(const XmlFile& file, std::int32_t index, char* record, const char* text,
                       std::size_t length) {
    XfdItem& field = file.xfd->items[index];
    char* const target = record + field.offset;
    if (file.handler != nullptr) {
        file.handler->store(file.handler->context, index, text, length);
    } else if (is_numeric_type(field.data.type)) {
        move_number(field, target, text, length);
    } else {
        move_characters(field, target, text, length);
    }
    return field.offset + field.data.length;
}

// Fills the field at `index` from an element that is looked for. Result: where the field ends in
// the record, or 0 when it was left as it is.
[[gnu::noinline]] std::int32_t search_xml_data(const XmlFile& file, std::int32_t index,
                                               char* record) {
    const XfdItem& field = file.xfd->items[index];
    if (host_trace_on != 0)
        host_trace(1, HOST_TRACE_DATA, "read_xml_data %d (%s)", index, field.name);
    RecordTree& tree = file.input_items->tree;
    const std::uint32_t element = find_element(file, index);
    if (element == 0) note_missing(file, index);
    const char* text = nullptr;
    std::size_t length = 0;
    if (element == 0 || !find_text(file, element, &text, &length) || !lies_in_record(field)) {
        return leave_without_data("Leaving, no data");
    }
    if (!fits(*file.input_items, element, field)) {
        note_missing(file, index);
        return leave_without_data("Leaving, no data (bad array)");
    }
    note_fitting(*file.input_items, index, element);
    note_moved(tree, element);
    if (host_trace_on != 0) {
        host_trace(0, HOST_TRACE_MODELS, "%.*s",
                   static_cast<int>(std::min<std::size_t>(length, INT_MAX)), text);
    }
    const std::int32_t end = move_text(file, index, record, text, length);
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_DATA, "Leaving");
    return end;
}

// The same, quickly where the element is known.
std::int32_t read_xml_data(const XmlFile& file, std::int32_t index, char* record) {
    const std::uint32_t element = fitting_element(*file.input_items, index);
    if (element == 0) return search_xml_data(file, index, record);
    const char* text = nullptr;
    std::size_t length = 0;
    const bool has_text = find_text(file, element, &text, &length);
    if (!has_text || !lies_in_record(file.xfd->items[index])) return 0;
    note_moved(file.input_items->tree, element);
    return move_text(file, index, record, text, length);
}

void test_condition(const XmlFile& file, int number, const void* record) {
    if (file.handler != nullptr) {
        file.handler->test_condition(file.handler->context, number);
    } else {
        host_functions::test_condition()(file.xfd, number, record);
    }
}

// Fills the fields of every record, then those of each condition that holds on the record as filled
// so far. Result: where the last of the fields that received data ends.
std::int32_t fill_record(const XmlFile& file, char* record) {
    const InputItems& items = *file.input_items;
    std::int32_t best = 0;
    std::int32_t at = 0;
    for (int number = 0; number <= file.xfd->condition_count; ++number) {
        if (number > 0) test_condition(file, number, record);
        const bool holds = number == 0 || condition_holds(*file.xfd, number);
        for (; at < items.field_count; ++at) {
            const std::int32_t field = items.fields[at];
            if (file.xfd->items[field].condition != number) break;
            if (holds) best = std::max(best, read_xml_data(file, field, record));
        }
    }
    return best;
}

void tell_beginning(const XmlFile& file) {
    const RecordTree& tree = file.input_items->tree;
    if (file.handler == nullptr || file.handler->begin_record == nullptr) return;
    if (tree.last_element == 0) return;
    file.handler->begin_record(file.handler->context, name_text(tree.names, tree.elements[1].name));
}

// Texts of white space are no data.
bool has_unused_text(const RecordTree& tree, std::uint32_t number) {
    const RecordElement& element = tree.elements[number];
    if (element.has_other_text || element.is_moved) return element.has_other_text;
    if (!element.has_text) return false;
    if (!is_blank(tree.text + element.text_start, element.text_length)) return true;
    for (std::uint32_t at = element.first_piece; at != 0; at = tree.pieces[at].next) {
        if (!is_blank(tree.text + tree.pieces[at].start, tree.pieces[at].length)) return true;
    }
    return false;
}

// Tells the host of the record's elements when one of them holds something that went into no field.
void report_unused(const XmlFile& file) {
    RecordTree& tree = file.input_items->tree;
    if (!tree.notes_unused || (tree.texts_left == 0 && !tree.has_unused_parts)) return;
    for (std::uint32_t number = 1; number <= tree.last_element; ++number) {
        const RecordElement& element = tree.elements[number];
        const HostRecordElement told = {number, element.parent, name_text(tree.names, element.name),
                                        has_unused_text(tree, number), element.has_attributes};
        file.handler->unused(file.handler->context, &told);
    }
}

void dump_record(const XmlFile& file) {
    host_trace_printf(" dump_sxml_element\n");
    xml_write_element(host_standard_error(), HOST_ENCODING_NONE, xml_parser_current(file.parser),
                      0);
}

// Parses the next record into the tree. While anything is traced, the record is made of elements as
// the parser API makes them, and copied. False when there is no next record.
bool parse_record(const XmlFile& file) {
    RecordTree& tree = file.input_items->tree;
    clear_record(tree);
    forget_record(file.input_items->record_index);
    const bool traced = host_trace_on != 0;
    // Handles are the whole process's: somebody may have released this one.
    XmlParserInfo* const info = lookup_parser_info(file.parser);
    if (info == nullptr || info->parser == nullptr) return false;
    XmlParser* const parser = info->parser;
    deliver_records(*parser, traced ? nullptr : &tree);
    if (!parse_next_record(*info)) return false;
    file.input_items->text_encoding = text_encoding(*parser);
    if (file.handler != nullptr) {
        file.handler->text_encoding = text_encoding(*parser);
        file.handler->parsed_bytes =
            current_byte_index(*parser) + static_cast<std::int64_t>(parser->bytes_passed);
    }
    if (host_trace_on > DUMP_ABOVE) dump_record(file);
    if (!traced) {
        complete_record(tree);
        return true;
    }
    // Where the document ends inside a record, the innermost open element is not the document
    // element but one of those that go.
    const std::uint32_t record = xml_first_child(xml_parser_root(file.parser));
    const bool copied = record == 0 || copy_record(tree, record);
    complete_record(tree);
    xml_free_element(record);
    if (!copied) stop_out_of_memory(*parser);
    return copied;
}

}  // namespace

int xml_sread(XmlFile* file, void* record) {
    *host_file_error() = HOST_FILE_OK;
    if (file->parser == 0) {
        *host_file_error() = HOST_FILE_UNSUPPORTED;
        return 0;
    }
    if (host_trace_on != 0) host_trace(1, HOST_TRACE_ENTRIES, "xml_sread");
    if (!parse_record(*file)) {
        if (host_trace_on != 0)
            host_trace(-1, HOST_TRACE_ENTRIES, "Leaving, SxmlParser_parse_record");
        return 0;
    }
    tell_beginning(*file);
    const std::int32_t best = fill_record(*file, static_cast<char*>(record));
    report_unused(*file);
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_ENTRIES, "Leaving, %d", best + 1);
    return best + 1;
}
