#include "gnucobol/known_runtime.h"

#include <cstddef>
#include <cstdio>
#include <string_view>

// The runtime's header needs <cstddef> and <cstdio> before it.
// clang-format off
#include <libcob.h>
// clang-format on

namespace gnucobol {

namespace {

bool find_out() {
    constexpr bool fits_header = __LIBCOB_VERSION == 3 && __LIBCOB_VERSION_MINOR == 1;
    const char* const version = libcob_version();
    if (fits_header && std::string_view(version).starts_with("3.1")) return true;
    std::fprintf(stderr,
                 "sxml: libcob %s cannot be served, file status 30: XML files need libcob 3.1; "
                 "compile and run the program with GnuCOBOL 3.1\n",
                 version);
    return false;
}

}  // namespace

bool is_known_runtime() {
    static const bool is_known = find_out();
    return is_known;
}

}  // namespace gnucobol
