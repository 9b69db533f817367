#include "fsi/xml/sxml/writing/dtd.h"

#include "fsi/xml/sxml/group_path.h"
#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/writing/declared_names.h"
#include "fsi/xml/sxml/writing/xml_output.h"

namespace {

// Calls `visit` with the index of each further record-level item, as long as it gives true.
template <typename Visit>
bool for_each_further_layout(const Xfd& xfd, Visit visit) {
    if ((xfd.flags & XFD_SEVERAL_LAYOUTS) == 0) return true;
    for (std::int32_t i = 1; i < layout_scan_count(xfd); ++i) {
        if (xfd.items[i].level == 1 && !visit(i)) return false;
    }
    return true;
}

// The document element holds any number of records, of any layout.
bool write_document_element(const XmlOutput& output, Xfd& xfd) {
    write_pieces(output, {"<!ELEMENT ", xfd.name, " (", xfd.items[0].name});
    if (!declared_names::add(xfd.items[0])) return false;
    const bool complete = for_each_further_layout(xfd, [&](std::int32_t index) {
        write_pieces(output, {" | ", xfd.items[index].name});
        return declared_names::add(xfd.items[index]);
    });
    write_pieces(output, {")*>\n"});
    return complete;
}

// A group is declared each time it is met. One that has no items below it holds nothing but the
// white space that is written for it.
void write_group_declaration(const XmlOutput& output, const Xfd& xfd, std::int32_t index) {
    const XfdItem& group = xfd.items[index];
    write_indent(output, group.level);
    write_pieces(output, {"<!ELEMENT ", group.name, " "});
    std::int32_t child = first_child_item(xfd, index);
    if (child < 0) write_pieces(output, {"(#PCDATA"});
    for (const char* separator = "("; child > 0; separator = ", ") {
        const XfdItem& item = xfd.items[child];
        const bool is_array = item.dimensions() != group.dimensions();
        write_pieces(output, {separator, item.name, is_array ? "*" : ""});
        child = next_sibling_item(xfd, child, false);
    }
    write_pieces(output, {")>\n"});
}

// A field is declared once, however many items have its name.
bool write_field_declaration(const XmlOutput& output, XfdItem& field) {
    field.key = field.name;
    if (declared_names::contains(field.name)) return true;
    write_indent(output, field.level);
    write_pieces(output, {"<!ELEMENT ", field.name, " (#PCDATA)>\n"});
    return declared_names::add(field);
}

// Declares one item and, for a group, all items below it.
bool write_dtd_element(const XmlOutput& output, Xfd& xfd, std::int32_t index, WalkBudget& budget) {
    GroupPath path;
    for (std::int32_t item = index; item >= 0 && budget.spend();) {
        if (is_group(xfd.items[item])) {
            write_group_declaration(output, xfd, item);
            path.open({item, first_child_item(xfd, item), 0, false});
        } else if (!write_field_declaration(output, xfd.items[item])) {
            return false;
        }
        while (!path.empty() && path.innermost().child < 0) path.close();
        if (path.empty()) break;
        item = path.innermost().child;
        path.innermost().child = next_sibling_item(xfd, item, false);
    }
    return true;
}

bool write_declarations(const XmlOutput& output, Xfd& xfd) {
    write_pieces(output, {"<!DOCTYPE ", xfd.name, " [\n"});
    if (!write_document_element(output, xfd)) return false;
    WalkBudget budget(xfd.item_count);
    const auto declare = [&](std::int32_t index) {
        return write_dtd_element(output, xfd, index, budget);
    };
    const bool complete = declare(0) && for_each_further_layout(xfd, declare);
    write_pieces(output, {"]>\n"});
    return complete;
}

}  // namespace

bool write_xml_dtd(const XmlFile& file) {
    if (!declared_names::open()) return false;
    const bool complete = write_declarations({file.out, file.out_encoding}, *file.xfd);
    declared_names::close();
    return complete;
}
