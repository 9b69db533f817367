// One way of reading a document, timed in this process.
//     parse_rates WAY DOCUMENT [MODULE]
// Ways: expat (no handlers), handlers (Expat with empty handlers), libxml2 (its reader, every node
// visited), dom (libxml2's tree), whole and records (the module's parser API). Prints the seconds
// of processor time taken, and the most memory that the process had, in bytes.

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/xmlreader.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "host/errors.h"
#include "sxml/xml_api.h"

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;
constexpr std::uint32_t OPTIONS = XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA | XMLOPT_XML_DECL;

void XMLCALL on_start(void* count, const XML_Char*, const XML_Char**) {
    ++*static_cast<unsigned long*>(count);
}
void XMLCALL on_end(void*, const XML_Char*) {}
void XMLCALL on_text(void*, const XML_Char*, int) {}

bool parse_expat(const char* document, bool handlers) {
    std::FILE* file = std::fopen(document, "rb");
    if (file == nullptr) return false;
    XML_Parser parser = XML_ParserCreate(nullptr);
    unsigned long count = 0;
    XML_SetUserData(parser, &count);
    if (handlers) {
        XML_SetElementHandler(parser, on_start, on_end);
        XML_SetCharacterDataHandler(parser, on_text);
    }
    std::vector<char> piece(PIECE);
    XML_Status status = XML_STATUS_OK;
    std::size_t length = PIECE;
    while (status == XML_STATUS_OK && length == PIECE) {
        length = std::fread(piece.data(), 1, PIECE, file);
        status = XML_Parse(parser, piece.data(), static_cast<int>(length), length < PIECE);
    }
    XML_ParserFree(parser);
    std::fclose(file);
    return status == XML_STATUS_OK && (!handlers || count > 0);
}

bool parse_libxml2(const char* document) {
    xmlTextReaderPtr reader = xmlReaderForFile(document, nullptr, XML_PARSE_HUGE);
    if (reader == nullptr) return false;
    int status = 1;
    while (status == 1) status = xmlTextReaderRead(reader);
    xmlFreeTextReader(reader);
    return status == 0;
}

bool parse_dom(const char* document) {
    xmlDocPtr tree = xmlReadFile(document, nullptr, XML_PARSE_HUGE);
    const bool complete = tree != nullptr;
    xmlFreeDoc(tree);
    return complete;
}

bool parse_whole(const XmlApi& api, const char* document) {
    const std::uint32_t parser = api.xml_open_file(document, OPTIONS | XMLOPT_PARSE_WHOLE, 0);
    const bool complete = parser != 0 && api.xml_parser_current(parser) == 0;
    api.xml_free_parser(parser);
    return complete;
}

bool parse_records(const XmlApi& api, const char* document) {
    const std::uint32_t parser = api.xml_open_file(document, OPTIONS, 0);
    while (*host_file_error() == HOST_FILE_OK && api.SxmlParser_parse_record(parser) != 0) {
        api.xml_free_element(api.xml_first_child(api.xml_parser_root(parser)));
    }
    const bool complete =
        *host_file_error() == HOST_FILE_END && api.xml_parser_current(parser) == 0;
    api.xml_free_parser(parser);
    return complete;
}

bool parse(const std::string& way, const char* document, const XmlApi& api) {
    if (way == "expat" || way == "handlers") return parse_expat(document, way == "handlers");
    if (way == "libxml2") return parse_libxml2(document);
    if (way == "dom") return parse_dom(document);
    if (way == "whole") return parse_whole(api, document);
    return way == "records" && parse_records(api, document);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: parse_rates WAY DOCUMENT [MODULE]\n", stderr);
        return 2;
    }
    XmlApi api{};
    const char* problem = argc > 3 ? xml_api_load(argv[3], &api) : nullptr;
    if (problem != nullptr) {
        std::fprintf(stderr, "parse_rates: %s\n", problem);
        return 1;
    }
    const std::clock_t start = std::clock();
    const bool done = parse(argv[1], argv[2], api);
    const double time = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    if (!done) {
        std::fprintf(stderr, "parse_rates: %s cannot read %s\n", argv[1], argv[2]);
        return 1;
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%.4f %ld\n", time, usage.ru_maxrss * 1024);
    return 0;
}
