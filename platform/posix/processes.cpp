#include "platform/processes.h"

#ifdef __linux__
#include <sched.h>
#include <sys/prctl.h>
#endif
#include <sys/socket.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <thread>
#include <utility>

namespace platform {

namespace {

// Writing to a closed connection must not end this process.
int send_whole(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t sent = send(descriptor, data, size, MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR) return errno;
        if (sent < 0) continue;
        data += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return 0;
}

bool receive_whole(int descriptor, char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t received = recv(descriptor, data, size, 0);
        if (received < 0 && errno == EINTR) continue;
        if (received <= 0) return false;
        data += received;
        size -= static_cast<std::size_t>(received);
    }
    return true;
}

// Its parent's signal handlers remove files that are not this process's.
void become_worker(pid_t parent) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction present {};
        sigaction(number, nullptr, &present);
        if (present.sa_handler != SIG_IGN) std::signal(number, SIG_DFL);
    }
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    if (getppid() != parent) _exit(1);  // it has ended already
}

[[noreturn]] void work_and_end(const Workers::Work& work, unsigned number, Channel channel) {
    try {
        work(number, channel);
    } catch (...) {
        _exit(1);
    }
    _exit(0);
}

}  // namespace

struct Workers::Member {
    pid_t process;
    Channel channel;
    bool has_ended = false;
};

bool has_process_copies() {
    return true;
}

unsigned usable_processors() {
#ifdef __linux__
    cpu_set_t usable;
    if (sched_getaffinity(0, sizeof usable, &usable) == 0) {
        return static_cast<unsigned>(std::max(1, CPU_COUNT(&usable)));
    }
#endif
    return std::max(1U, std::thread::hardware_concurrency());
}

Channel::Channel(Channel&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

Channel::~Channel() {
    if (descriptor_ >= 0) close(descriptor_);
}

int Channel::send(std::string_view message) const {
    const std::uint64_t size = message.size();
    std::array<char, sizeof size> head;
    std::memcpy(head.data(), &size, sizeof size);
    const int error = send_whole(descriptor_, head.data(), head.size());
    return error != 0 ? error : send_whole(descriptor_, message.data(), message.size());
}

std::optional<std::string> Channel::receive() const {
    std::uint64_t size = 0;
    std::array<char, sizeof size> head;
    if (!receive_whole(descriptor_, head.data(), head.size())) return std::nullopt;
    std::memcpy(&size, head.data(), sizeof size);
    std::string message(static_cast<std::size_t>(size), '\0');
    if (!receive_whole(descriptor_, message.data(), message.size())) return std::nullopt;
    return message;
}

Workers::Workers() = default;
Workers::Workers(Workers&& other) noexcept = default;

Workers::~Workers() {
    for (const auto& member : members_) {
        if (!member->has_ended) kill(member->process, SIGKILL);
    }
    for (const auto& member : members_) {
        while (!member->has_ended && waitpid(member->process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

std::optional<Workers> Workers::start(unsigned count, const Work& work) {
    Workers workers;
    workers.members_.reserve(count);
    while (workers.count() < count) {
        const unsigned before = workers.count();
        workers.add(work);
        if (workers.count() == before) return std::nullopt;
    }
    return workers;
}

// Adds none, with the reason in errno, when that is impossible.
void Workers::add(const Work& work) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return;
    Channel own(ends[0]);
    Channel others(ends[1]);
    auto member = std::make_unique<Member>(Member{0, std::move(own)});
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process < 0) return;
    if (process == 0) {
        become_worker(parent);
        const unsigned number = count();
        // The connections of the parent, whose end must show at the others'.
        for (const auto& earlier : members_) {
            const Channel closed(std::move(earlier->channel));
        }
        { const Channel closed(std::move(member->channel)); }
        work_and_end(work, number, std::move(others));
    }
    member->process = process;
    members_.push_back(std::move(member));
}

const Channel& Workers::channel(unsigned number) const {
    return members_[number]->channel;
}

std::string Workers::end_of(unsigned number) {
    Member& member = *members_[number];
    int status = 0;
    while (waitpid(member.process, &status, 0) < 0) {
        if (errno != EINTR) return "an unknown cause";
    }
    member.has_ended = true;
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "exit status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace platform
