#include "host/runtime/curl_library.h"

#include <dlfcn.h>

#include <cstdio>

namespace host {

namespace {

constexpr const char* FILE_NAMES[] = {"libcurl.so.4", "libcurl-gnutls.so.4"};

constinit CurlLibrary functions{};
bool is_ready = false;

void* open_library() {
    for (const char* name : FILE_NAMES) {
        if (void* library = dlopen(name, RTLD_NOW | RTLD_LOCAL)) return library;
    }
    return nullptr;
}

template <class Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool start(void* library) {
    decltype(&::curl_global_init) global_init = nullptr;
    return find(library, "curl_global_init", global_init) &&
           find(library, "curl_easy_init", functions.easy_init) &&
           find(library, "curl_easy_setopt", functions.easy_setopt) &&
           find(library, "curl_easy_perform", functions.easy_perform) &&
           find(library, "curl_easy_cleanup", functions.easy_cleanup) &&
           global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
}

}  // namespace

const CurlLibrary* curl_library() {
    if (is_ready) return &functions;
    void* library = open_library();
    if (library == nullptr) {
        const char* reason = dlerror();
        std::fprintf(stderr, "sxml: web addresses need libcurl: %s; install it\n",
                     reason != nullptr ? reason : "it cannot be loaded");
        return nullptr;
    }
    is_ready = start(library);
    if (is_ready) return &functions;
    std::fputs("sxml: libcurl, which web addresses need, does not start\n", stderr);
    dlclose(library);
    return nullptr;
}

}  // namespace host
