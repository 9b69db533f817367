// malloc and its family, with failing calls. operator new of the C++ library calls these as well.
#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include "tests/faults/fault_plan.h"

// glibc's own, under the names that it offers for this purpose.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

constexpr std::array<const char*, 9> RUNTIME = {"/libcob.",  "/libgmp.",   "/libxml2.",
                                                "/libicu",   "/libdb-",    "/libncurses",
                                                "/libtinfo", "/libjson-c", "/libcjson"};

// Blocks that cannot fail. The first one that the C++ library itself takes is its reserve for
// exceptions: without it no program can throw when memory is out; it is taken before any code of
// ours runs. The runtime of COBOL and its libraries end the process, or go on, by themselves.
bool is_exempt(const void* caller) {
    static bool has_reserve = false;
    Dl_info info{};
    if (dladdr(caller, &info) == 0) return false;
    const bool is_reserve = !has_reserve && std::strstr(info.dli_fname, "libstdc++") != nullptr;
    has_reserve = has_reserve || is_reserve;
    return is_reserve || std::any_of(RUNTIME.begin(), RUNTIME.end(), [&](const char* library) {
               return std::strstr(info.dli_fname, library) != nullptr;
           });
}

bool fails(const void* caller) {
    if (faults::plan().kind != faults::Kind::memory || is_exempt(caller)) return false;
    if (!faults::fails(faults::Kind::memory)) return false;
    errno = ENOMEM;
    return true;
}

}  // namespace

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED void* malloc(std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

EXPORTED void* calloc(std::size_t count, std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

EXPORTED void* realloc(void* block, std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_realloc(block, size);
}

EXPORTED void* memalign(std::size_t alignment, std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_memalign(alignment, size);
}

EXPORTED void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return fails(__builtin_return_address(0)) ? nullptr : __libc_memalign(alignment, size);
}

EXPORTED int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    if (fails(__builtin_return_address(0))) return ENOMEM;
    void* taken = __libc_memalign(alignment, size);
    if (taken == nullptr) return ENOMEM;
    *block = taken;
    return 0;
}
