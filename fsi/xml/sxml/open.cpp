#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/elements/text_output.h"
#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/host_functions.h"
#include "fsi/xml/sxml/optional_services.h"
#include "fsi/xml/sxml/plugin.h"
#include "fsi/xml/sxml/reading/open_input.h"
#include "fsi/xml/sxml/settings.h"
#include "fsi/xml/sxml/writing/dtd.h"
#include "fsi/xml/sxml/writing/schema.h"
#include "fsi/xml/sxml/writing/xml_output.h"
#include "fsi/xml/sxml/xml_file.h"
#include "host/encoding.h"
#include "host/errors.h"
#include "host/memory.h"
#include "host/trace.h"

namespace {

void trace_leaving(const char* text) {
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_ENTRIES, "%s", text);
}

constexpr std::string_view XML_SUFFIX = ".xml";

bool ends_with_xml_suffix(std::string_view name) {
    if (name.size() < XML_SUFFIX.size()) return false;
    name.remove_prefix(name.size() - XML_SUFFIX.size());
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (ascii_lower(name[i]) != XML_SUFFIX[i]) return false;
    }
    return true;
}

Xfd* parse_description(const char* name) {
    constexpr int FIRST = 14;
    constexpr int SECOND = 30;
    return host_functions::parse_xfd()(host_xfd_name(name), FIRST, SECOND);
}

Xfd* parse_description_without_suffix(const char* name) {
    char* const copy = host_strdup(name, SXML_SOURCE, __LINE__);
    if (copy == nullptr) {
        *host_file_error() = HOST_FILE_NO_MEMORY;
        return nullptr;
    }
    copy[std::strlen(copy) - XML_SUFFIX.size()] = '\0';
    Xfd* const xfd = parse_description(copy);
    host_free(copy, SXML_SOURCE, __LINE__, 0);
    return xfd;
}

bool ends_within(const char* name, std::size_t size) {
    return std::memchr(name, '\0', size) != nullptr;
}

// Everything that follows takes the names for NUL-terminated texts.
bool has_whole_names(const Xfd& xfd) {
    return ends_within(xfd.name, XFD_NAME_SIZE) &&
           std::all_of(xfd.items, xfd.items + xfd.item_count, [](const XfdItem& item) {
               return ends_within(item.name, XFD_ITEM_NAME_SIZE);
           });
}

// Stores the description of the file `name`. False when there is none, or none that can be used:
// one without items, or with a name that does not end within its place.
bool read_description(XmlFile& file, const char* name) {
    file.xfd = parse_description(name);
    if (file.xfd == nullptr && ends_with_xml_suffix(name)) {
        file.xfd = parse_description_without_suffix(name);
    }
    return file.xfd != nullptr && file.xfd->item_count > 0 && has_whole_names(*file.xfd);
}

// Chooses the output's encoding code. Result: the name for the XML declaration.
const char* choose_encoding(XmlFile& file) {
    const char* const name = settings::encoding();
    if (encoding_support == 0) {
        file.out_encoding = HOST_ENCODING_NONE;
        return name != nullptr ? name : "UTF-8";
    }
    if (name == nullptr || *name == '\0') {
        file.out_encoding = HOST_ENCODING_UTF8;
        return "UTF-8";
    }
    const std::int32_t code = host_encoding_code(name);
    file.out_encoding = code != HOST_ENCODING_UNKNOWN ? code : HOST_ENCODING_NONE;
    return name;
}

void write_prologue(const XmlOutput& output, const char* encoding_name) {
    write_pieces(output, {"<?xml version=\"1.0\" encoding=\"", encoding_name, "\"?>\n"});
    write_pieces(output, {"<!-- Created by Tarnel(tm) version ", VERSION_LABEL, " on ",
                          DateText().text(), " -->\n"});
    const char* const type = settings::stylesheet_type();
    const char* const href = settings::stylesheet_href();
    if (type != nullptr && href != nullptr) {
        write_pieces(output, {"<?xml-stylesheet type=\"", type, "\" href=\"", href, "\"?>"});
    }
}

// A file name may hold any character; as attribute text it needs escaping.
void write_escaped(const XmlOutput& output, std::string_view text) {
    const XmlTextSpan span = {text.data(), text.size(), HOST_ENCODING_NONE};
    xml_write_text(output.stream, output.encoding, &span, XML_TEXT_ESCAPE);
}

// Writes what the format gives with the schema's name for its first "%s" and "%" for each "%%". The
// format is the user's: anything else in it is markup and stands as it is. It goes out piece by
// piece, so that no length of format or name is too long.
void write_schema_reference(const XmlOutput& output, const char* format, const char* schema_name) {
    char run[4096];
    std::size_t length = 0;
    const auto flush = [&] {
        run[length] = '\0';
        write_pieces(output, {run});
        length = 0;
    };
    bool name_written = false;
    for (const char* at = format; *at != '\0'; ++at) {
        if (length == sizeof run - 1) flush();
        if (at[0] == '%' && at[1] == 's' && !name_written) {
            flush();
            write_escaped(output, schema_name);
            name_written = true;
            ++at;
        } else {
            if (at[0] == '%' && at[1] == '%') ++at;
            run[length++] = *at;
        }
    }
    flush();
}

// Writes the schema, when asked for, and the reference to it. False when memory is exhausted.
bool write_schema_attributes(const XmlFile& file, const XmlOutput& output) {
    if (settings::create_schema()) {
        const SchemaResult result = write_xml_schema(file);
        if (result != SchemaResult::written) return result != SchemaResult::no_memory;
    }
    const char* const name = settings::schema_name();
    const char* const format = settings::schema_namespace();
    if (name != nullptr && format != nullptr) {
        write_pieces(output, {" "});
        write_schema_reference(output, format, name);
    }
    return true;
}

// Writes the document element's start tag with what describes the data. False when memory is
// exhausted.
bool write_document_start(const XmlFile& file, const XmlOutput& output) {
    const std::int16_t style = settings::create_style();
    if (style == settings::STYLE_DTD && !write_xml_dtd(file)) return false;
    write_pieces(output, {"<", file.xfd->name});
    if (style == settings::STYLE_SCHEMA && !write_schema_attributes(file, output)) return false;
    write_pieces(output, {">\n"});
    return true;
}

bool fail_without_memory(const char* why) {
    trace_leaving(why);
    *host_file_error() = HOST_FILE_NO_MEMORY;
    return false;
}

bool start_output(XmlFile& file) {
    if (file.out == nullptr) {
        trace_leaving("Leaving, failed to open xml file");
        return false;
    }
    const char* const encoding_name = choose_encoding(file);
    const XmlOutput output = {file.out, file.out_encoding};
    write_prologue(output, encoding_name);
    if (!write_document_start(file, output)) {
        return fail_without_memory("Leaving, no memory for the declared names");
    }
    file.item_tags = new_item_tags(*file.xfd);
    if (file.item_tags == nullptr) return fail_without_memory("Leaving, no memory for the tags");
    file.write_plan = new_write_plan(*file.xfd, *file.item_tags);
    return file.write_plan != nullptr || fail_without_memory("Leaving, no memory for the plan");
}

bool complete_open(XmlFile& file, const char* name, std::int32_t mode) {
    if (!read_description(file, name)) {
        trace_leaving("Leaving, failed to parse XFD file");
        return false;
    }
    *host_file_error() = HOST_FILE_OK;
    file.handler = optional_record_handler(file.xfd);
    file.mode = mode;
    return direction_of(mode) == XML_OPEN_OUTPUT ? start_output(file) : start_input(file, name);
}

}  // namespace

XmlFile* xml_sopen(const char* name, std::int32_t mode, std::int32_t p3, std::int32_t p4,
                   std::int32_t p5, std::int32_t p6, const char* p7, std::int32_t p8) {
    *host_file_error() = HOST_FILE_OK;
    if (host_trace_on != 0) {
        host_trace(1, HOST_TRACE_ENTRIES, "xml_sopen: '%s', %d, %d, %d, %d, %d, '%s', %d", name,
                   mode, p3, p4, p5, p6, p7 != nullptr ? p7 : "NULL", p8);
    }
    const std::int32_t direction = direction_of(mode);
    if (direction != XML_OPEN_INPUT && direction != XML_OPEN_OUTPUT) {
        trace_leaving("Leaving, open mode not supported");
        *host_file_error() = HOST_FILE_UNSUPPORTED;
        return nullptr;
    }
    // The output comes before everything else: a failure further on leaves an empty file behind.
    HostStream* const out = direction == XML_OPEN_OUTPUT ? host_fopen(name, "wb", 1) : nullptr;
    XmlFile* const file = new_xml_file();
    if (file == nullptr) {
        *host_file_error() = HOST_FILE_NO_MEMORY;
        host_fclose(out);
        return nullptr;
    }
    file->out = out;
    if (!complete_open(*file, name, mode)) {
        free_xml_file(file);
        return nullptr;
    }
    trace_leaving("Leaving, success");
    return file;
}
