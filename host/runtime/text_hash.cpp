#include "host/runtime/text_hash.h"

#include "platform/random.h"

namespace host {

std::uint64_t text_hash_seed = 0x2545F4914F6CDD1D;

namespace {

[[gnu::constructor]] void draw_seed() {
    std::uint64_t drawn = 0;
    if (platform::draw_random(&drawn, sizeof drawn)) {
        text_hash_seed = drawn | 1;
    }
}

}  // namespace

}  // namespace host
