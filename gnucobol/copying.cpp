#include "gnucobol/copying.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/descriptors.h"

namespace gnucobol {

Result copy_part(int from, std::uint64_t begin, std::uint64_t end, int to, std::uint64_t offset) {
    if (const int error = platform::move_to(to, offset); error != 0) return refusal(error);
    std::array<char, 65536> part{};
    while (begin < end) {
        const std::size_t wanted = std::min<std::uint64_t>(part.size(), end - begin);
        const ssize_t count = pread(from, part.data(), wanted, static_cast<off_t>(begin));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return refusal(count < 0 ? errno : EIO);
        const auto size = static_cast<std::size_t>(count);
        if (const int error = platform::write_whole(to, part.data(), size); error != 0) {
            return refusal(error);
        }
        begin += size;
    }
    return {};
}

}  // namespace gnucobol
