#include "fsi/xml/handlers/expat_memory.h"

#include "fsi/xml/handlers/xml_parser.h"
#include "host/memory.h"

namespace {

void* expat_malloc(std::size_t size) {
    return host_alloc(size, HOST_BLOCK_ZEROED, HANDLERS_SOURCE, __LINE__, "EXPAT library memory",
                      0);
}

void* expat_realloc(void* block, std::size_t size) {
    // A block that the host allocates for a null pointer would carry no description.
    if (!block) return expat_malloc(size);
    return host_realloc(block, size, HANDLERS_SOURCE, __LINE__, 0);
}

void expat_free(void* block) {
    host_free(block, HANDLERS_SOURCE, __LINE__, 0);
}

}  // namespace

const XML_Memory_Handling_Suite expat_memory = {expat_malloc, expat_realloc, expat_free};
