#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/group_path.h"
#include "fsi/xml/sxml/host_functions.h"
#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/record_output.h"
#include "fsi/xml/sxml/settings.h"
#include "fsi/xml/sxml/xml_file.h"
#include "host/errors.h"
#include "host/trace.h"

namespace {

// Holds the text of one numeric field, or a run of hexadecimal text, while it is made.
char field_text[512];

// The record being written.
struct RecordWriter {
    Xfd& xfd;
    const ItemTags& tags;
    const char* record;
    std::uint32_t record_length;
    const HostRecordHandler* text_giver;  // null: texts are as in the record
    RecordOutput output;
};

// The part of a field that lies inside the record, whatever the description says.
std::string_view field_bytes(const RecordWriter& writer, const XfdItem& field) {
    if (field.offset < 0 || field.data.length <= 0) return {};
    const auto offset = static_cast<std::uint32_t>(field.offset);
    if (offset >= writer.record_length) return {};
    const auto length = static_cast<std::uint32_t>(field.data.length);
    return {writer.record + offset, std::min(length, writer.record_length - offset)};
}

bool write_binary(RecordWriter& writer, const XfdItem& field) {
    if (host_trace_on != 0) host_trace(0, HOST_TRACE_DATA, "Writing binary data");
    constexpr char DIGITS[] = "0123456789ABCDEF";
    constexpr std::size_t RUN = 504;
    const std::string_view bytes = field_bytes(writer, field);
    std::size_t used = 0;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        field_text[used++] = DIGITS[byte >> 4];
        field_text[used++] = DIGITS[byte & 0xF];
        if (used == RUN) {
            writer.output.write({field_text, used});
            used = 0;
        }
    }
    writer.output.write({field_text, used});
    return !bytes.empty();
}

std::size_t numeric_text_length(const XfdDataDesc& data) {
    const int length = data.digits + 1 + (data.scale < 0 ? 1 : 0);
    return static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(sizeof field_text) - 1));
}

// Has the host convert a number. The text is made in the shared buffer.
std::string_view convert_number(RecordWriter& writer, XfdItem& field, std::string_view bytes) {
    const std::size_t length = numeric_text_length(field.data);
    std::memset(field_text, ' ', length);
    XfdDataDesc text = {};
    text.address = field_text;
    text.length = static_cast<std::int32_t>(length);
    text.digits = field.data.digits;
    text.scale = field.data.scale;
    field.data.address = const_cast<char*>(bytes.data());
    host_functions::convert()(&text, &field.data, 1);

    std::size_t end = strnlen(field_text, length);
    const XfdConventions* const conventions = writer.xfd.conventions;
    if (conventions != nullptr && conventions->decimal_point != '.') {
        const auto point = static_cast<char>(conventions->decimal_point);
        std::replace(field_text, field_text + end, point, '.');
    }
    while (end > 1 && field_text[end - 1] == ' ') --end;
    return {field_text, end};
}

// A host may give other texts than numbers ("NaN", say): they are no zero.
bool is_zero(std::string_view text) {
    return text.find_first_not_of("0+-. ") == text.npos;
}

// A number that does not lie in the record whole has no text.
bool write_number(RecordWriter& writer, XfdItem& field) {
    if (host_trace_on != 0) host_trace(0, HOST_TRACE_DATA, "Writing numeric data");
    const std::string_view bytes = field_bytes(writer, field);
    if (bytes.empty() || bytes.size() != static_cast<std::size_t>(field.data.length)) return false;
    const std::string_view text = convert_number(writer, field, bytes);
    if (is_zero(text) && settings::ignore_empty_data()) return false;
    writer.output.write(text);
    return true;
}

std::int32_t text_encoding(const Xfd& xfd, int type) {
    if (type >= 24 && type <= 29) return HOST_ENCODING_NATIONAL;
    if (type >= 40 && type <= 44 && xfd.conventions != nullptr) {
        return xfd.conventions->field_encoding;
    }
    return HOST_ENCODING_NONE;
}

// A text that the host gives in place of that in the record.
std::string_view given_text(const RecordWriter& writer, const XfdItem& field) {
    std::size_t length = 0;
    const auto index = static_cast<std::int32_t>(&field - writer.xfd.items);
    const char* const text = writer.text_giver->text(writer.text_giver->context, index, &length);
    return {text, length};
}

bool write_characters(RecordWriter& writer, const XfdItem& field) {
    if (host_trace_on != 0) host_trace(0, HOST_TRACE_DATA, "Writing character data");
    const std::string_view bytes =
        writer.text_giver == nullptr ? field_bytes(writer, field) : given_text(writer, field);
    const XmlTextSpan span = {bytes.data(), bytes.size(),
                              text_encoding(writer.xfd, field.data.type)};
    return writer.output.write_text(span);
}

// Writes a field's value. Result: whether there was any text to write.
bool write_xml_data(RecordWriter& writer, std::int32_t index) {
    XfdItem& field = writer.xfd.items[index];
    if (host_trace_on != 0) host_trace(1, HOST_TRACE_DATA, "write_xml_data");
    if (field.condition != 0 && !condition_holds(writer.xfd, field.condition)) {
        if (host_trace_on != 0) host_trace(-1, HOST_TRACE_DATA, "Leaving, condition failed");
        return false;
    }
    bool written = false;
    if (field.format == XFD_FORMAT_BINARY) {
        written = write_binary(writer, field);
    } else if (is_numeric_type(field.data.type)) {
        written = write_number(writer, field);
    } else {
        written = write_characters(writer, field);
    }
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_DATA, "Leaving");
    return written;
}

// The item to write for `index`: a group that has variants is written as the item of the first
// condition that starts at the same place. When that item's own element is still open, writing it
// again would never come to an end, and the group stands for itself.
std::int32_t written_item(const Xfd& xfd, std::int32_t index, const GroupPath& path) {
    const XfdItem& item = xfd.items[index];
    if (!is_group(item) || (xfd.flags & XFD_SEVERAL_LAYOUTS) == 0 || item.level < 2) return index;
    for (int i = 0; i < xfd.condition_count; ++i) {
        const std::int32_t variant = xfd.conditions[i].item;
        if (variant < 0 || variant >= xfd.item_count) continue;
        if (xfd.items[variant].offset == item.offset) {
            return path.contains(variant) ? index : variant;
        }
    }
    return index;
}

// Steps over the children that lie beyond the end of the record.
std::int32_t next_child_in_record(const RecordWriter& writer, std::int32_t child) {
    while (child > 0) {
        const XfdItem& item = writer.xfd.items[child];
        std::uint32_t extent = static_cast<std::uint32_t>(item.offset);
        if (!is_group(item)) extent += static_cast<std::uint32_t>(item.data.length);
        if (extent <= writer.record_length) break;
        child = next_sibling_item(writer.xfd, child, true);
    }
    return child;
}

// Writes an item's end tag, and drops the element when it is empty and empty ones are not wanted.
void finish_piece(RecordWriter& writer, std::int32_t item, std::uint32_t start, bool has_data) {
    writer.output.write_tag(writer.tags.end_tag(item));
    if (!has_data && settings::ignore_empty_data()) writer.output.go_back(start);
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_DATA, "Leaving");
}

// Starts an item's element. A field is written whole; a group is left open, innermost on the path.
// Result: whether a field was written that holds data.
bool start_piece(RecordWriter& writer, GroupPath& path, std::int32_t index) {
    RecordOutput& output = writer.output;
    const std::uint32_t start = output.position();
    if (host_trace_on != 0) {
        host_trace(1, HOST_TRACE_DATA, "write_xml_piece, %d, %s", index,
                   writer.xfd.items[index].name);
    }
    const std::int32_t written = written_item(writer.xfd, index, path);
    const XfdItem& item = writer.xfd.items[written];
    output.write_indent(item.level);
    output.write_tag(writer.tags.start_tag(written));
    if (is_group(item) && !path.full()) {
        output.write_line_end();
        path.open({written, first_child_item(writer.xfd, written), start, false});
        return false;
    }
    const bool has_data = !is_group(item) && write_xml_data(writer, written);
    finish_piece(writer, written, start, has_data);
    return has_data;
}

// Closes the innermost group. Result: whether its element holds data.
bool close_group(RecordWriter& writer, GroupPath& path) {
    const OpenGroup group = path.close();
    writer.output.write_indent(writer.xfd.items[group.item].level);
    finish_piece(writer, group.item, group.start, group.has_data);
    return group.has_data;
}

// Writes the item at `index` and, for a group, everything below it. Result: whether the element
// holds data.
bool write_xml_piece(RecordWriter& writer, std::int32_t index) {
    GroupPath path;
    WalkBudget budget(writer.xfd.item_count);
    bool has_data = start_piece(writer, path, index);
    while (!path.empty()) {
        OpenGroup& group = path.innermost();
        group.has_data = group.has_data || has_data;
        const std::int32_t child = next_child_in_record(writer, group.child);
        if (child > 0 && budget.spend()) {
            group.child = next_sibling_item(writer.xfd, child, true);
            has_data = start_piece(writer, path, child);
        } else {
            has_data = close_group(writer, path);
        }
    }
    return has_data;
}

// The record layout to write: as the host says, or by the conditions.
std::int32_t layout_to_write(const XmlFile& file, const void* record) {
    if (file.handler != nullptr) return file.handler->choose_layout(file.handler->context);
    test_all_conditions(*file.xfd, record);
    return choose_layout(*file.xfd);
}

}  // namespace

int xml_swrite(XmlFile* file, const void* record, std::uint32_t length) {
    if (file->out == nullptr) {
        *host_file_error() = HOST_FILE_UNSUPPORTED;
        return 0;
    }
    const HostRecordHandler* const handler = file->handler;
    const bool gives_texts = handler != nullptr && handler->text != nullptr;
    RecordWriter writer = {*file->xfd,
                           *file->item_tags,
                           static_cast<const char*>(record),
                           length,
                           gives_texts ? handler : nullptr,
                           RecordOutput(file->out, file->out_encoding)};
    const std::uint32_t start = writer.output.position();
    *host_file_error() = HOST_FILE_OK;
    if (host_trace_on != 0)
        host_trace(1, HOST_TRACE_ENTRIES, "xml_swrite, %d", static_cast<int>(length));
    const bool has_data = write_xml_piece(writer, layout_to_write(*file, record));
    if (!has_data && settings::ignore_empty_data()) writer.output.go_back(start);
    writer.output.flush();
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_ENTRIES, "Leaving");
    return 1;
}
