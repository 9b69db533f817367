#include "platform/interrupts.h"

#include <utility>

#include "platform/interrupt_entries.h"

namespace platform {

constinit std::atomic<InterruptEntry*> interrupt_entries = nullptr;
static_assert(std::atomic<InterruptEntry*>::is_always_lock_free &&
              std::atomic<bool>::is_always_lock_free);

namespace {

InterruptEntry* unused_entry() {
    for (InterruptEntry* entry = interrupt_entries; entry != nullptr; entry = entry->next) {
        if (!entry->is_used) return entry;
    }
    auto* entry = new InterruptEntry;
    entry->next = interrupt_entries;
    interrupt_entries = entry;
    return entry;
}

}  // namespace

RemovedOnInterrupt::RemovedOnInterrupt(const std::string& path) {
    std::filesystem::path whole = absolute_path(path);
    entry_ = unused_entry();
    entry_->path = std::move(whole);
    entry_->owner = process_number();
    entry_->is_used = true;
}

RemovedOnInterrupt::RemovedOnInterrupt(RemovedOnInterrupt&& other) noexcept
    : entry_(std::exchange(other.entry_, nullptr)) {}

RemovedOnInterrupt& RemovedOnInterrupt::operator=(RemovedOnInterrupt&& other) noexcept {
    std::swap(entry_, other.entry_);
    return *this;
}

RemovedOnInterrupt::~RemovedOnInterrupt() {
    if (entry_ != nullptr) entry_->is_used = false;
}

}  // namespace platform
