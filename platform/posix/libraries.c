#define _GNU_SOURCE /* dladdr */
#include "platform/libraries.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

const char* const PLATFORM_MODULE_FILE = "sxml.so";

/* The reason is copied: dlerror's own text does not outlive the next call of the loader. */
void* platform_open_library(const char* name, char* problem, size_t size) {
    void* library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    if (library) return library;
    const char* reason = dlerror();
    /* Without memory the loader has no words for it. */
    snprintf(problem, size, "%s", reason ? reason : "out of memory");
    return NULL;
}

void platform_close_library(void* library) {
    dlclose(library);
}

void* platform_library_symbol(void* library, const char* name) {
    return dlsym(library, name);
}

/* Exports have no numbers here, but are named ordinal_1, ordinal_2 and so on. */
void* platform_library_ordinal(void* library, int number) {
    char symbol[32];
    snprintf(symbol, sizeof symbol, "ordinal_%d", number);
    return dlsym(library, symbol);
}

int platform_folder_of_code(const void* address, char* folder, size_t size) {
    Dl_info info = {0};
    if (!dladdr(address, &info) || !info.dli_fname) return 0;
    const char* slash = strrchr(info.dli_fname, '/');
    const char* text = slash ? info.dli_fname : ".";
    const size_t length = slash ? (size_t)(slash - text) : 1;
    if (length >= size) return 0;
    memcpy(folder, text, length);
    folder[length] = '\0';
    return 1;
}
