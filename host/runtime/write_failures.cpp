#include "host/runtime/write_failures.h"

#include <deque>
#include <new>

#include "host/runtime/immortal.h"
#include "host/runtime/streams.h"

namespace host {

namespace {

constexpr std::size_t MOST_REMEMBERED = 256;  // later ones are dropped, the oldest say enough

Immortal<std::deque<WriteFailure>> failures;

}  // namespace

void remember_write_failure(const std::string& file, int error) noexcept {
    if (failures->size() >= MOST_REMEMBERED) return;
    try {
        failures->push_back({file, error});
    } catch (const std::bad_alloc&) {
        // The failure counts even when there is no room for the name.
        failures->push_back({std::string(), error});
    }
}

std::optional<WriteFailure> take_write_failure() {
    if (failures->empty()) return std::nullopt;
    WriteFailure oldest = std::move(failures->front());
    failures->pop_front();
    return oldest;
}

}  // namespace host
