/* Opens the module and finds its functions by ordinal number. */
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "platform/libraries.h"
#include "sxml/xml_api.h"

/* Where each ordinal's pointer lies in the table. */
static const struct {
    int number;
    size_t offset;
} entries[] = {
#define XML_ORDINAL(number, name, result, parameters) {number, offsetof(XmlApi, name)},
#include "sxml/ordinals.def"
#undef XML_ORDINAL
};

/* What went wrong last. */
static char problem[512];

static const char* lacks(const char* module, int number) {
    snprintf(problem, sizeof problem, "%.450s has no ordinal_%d", module, number);
    return problem;
}

const char* xml_api_load(const char* module, XmlApi* api) {
    memset(api, 0, sizeof *api);
    /* Without a name the loader would give the program itself. */
    if (!module || !*module) return "no module is named";
    void* library = platform_open_library(module, problem, sizeof problem);
    if (!library) return problem;
    for (size_t i = 0; i < sizeof entries / sizeof entries[0]; ++i) {
        void* function = platform_library_ordinal(library, entries[i].number);
        if (!function) {
            memset(api, 0, sizeof *api);
            platform_close_library(library);
            return lacks(module, entries[i].number);
        }
        memcpy((char*)api + entries[i].offset, &function, sizeof function);
    }
    return NULL;
}
