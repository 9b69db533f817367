/* Builds an XML document in memory and writes it to a file:
 *
 *     build_tree MODULE FILE
 *
 * MODULE is the module's shared library; its functions are found by ordinal number. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "sxml/xml_api.h"

static const struct Item {
    const char* part;
    const char* quantity;
    const char* remark;
} items[] = {
    {"Bolt <M8>", "100", NULL},
    {"Nut & washer", "250", "ship separately"},
    {"Bracket", "4", NULL},
};

static int fail(const XmlApi* api, const char* what) {
    int32_t code = 0;
    const char* message = api->xml_element_error(&code);
    fprintf(stderr, "build_tree: %s: %s (error %d)\n", what, message, (int)code);
    return 0;
}

static int add_item(const XmlApi* api, uint32_t order, const struct Item* item) {
    const uint32_t element = api->xml_add_child(order, "item");
    if (!element || !api->xml_add_attribute(element, "quantity", item->quantity) ||
        !api->xml_append_element_value(element, item->part, -1, 2)) {
        return fail(api, "item");
    }
    if (item->remark && !api->xml_add_comment(element, item->remark)) return fail(api, "remark");
    return 1;
}

static uint32_t build_order(const XmlApi* api) {
    const uint32_t order = api->xml_new_element(0, "order", 0);
    if (!order) {
        fail(api, "order");
        return 0;
    }
    for (size_t i = 0; i < sizeof items / sizeof items[0]; ++i) {
        if (!add_item(api, order, &items[i])) {
            api->xml_free_element(order);
            return 0;
        }
    }
    return order;
}

/* Items are distinguished by their occurrence numbers. */
static void print_numbers(const XmlApi* api, uint32_t order) {
    for (uint32_t item = api->xml_first_child(order); item; item = api->xml_next_sibling(item)) {
        printf("%s(%u): %s\n", api->xml_element_name(item),
               (unsigned)api->xml_element_index(item, api->xml_last_index(item)),
               api->xml_element_value(item, NULL));
    }
}

/* What could not be written is only known when the file was closed. */
static int write_order(const XmlApi* api, uint32_t order, const char* name) {
    struct HostStream* file = host_fopen(name, "wb", 0);
    if (!file) {
        perror(name);
        return 0;
    }
    api->xml_write_element(file, 2, order, 0);
    host_fclose(file);
    const int error = host_take_write_failure(NULL);
    if (error) fprintf(stderr, "%s: %s\n", name, strerror(error));
    return !error;
}

int main(int argc, char** argv) {
    if (argc != 3) {
        fprintf(stderr, "usage: build_tree MODULE FILE\n");
        return 2;
    }
    XmlApi api;
    const char* problem = xml_api_load(argv[1], &api);
    if (problem) {
        fprintf(stderr, "build_tree: %s\n", problem);
        return 1;
    }
    const uint32_t order = build_order(&api);
    if (!order) return 1;
    print_numbers(&api, order);

    const int written = write_order(&api, order, argv[2]);
    api.xml_free_element(order);
    return written ? 0 : 1;
}
