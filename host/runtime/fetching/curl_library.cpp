#include "host/runtime/fetching/curl_library.h"

#include <array>
#include <cstdio>

#include "platform/libraries.h"

namespace host {

namespace {

constexpr const char* FILE_NAMES[] = {"libcurl.so.4", "libcurl-gnutls.so.4"};

constinit CurlLibrary functions{};
bool is_ready = false;

using Reason = std::array<char, 512>;

void* open_library(Reason& reason) {
    for (const char* name : FILE_NAMES) {
        if (void* library = platform_open_library(name, reason.data(), reason.size())) {
            return library;
        }
    }
    return nullptr;
}

template <class Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(platform_library_symbol(library, name));
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
    Reason reason{};
    void* library = open_library(reason);
    if (library == nullptr) {
        std::fprintf(stderr, "sxml: web addresses need libcurl: %s; install it\n", reason.data());
        return nullptr;
    }
    is_ready = start(library);
    if (is_ready) return &functions;
    std::fputs("sxml: libcurl, which web addresses need, does not start\n", stderr);
    platform_close_library(library);
    return nullptr;
}

}  // namespace host
