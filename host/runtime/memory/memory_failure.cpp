#include "host/runtime/memory/memory_failure.h"

#include <atomic>

namespace host {

namespace {

constinit std::atomic<bool> has_failed{false};

}  // namespace

void note_memory_failure() noexcept {
    has_failed.store(true, std::memory_order_relaxed);
}

bool take_memory_failure() {
    return has_failed.exchange(false);
}

}  // namespace host
