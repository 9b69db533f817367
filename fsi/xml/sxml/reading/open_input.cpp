#include "fsi/xml/sxml/reading/open_input.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "fsi/xml/handlers/xml_parser.h"
#include "fsi/xml/sxml/plugin.h"
#include "host/config.h"
#include "host/errors.h"
#include "host/memory.h"
#include "host/trace.h"
#include "sxml/xml_api.h"

namespace {

constexpr char XML_SUFFIX[] = ".xml";

// Values of 4GL_COLUMN_CASE.
enum ColumnCase : std::int32_t { COLUMN_CASE_UPPER = 1, COLUMN_CASE_UNCHANGED = 2 };

// How element names are converted.
std::uint32_t name_mode() {
    switch (host_config_number("4GL_COLUMN_CASE", 0)) {
        case COLUMN_CASE_UPPER:
            return XML_NAME_UNDERSCORE;
        case COLUMN_CASE_UNCHANGED:
            return XML_NAME_AS_WRITTEN;
        default:
            return XML_NAME_LOWER_UNDERSCORE;
    }
}

bool fail_to_open(int error) {
    if (host_trace_on != 0)
        host_trace(-1, HOST_TRACE_ENTRIES, "Leaving, open input failed: %d\n", error);
    *host_file_error() = HOST_FILE_CANNOT_OPEN;
    return false;
}

bool fail_without_memory() {
    *host_file_error() = HOST_FILE_NO_MEMORY;
    return false;
}

bool input_is_missing() {
    std::int32_t code = XMLERR_NONE;
    xml_last_error(&code);
    return code == XMLERR_OPEN_FILE;
}

// Tries the name with ".xml" added. The result must be a document; any other outcome is a failure.
bool open_with_suffix(XmlFile& file, const char* name, std::uint32_t options) {
    const std::size_t size = std::strlen(name) + sizeof XML_SUFFIX;
    auto* const longer = static_cast<char*>(
        host_alloc(size, HOST_BLOCK_RAW, SXML_SOURCE, __LINE__, "temp .xml filename", 0));
    if (longer == nullptr) return fail_without_memory();
    std::snprintf(longer, size, "%s%s", name, XML_SUFFIX);
    file.parser = xml_open_file(longer, options, 0);
    const int error = errno;
    host_free(longer, SXML_SOURCE, __LINE__, 0);
    return file.parser != 0 || fail_to_open(error);
}

bool open_document(XmlFile& file, const char* name) {
    const std::uint32_t options = XMLOPT_SEQUENTIAL_FILE | name_mode();
    file.parser = xml_open_file(name, options, 0);
    const int error = errno;
    if (file.parser == 0 && input_is_missing() && !open_with_suffix(file, name, options)) {
        return false;
    }
    if (*host_file_error() != HOST_FILE_OK) return false;
    return file.parser != 0 || fail_to_open(error);
}

}  // namespace

bool start_input(XmlFile& file, const char* name) {
    if (!open_document(file, name)) return false;
    file.input_items = new_input_items(*file.xfd);
    if (file.input_items == nullptr) return fail_without_memory();
    if (file.handler == nullptr) return true;
    RecordTree& tree = file.input_items->tree;
    tree.table_match = &file.handler->table_match;
    tree.notes_unused = file.handler->unused != nullptr;
    return true;
}
