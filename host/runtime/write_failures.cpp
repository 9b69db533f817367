#include "host/runtime/write_failures.h"

#include <deque>
#include <new>
#include <utility>

#include "host/runtime/immortal.h"
#include "host/runtime/streams.h"

namespace host {

namespace {

constexpr std::size_t MOST_REMEMBERED = 256;  // later ones are dropped, the oldest say enough

Immortal<std::deque<WriteFailure>> failures;
// A failure that there was no memory to remember whole; its error number, 0 for none.
constinit int nameless_failure = 0;

}  // namespace

void remember_write_failure(const std::string& file, int error) noexcept {
    if (failures->size() >= MOST_REMEMBERED) return;
    try {
        failures->push_back({file, error});
    } catch (const std::bad_alloc&) {
        nameless_failure = error;
    }
}

std::optional<WriteFailure> take_write_failure() {
    if (failures->empty()) {
        const int error = std::exchange(nameless_failure, 0);
        return error != 0 ? std::optional(WriteFailure{"", error}) : std::nullopt;
    }
    WriteFailure oldest = std::move(failures->front());
    failures->pop_front();
    return oldest;
}

}  // namespace host

int host_take_write_failure(const char** file) {
    static host::Immortal<std::string> name;
    std::optional<host::WriteFailure> failure = host::take_write_failure();
    name->clear();
    if (failure) name->swap(failure->file);
    if (file != nullptr) *file = name->c_str();
    return failure ? failure->error : 0;
}
