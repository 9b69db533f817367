#include "host/runtime/write_failures.h"

#include <new>
#include <utility>
#include <vector>

#include "host/runtime/memory/immortal.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/streams.h"

namespace host {

namespace {

constexpr std::size_t MOST_REMEMBERED = 256;  // later ones are dropped, the oldest are enough

// Those of one direction.
struct Failures {
    std::vector<StreamFailure> all;
    // One that there was no memory to remember whole; its error number, 0 for none.
    int nameless = 0;
};
constinit Immortal<Failures> writing;
constinit Immortal<Failures> reading;

void remember(Failures& failures, const std::string& file, int error) noexcept {
    if (failures.all.size() >= MOST_REMEMBERED) return;
    try {
        failures.all.push_back({file, error});
    } catch (const std::bad_alloc&) {
        note_memory_failure();
        failures.nameless = error;
    }
}

std::optional<StreamFailure> take(Failures& failures) {
    if (failures.all.empty()) {
        const int error = std::exchange(failures.nameless, 0);
        return error != 0 ? std::optional(StreamFailure{"", error}) : std::nullopt;
    }
    StreamFailure oldest = std::move(failures.all.front());
    failures.all.erase(failures.all.begin());
    return oldest;
}

}  // namespace

void remember_write_failure(const std::string& file, int error) noexcept {
    remember(*writing, file, error);
}

void remember_read_failure(const std::string& file, int error) noexcept {
    remember(*reading, file, error);
}

std::optional<StreamFailure> take_write_failure() {
    return take(*writing);
}

std::optional<StreamFailure> take_read_failure() {
    return take(*reading);
}

}  // namespace host

int host_take_write_failure(const char** file) {
    static host::Immortal<std::string> name;
    std::optional<host::StreamFailure> failure = host::take_write_failure();
    name->clear();
    if (failure) name->swap(failure->file);
    if (file != nullptr) *file = name->c_str();
    return failure ? failure->error : 0;
}
