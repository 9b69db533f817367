// The memory suite given to Expat: all of Expat's memory is tracked by the host.
#pragma once

#include <expat.h>

extern const XML_Memory_Handling_Suite expat_memory;
