#include "fsi/xml/elements/name_hash.h"

HashKey process_hash_key() {
    static const char anchor = 0;
    static HashKey key;
    if (key.low == 0) {
        const char on_stack = 0;
        key.low = reinterpret_cast<std::uintptr_t>(&anchor) * 0x9E3779B97F4A7C15U | 1U;
        key.high = reinterpret_cast<std::uintptr_t>(&on_stack) * 0xC2B2AE3D27D4EB4FU;
    }
    return key;
}
