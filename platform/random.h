// Random numbers that nobody can foretell.
#pragma once

#include <cstddef>

namespace platform {

// Fills the bytes. False when the system has none to give at once.
bool draw_random(void* bytes, std::size_t size);

}  // namespace platform
