/* Sums a field over the records of an XML document of any size:
 *
 *     sum_field MODULE DOCUMENT FIELD
 *
 * MODULE is the module's shared library, DOCUMENT a file name, an "http:" URL or "-". A record is a
 * child of the document element, the field a child of the record. One record at a time is in
 * memory. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "sxml/xml_api.h"

static const char* field_text(const XmlApi* api, uint32_t record, const char* name) {
    for (uint32_t field = api->xml_first_child(record); field;
         field = api->xml_next_sibling(field)) {
        if (strcmp(api->xml_element_name(field), name) == 0)
            return api->xml_element_value(field, NULL);
    }
    return NULL;
}

/* Reads to the end. The result is the exit status. */
static int sum_records(const XmlApi* api, uint32_t parser, const char* name) {
    long records = 0;
    double sum = 0;
    while (*host_file_error() == 0 && api->SxmlParser_parse_record(parser)) {
        if (*host_file_error() != 0) break; /* the document ends, or is damaged, in this record */
        const uint32_t record = api->xml_first_child(api->xml_parser_root(parser));
        const char* text = field_text(api, record, name);
        if (text) sum += strtod(text, NULL);
        ++records;
        api->xml_free_element(record);
    }
    printf("%ld records, sum of %s: %.2f\n", records, name, sum);
    fflush(stdout);
    if (!api->xml_parser_root(parser) || api->xml_parser_current(parser)) {
        fprintf(stderr, "sum_field: after record %ld: %s\n", records,
                *host_file_error() == 19 ? *host_error_text() : "the document is not complete");
        return 1;
    }
    return 0;
}

int main(int argc, char** argv) {
    XmlApi api;
    if (argc != 4) {
        fprintf(stderr, "usage: sum_field MODULE DOCUMENT FIELD\n");
        return 2;
    }
    const char* problem = xml_api_load(argv[1], &api);
    if (problem) {
        fprintf(stderr, "sum_field: %s\n", problem);
        return 1;
    }
    const uint32_t parser =
        api.xml_open_file(argv[2], XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA | XMLOPT_XML_DECL, 0);
    if (!parser) {
        int32_t code = 0;
        const char* message = api.xml_last_error(&code);
        fprintf(stderr, "sum_field: %s: %s\n", argv[2], message);
        return 1;
    }
    const int status = sum_records(&api, parser, argv[3]);
    api.xml_free_parser(parser);
    return status;
}
