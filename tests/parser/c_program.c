/* The usage sample of sxml/xml_parser_api.h, and what C programs can ask of declarations and of the
 * elements by name:
 *
 *     c_program MODULE
 *
 * run where a file orders.xml is. */
#include <expat.h>
#include <stdio.h>

#include "sxml/xml_api.h"

static XmlApi api;

static void take_order(uint32_t order) {
    const char* const value = api.xml_element_value(order, NULL);
    printf("%s %s\n", api.xml_element_name(order), value ? value : "-");
}

static void complain(const char* problem) {
    printf("%s\n", problem);
}

static void run_sample(void) {
#include "usage_sample.inc"
}

static void print_collections(void) {
    const uint32_t parser =
        api.xml_open_file("orders.xml",
                          XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA | XMLOPT_ELEMENT_DECLS |
                              XMLOPT_ELEMENT_HASH | XMLOPT_PARSE_WHOLE,
                          0);
    struct HostTable* const models = api.xml_parser_models(parser);
    for (size_t i = 0; i < host_table_count(models); ++i) {
        const char* const name = host_table_name(models, i);
        const XML_Content* const model = host_table_get(models, name);
        printf("%s: type %d, %u children\n", name, (int)model->type, model->numchildren);
    }
    struct HostNameIndex* const index = api.xml_parser_element_hash(parser);
    const struct XmlHashEntry* entry = index ? host_hash_find(index, "order") : NULL;
    for (; entry; entry = entry->next)
        printf("%s %s\n", entry->name, api.xml_element_value(entry->element, NULL));
    api.xml_free_parser(parser);
}

int main(int argc, char** argv) {
    const char* const problem = argc == 2 ? xml_api_load(argv[1], &api) : "usage: c_program MODULE";
    if (problem) {
        fprintf(stderr, "c_program: %s\n", problem);
        return 1;
    }
    run_sample();
    print_collections();
    return 0;
}
