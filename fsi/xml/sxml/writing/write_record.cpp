#include <cstdint>

#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/group_path.h"
#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/settings.h"
#include "fsi/xml/sxml/writing/field_output.h"
#include "fsi/xml/sxml/writing/planned_record.h"
#include "fsi/xml/sxml/xml_file.h"
#include "host/errors.h"
#include "host/trace.h"

namespace {

// Steps over the children that lie beyond the end of the record.
std::int32_t next_child_in_record(const RecordWriter& writer, std::int32_t child) {
    while (child > 0) {
        if (extent_of(writer.xfd.items[child]) <= writer.record_length) break;
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
    const bool has_data = !is_group(item) && write_field(writer, written);
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

// The plan by which the record may be written; null when it has to be walked.
const LayoutPlan* plan_for(const XmlFile& file, std::int32_t layout, std::uint32_t length) {
    if (host_trace_on != 0) return nullptr;
    const LayoutPlan* const plan = file.write_plan->of_layout(layout);
    if (plan == nullptr || length < plan->least_length) return nullptr;
    if (file.handler != nullptr && file.handler->moves_items != 0) return nullptr;
    return settings::ignore_empty_data() ? nullptr : plan;
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
    const std::int32_t layout = layout_to_write(*file, record);
    if (const LayoutPlan* const plan = plan_for(*file, layout, length)) {
        write_planned(writer, *plan);
    } else {
        const bool has_data = write_xml_piece(writer, layout);
        if (!has_data && settings::ignore_empty_data()) writer.output.go_back(start);
    }
    writer.output.flush();
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_ENTRIES, "Leaving");
    return 1;
}
