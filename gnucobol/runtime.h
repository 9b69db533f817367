// The COBOL runtime, libcob, as its header declares it.
#pragma once

#include <cstddef>
#include <cstdio>

// The runtime's header needs <cstddef> and <cstdio> before it.
// clang-format off
#include <libcob.h>
// clang-format on
