#include "platform/random.h"

#include <windows.h>

#include <bcrypt.h>

namespace platform {

bool draw_random(void* bytes, std::size_t size) {
    return BCryptGenRandom(nullptr, static_cast<PUCHAR>(bytes), static_cast<ULONG>(size),
                           BCRYPT_USE_SYSTEM_PREFERRED_RNG) == 0;
}

}  // namespace platform
