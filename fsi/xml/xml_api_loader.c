/* Opens the module and finds its functions by ordinal number. */
#include <dlfcn.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

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

/* What went wrong last; dlerror's own text does not outlive the next call of the loader. */
static char problem[512];

static const char* cannot_load(void) {
    const char* reason = dlerror();
    snprintf(problem, sizeof problem, "%s", reason ? reason : "the module cannot be loaded");
    return problem;
}

static const char* lacks(const char* module, const char* symbol) {
    snprintf(problem, sizeof problem, "%.450s has no %s", module, symbol);
    return problem;
}

const char* xml_api_load(const char* module, XmlApi* api) {
    memset(api, 0, sizeof *api);
    /* Without a name dlopen would give the program itself. */
    if (!module || !*module) return "no module is named";
    void* library = dlopen(module, RTLD_NOW | RTLD_LOCAL);
    if (!library) return cannot_load();
    for (size_t i = 0; i < sizeof entries / sizeof entries[0]; ++i) {
        char symbol[32];
        snprintf(symbol, sizeof symbol, "ordinal_%d", entries[i].number);
        void* function = dlsym(library, symbol);
        if (!function) {
            memset(api, 0, sizeof *api);
            dlclose(library);
            return lacks(module, symbol);
        }
        memcpy((char*)api + entries[i].offset, &function, sizeof function);
    }
    return NULL;
}
