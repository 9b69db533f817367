// Refuses a release of the runtime other than the one that the adapter was built for: its
// structures differ.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "gnucobol/runtime.h"

namespace {

__attribute__((constructor)) void check_runtime() {
    const char* const found = libcob_version();
    if (std::strncmp(found, SXML_LIBCOB_RELEASE, std::strlen(SXML_LIBCOB_RELEASE)) == 0) return;
    std::fprintf(
        stderr,
        "sxml: libsxml_cob.so was built for GnuCOBOL %sx, the runtime here is %s; build it "
        "again on this machine\n",
        SXML_LIBCOB_RELEASE, found);
    _exit(EXIT_FAILURE);
}

}  // namespace
