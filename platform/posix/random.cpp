#include "platform/random.h"

#include <sys/random.h>

namespace platform {

bool draw_random(void* bytes, std::size_t size) {
    return getrandom(bytes, size, GRND_NONBLOCK) == static_cast<ssize_t>(size);
}

}  // namespace platform
