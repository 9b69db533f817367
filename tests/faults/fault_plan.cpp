#include "tests/faults/fault_plan.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace faults {

namespace {

Plan the_plan{};
bool is_read = false;
bool is_traced = false;
Counts own_counts{};
Counts* counts = &own_counts;
// The initial-exec model: the first use of the variable must not allocate.
[[gnu::tls_model("initial-exec")]] thread_local int suspended = 0;

Kind kind_of(std::string_view name) {
    constexpr std::array<std::string_view, 8> names = {"none", "memory", "read", "write",
                                                       "sync", "rename", "open", "link"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) return static_cast<Kind>(i);
    }
    return Kind::none;
}

void read_plan(const char* text) {
    const char* end = std::strchr(text, ' ');
    if (end == nullptr) return;
    the_plan.kind = kind_of({text, static_cast<std::size_t>(end - text)});
    char* rest = nullptr;
    the_plan.first = std::strtoull(end, &rest, 10);
    the_plan.goes_on = *rest == '+';
    if (the_plan.goes_on) ++rest;
    the_plan.error = static_cast<int>(std::strtol(rest, nullptr, 10));
}

void map_counts(const char* page) {
    const int file = ::open(page, O_RDWR | O_CLOEXEC);
    if (file < 0) return;
    void* memory = mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (memory != MAP_FAILED) counts = static_cast<Counts*>(memory);
}

void trace() {
    std::array<void*, 40> frames{};
    const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
    backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
}

}  // namespace

const Plan& plan() {
    if (is_read || environ == nullptr) return the_plan;
    is_read = true;
    if (const char* text = std::getenv("SXML_FAULT")) read_plan(text);
    if (const char* page = std::getenv("SXML_FAULT_PAGE")) map_counts(page);
    is_traced = std::getenv("SXML_FAULT_TRACE") != nullptr;
    // Programs that this one starts run undisturbed.
    unsetenv("LD_PRELOAD");
    return the_plan;
}

Suspension::Suspension() {
    ++suspended;
}

Suspension::~Suspension() {
    --suspended;
}

bool fails(Kind kind) {
    const Plan& wanted = plan();
    if (wanted.kind != kind || suspended != 0) return false;
    const std::uint64_t call = std::atomic_ref(counts->calls).fetch_add(1) + 1;
    if (wanted.first == 0 || call < wanted.first) return false;
    if (call > wanted.first && !wanted.goes_on) return false;
    std::atomic_ref(counts->failed).fetch_add(1);
    if (is_traced && call == wanted.first) {
        const Suspension suspension;
        trace();
    }
    return true;
}

}  // namespace faults
