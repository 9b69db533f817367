#include "platform/processes.h"

#include <cerrno>
#include <utility>

// The system cannot fork a process, so there are no workers.
namespace platform {

struct Workers::Member {
    Channel channel;
};

bool has_process_copies() {
    return false;
}

unsigned usable_processors() {
    return 1;
}

Channel::Channel(Channel&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
Channel::~Channel() = default;

int Channel::send(std::string_view) const {
    return EPIPE;
}

std::optional<std::string> Channel::receive() const {
    return std::nullopt;
}

Workers::Workers() = default;
Workers::Workers(Workers&& other) noexcept = default;
Workers::~Workers() = default;

std::optional<Workers> Workers::start(unsigned, const Work&) {
    errno = ENOSYS;
    return std::nullopt;
}

const Channel& Workers::channel(unsigned number) const {
    return members_[number]->channel;
}

std::string Workers::end_of(unsigned) {
    return {};
}

}  // namespace platform
