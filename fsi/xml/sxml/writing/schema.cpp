#include "fsi/xml/sxml/writing/schema.h"

#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/plugin.h"
#include "fsi/xml/sxml/settings.h"
#include "fsi/xml/sxml/writing/declared_names.h"
#include "fsi/xml/sxml/writing/xml_output.h"
#include "host/encoding.h"
#include "host/trace.h"

namespace {

// Indentation of a global declaration; what is inside it stands deeper by a fixed step each.
constexpr int INDENT = 2;
constexpr int STEP = 2;

struct SchemaEncoding {
    const char* name;
    std::int32_t code;
};

constexpr SchemaEncoding UTF8 = {"UTF-8", HOST_ENCODING_UTF8};

SchemaEncoding choose_encoding() {
    const char* const name = settings::encoding();
    if (encoding_support == 0) return {name != nullptr ? name : UTF8.name, HOST_ENCODING_NONE};
    if (name == nullptr || *name == '\0') return UTF8;
    const std::int32_t code = host_encoding_code(name);
    return code != HOST_ENCODING_UNKNOWN ? SchemaEncoding{name, code} : UTF8;
}

void write_line(const XmlOutput& output, int indent, std::initializer_list<const char*> pieces) {
    write_indent(output, indent);
    write_pieces(output, pieces);
}

void write_annotation(const XmlOutput& output) {
    write_pieces(output, {"  <xs:annotation>\n", "    <xs:documentation>\n"});
    const char* const text = settings::schema_doc();
    if (text != nullptr) write_pieces(output, {"      ", text, "\n"});
    write_pieces(output, {"      Created by Tarnel(tm) version ", VERSION_LABEL, " on ",
                          DateText().text(), "\n"});
    write_pieces(output, {"    </xs:documentation>\n", "  </xs:annotation>\n\n"});
}

void write_head(const XmlOutput& output, const Xfd& xfd, const char* encoding_name) {
    write_pieces(output, {"<?xml version=\"1.0\" encoding=\"", encoding_name, "\"?>\n"});
    write_pieces(output, {"<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">\n"});
    write_annotation(output);
    write_pieces(output, {"  <xs:element name=\"", xfd.name, "\">\n"});
    write_pieces(output, {"  <xs:complexType>\n", "    <xs:sequence>\n"});
    write_pieces(output,
                 {"      <xs:element maxOccurs=\"unbounded\" ref=\"", xfd.items[0].name, "\"/>\n"});
    write_pieces(output,
                 {"    </xs:sequence>\n", "    </xs:complexType>\n", "  </xs:element>\n\n"});
}

void write_child_reference(const XmlOutput& output, const XfdItem& group, const XfdItem& child,
                           int indent) {
    if (!is_first_of_innermost(child)) return;
    write_line(output, indent, {"<xs:element ref=\"", child.name, "\""});
    if (child.dimensions() > group.dimensions()) {
        const NumberText occurs(child.occurs_max[child.dimensions() - 1]);
        write_pieces(output, {" maxOccurs=\"", occurs.text(), "\""});
    }
    write_pieces(output, {"/>\n"});
}

// The first item below the group fixes the level of its children; an item above that level ends
// the group.
void write_child_references(const XmlOutput& output, const Xfd& xfd, std::int32_t index,
                            int indent) {
    const XfdItem& group = xfd.items[index];
    const std::int32_t first = first_child_item(xfd, index);
    for (std::int32_t child = first; child > 0; child = next_sibling_item(xfd, child, true)) {
        write_child_reference(output, group, xfd.items[child], indent);
    }
}

// Takes the item's name as declared from now on. Result: what to do with the item.
enum class Declaration { write, skip, no_memory };

Declaration start_declaration(XfdItem& item) {
    if (!is_first_of_innermost(item)) return Declaration::skip;
    item.key = item.name;
    if (declared_names::contains(item.name)) return Declaration::skip;
    return declared_names::add(item) ? Declaration::write : Declaration::no_memory;
}

void write_schema_group(const XmlOutput& output, const Xfd& xfd, std::int32_t index, int indent) {
    write_line(output, indent, {"<xs:element name=\"", xfd.items[index].name, "\">\n"});
    write_line(output, indent + STEP, {"<xs:complexType>\n"});
    write_line(output, indent + 2 * STEP, {"<xs:sequence>\n"});
    write_child_references(output, xfd, index, indent + 3 * STEP);
    write_pieces(output,
                 {"      </xs:sequence>\n", "    </xs:complexType>\n", "  </xs:element>\n\n"});
}

void write_facet(const XmlOutput& output, int indent, const char* facet, std::int32_t value) {
    write_line(output, indent, {"<xs:", facet, " value=\"", NumberText(value).text(), "\"/>\n"});
}

void write_restriction(const XmlOutput& output, const XfdDataDesc& data, int indent) {
    write_line(output, indent, {"<xs:restriction base=\"xs:"});
    if (!is_numeric_type(data.type)) {
        write_pieces(output, {"string\">\n"});
        write_facet(output, indent + STEP, "maxLength", data.length);
    } else if (data.scale == 0) {
        write_pieces(output, {"integer\">\n"});
        write_facet(output, indent + STEP, "totalDigits", data.digits);
    } else {
        write_pieces(output, {"decimal\">\n"});
        write_facet(output, indent + STEP, "totalDigits", data.digits);
        write_facet(output, indent + STEP, "fractionDigits", -data.scale);
    }
    write_line(output, indent, {"</xs:restriction>\n"});
}

void write_schema_field(const XmlOutput& output, const Xfd& xfd, std::int32_t index, int indent) {
    const XfdItem& field = xfd.items[index];
    write_line(output, indent, {"<xs:element name=\"", field.name, "\">\n"});
    write_line(output, indent + STEP, {"<xs:simpleType>\n"});
    write_restriction(output, field.data, indent + 2 * STEP);
    write_line(output, indent + STEP, {"</xs:simpleType>\n"});
    write_line(output, indent, {"</xs:element>\n\n"});
}

using WriteItem = void(const XmlOutput&, const Xfd&, std::int32_t, int);

// Declares all groups, or all fields, in their order.
bool write_items(const XmlOutput& output, Xfd& xfd, bool groups, WriteItem* write_item) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        if (is_group(xfd.items[i]) != groups) continue;
        const Declaration declaration = start_declaration(xfd.items[i]);
        if (declaration == Declaration::no_memory) return false;
        if (declaration == Declaration::write) write_item(output, xfd, i, INDENT);
    }
    return true;
}

bool write_schema(const XmlOutput& output, Xfd& xfd, const char* encoding_name) {
    write_head(output, xfd, encoding_name);
    if (!write_items(output, xfd, true, write_schema_group)) return false;
    if (!write_items(output, xfd, false, write_schema_field)) return false;
    write_pieces(output, {"</xs:schema>\n"});
    return true;
}

HostStream* open_schema_file() {
    const char* const name = settings::schema_name();
    return name != nullptr && *name != '\0' ? host_fopen(name, "wb", 0) : nullptr;
}

}  // namespace

SchemaResult write_xml_schema(const XmlFile& file) {
    HostStream* const stream = open_schema_file();
    if (stream == nullptr) {
        if (host_trace_on != 0) {
            host_trace(0, HOST_TRACE_ENTRIES, "No schema file given, or unable to open file");
        }
        return SchemaResult::no_file;
    }
    bool complete = false;
    if (declared_names::open()) {
        const SchemaEncoding encoding = choose_encoding();
        complete = write_schema({stream, encoding.code}, *file.xfd, encoding.name);
        declared_names::close();
    }
    host_fclose(stream);
    return complete ? SchemaResult::written : SchemaResult::no_memory;
}
