/* Opens the module and finds its functions by ordinal number. */
#include <dlfcn.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "fsi/xml/xml_api.h"

/* Where each ordinal's pointer lies in the table. */
static const struct {
    int number;
    size_t offset;
} entries[] = {
#define XML_ORDINAL(number, name, result, parameters) {number, offsetof(XmlApi, name)},
#include "fsi/xml/ordinals.def"
#undef XML_ORDINAL
};

const char* xml_api_load(const char* module, XmlApi* api) {
    memset(api, 0, sizeof *api);
    void* library = dlopen(module, RTLD_NOW | RTLD_LOCAL);
    if (!library) return dlerror();
    for (size_t i = 0; i < sizeof entries / sizeof entries[0]; ++i) {
        char symbol[32];
        snprintf(symbol, sizeof symbol, "ordinal_%d", entries[i].number);
        void* function = dlsym(library, symbol);
        if (!function) {
            memset(api, 0, sizeof *api);
            return dlerror();
        }
        memcpy((char*)api + entries[i].offset, &function, sizeof function);
    }
    return NULL;
}
