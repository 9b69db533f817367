// Unpredictable random numbers.
#pragma once

#include <cstddef>

namespace platform {

// Fills the bytes. False when the system has none available immediately.
bool draw_random(void* bytes, std::size_t size);

}  // namespace platform
