// Documents through the parser API: the first four bytes of the input choose the options, how the
// document is read and how large the reads are; the rest is the document.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "host/errors.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/streams.h"
#include "sxml/xml_api.h"
#include "tests/support/scratch_folder.h"

namespace {

const XmlApi& api() {
    static const XmlApi loaded = [] {
        XmlApi table;
        if (const char* problem = xml_api_load(SXML_MODULE, &table)) {
            std::fprintf(stderr, "%s\n", problem);
            std::abort();
        }
        return table;
    }();
    return loaded;
}

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n%s", what, host::leak_report().c_str());
    std::abort();
}

std::string scratch_file() {
    static const ScratchFolder folder;
    return folder.file("input");
}

// The input as a file: documents that do not begin as a text in memory must are read from one.
void write_file(const std::string& name, const std::uint8_t* data, std::size_t size) {
    FILE* file = std::fopen(name.c_str(), "wb");
    require(file != nullptr, "no scratch file");
    std::fwrite(data, 1, size, file);
    std::fclose(file);
}

void read_records(std::uint32_t parser, bool release) {
    const XmlApi& xml = api();
    for (int i = 0; i < 1000 && xml.SxmlParser_parse_record(parser); ++i) {
        const std::uint32_t record = xml.xml_first_child(xml.xml_parser_root(parser));
        require(record != 0, "a record that is not there");
        if (release) xml.xml_free_element(record);
        if (*host_file_error() != HOST_FILE_OK) break;
    }
}

// When all of the document was kept, what is written must be readable.
void write_back(std::uint32_t parser, const std::string& name) {
    require(api().xml_write_document(parser, name.c_str()) == 1, "not written");
    const std::uint32_t again = api().xml_open_file(
        name.c_str(), XMLOPT_PARSE_WHOLE | XMLOPT_ELEMENTS | XMLOPT_XML_DECL, 0);
    if (again) api().xml_free_parser(again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    std::uint32_t choice = 0;
    std::memcpy(&choice, data, sizeof choice);
    const std::uint32_t options = choice & 0x7FFFF;
    const XmlApi& xml = api();
    const std::string name = scratch_file();
    write_file(name, data + 4, size - 4);
    host::limit_read_size(choice >> 19 & 0x3F);
    const std::uint32_t parser = xml.xml_open_file(name.c_str(), options, 0);
    host::limit_read_size(0);
    if (parser) {
        if (!(options & XMLOPT_PARSE_WHOLE)) read_records(parser, (choice >> 25 & 1) != 0);
        write_back(parser, name + ".out");
        xml.xml_free_parser(parser);
    }
    require(host::live_blocks().empty(), "blocks are left");
    return 0;
}
