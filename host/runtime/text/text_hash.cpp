#include "host/runtime/text/text_hash.h"

#include "platform/random.h"

namespace host {

std::uint64_t draw_text_hash_seed() {
    constexpr std::uint64_t without_random_numbers = 0x2545F4914F6CDD1D;
    std::uint64_t drawn = 0;
    return platform::draw_random(&drawn, sizeof drawn) ? drawn | 1 : without_random_numbers;
}

}  // namespace host
