// Tracked allocation: counts, failure switch and guards around the block store.
#include "host/memory.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <unordered_set>
#include <utility>

#include "host/runtime/memory/block_store.h"
#include "host/runtime/memory/immortal.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/memory/sites.h"
#include "host/runtime/memory/tracked_memory.h"

namespace host {
namespace memory {
namespace {

constexpr unsigned char GUARD_BYTE = 0xA5;
constexpr unsigned char FRESH_BYTE = 0xCD;  // fills raw blocks in builds with guards
constexpr unsigned char FREED_BYTE = 0xDD;

struct Counters {
    std::uint64_t allocations;
    std::uint64_t live_bytes;
    std::uint64_t damaged;
    std::uint64_t until_failure;  // allocations up to and including the one that fails; 0 = off
    std::uint64_t limit = UINT64_MAX;  // for live_bytes
    bool failed;
    bool limit_was_met;
};

constinit Counters counters{};
// The addresses of live blocks, kept in builds with guards only, to recognise a second release.
constinit Immortal<std::unordered_set<const void*>*> live_addresses;

std::unordered_set<const void*>& addresses() {
    if (*live_addresses == nullptr) *live_addresses = new std::unordered_set<const void*>;
    return **live_addresses;
}

// Notes a live block's address. False when there is no memory for the note.
bool note_address(const void* block) {
    if constexpr (!HAS_GUARDS) return true;
    try {
        addresses().insert(block);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

// The note of a block that has moved is kept, so that this takes no memory.
void change_address(const void* from, const void* to) {
    if constexpr (!HAS_GUARDS) return;
    auto note = addresses().extract(from);
    note.value() = to;
    addresses().insert(std::move(note));
}

// Counts one allocation. False when it is the one that shall fail.
bool may_allocate() {
    ++counters.allocations;
    if (counters.until_failure == 0 || --counters.until_failure != 0) return true;
    counters.failed = true;
    return false;
}

// False when `more` bytes would be beyond the limit.
bool is_within_limit(std::uint64_t more) {
    return counters.live_bytes <= counters.limit && more <= counters.limit - counters.live_bytes;
}

// Notes that there were not `more` bytes, and whether the limit was why. What succeeds afterwards
// does not change the reason.
void note_failure(std::uint64_t more) {
    counters.limit_was_met = !is_within_limit(more);
    note_memory_failure();
}

void report_damage(const void* block, const Origin& origin, const char* what) {
    ++counters.damaged;
    std::fprintf(stderr, "sxml: block %p, %s line %d, \"%s\": %s\n", block, origin.source,
                 origin.line, origin.description, what);
}

void set_guards(BlockHeader* header) {
    if constexpr (HAS_GUARDS) {
        char* payload = static_cast<char*>(payload_of(header));
        std::fill_n(payload - GUARD_SIZE, GUARD_SIZE, static_cast<char>(GUARD_BYTE));
        std::fill_n(payload + block_size(header), GUARD_SIZE, static_cast<char>(GUARD_BYTE));
    }
}

bool is_guard(const char* bytes) {
    for (std::size_t i = 0; i < GUARD_SIZE; ++i) {
        if (static_cast<unsigned char>(bytes[i]) != GUARD_BYTE) return false;
    }
    return true;
}

// False when the address is not a live block's: the caller then leaves it alone.
bool check_block(void* block) {
    if constexpr (!HAS_GUARDS) return true;
    if (!addresses().contains(block)) {
        report_damage(block, {"(unknown)", 0, "(unknown)"}, "released twice or never allocated");
        return false;
    }
    const BlockHeader* header = header_of(block);
    const char* payload = static_cast<const char*>(block);
    if (!is_guard(payload - GUARD_SIZE)) {
        report_damage(block, site(header->site).origin, "bytes before the block overwritten");
    }
    if (!is_guard(payload + block_size(header))) {
        report_damage(block, site(header->site).origin, "bytes after the block overwritten");
    }
    return true;
}

void count_in(const BlockHeader* header) {
    Site& place = site(header->site);
    ++place.live_blocks;
    ++place.all_blocks;
    place.live_bytes += block_size(header);
    counters.live_bytes += gross_size(header);
}

void count_out(const BlockHeader* header) {
    Site& place = site(header->site);
    --place.live_blocks;
    place.live_bytes -= block_size(header);
    counters.live_bytes -= gross_size(header);
}

void* take_new_block(std::size_t size, bool zeroed, const Origin& origin) {
    std::uint32_t number = 0;
    if (!may_allocate() || !is_within_limit(size) || !find_site(origin, number)) return nullptr;
    BlockHeader* header = take_block(size, zeroed);
    if (header == nullptr) return nullptr;
    void* block = payload_of(header);
    if (!note_address(block)) {
        give_back(header);
        return nullptr;
    }
    header->sequence = counters.allocations & ((std::uint64_t{1} << 56) - 1);
    header->site = number;
    count_in(header);
    if (HAS_GUARDS && !zeroed) std::memset(block, FRESH_BYTE, size);
    set_guards(header);
    return block;
}

void* allocate_block(std::size_t size, bool zeroed, const Origin& origin) {
    void* block = take_new_block(size, zeroed, origin);
    if (block == nullptr) note_failure(size);
    return block;
}

}  // namespace

void* allocate(std::size_t size, const Origin& origin) {
    return allocate_block(size, false, origin);
}

void* allocate_zeroed(std::size_t size, const Origin& origin) {
    return allocate_block(size, true, origin);
}

void* reallocate(void* block, std::size_t size, const char* source, int line) {
    if (!check_block(block)) return nullptr;
    BlockHeader* header = header_of(block);
    std::uint32_t number = 0;
    const std::size_t present = block_size(header);
    const std::size_t more = size > present ? size - present : 0;
    if (!may_allocate() || (more > 0 && !is_within_limit(more)) ||
        !find_site({source, line, description_of(block)}, number)) {
        note_failure(more);
        return nullptr;
    }
    count_out(header);
    BlockHeader* moved = resize_block(header, size);
    if (moved == nullptr) {
        count_in(header);
        --site(header->site).all_blocks;
        note_failure(more);
        return nullptr;
    }
    moved->site = number;
    count_in(moved);
    set_guards(moved);
    change_address(block, payload_of(moved));
    return payload_of(moved);
}

void release(void* block) {
    if (block == nullptr) return;
    if (!check_block(block)) return;
    BlockHeader* header = header_of(block);
    count_out(header);
    if constexpr (HAS_GUARDS) {
        std::memset(block, FREED_BYTE, block_size(header));
        addresses().erase(block);
    }
    give_back(header);
}

const char* description_of(const void* block) {
    return site(header_of(block)->site).origin.description;
}

}  // namespace memory

std::uint64_t allocation_count() {
    return memory::counters.allocations;
}
std::uint64_t live_bytes() {
    return memory::counters.live_bytes;
}
std::uint64_t damaged_blocks() {
    return memory::counters.damaged;
}
bool guards_blocks() {
    return memory::HAS_GUARDS;
}

void fail_allocation(std::uint64_t n) {
    memory::counters.until_failure = n;
    memory::counters.failed = false;
}

bool allocation_failed() {
    return memory::counters.failed;
}

void limit_memory(std::uint64_t bytes) {
    memory::counters.limit = bytes == 0 ? UINT64_MAX : bytes;
}

const char* memory_problem() {
    return memory::counters.limit_was_met ? "more memory is needed than SXML_MEMORY_LIMIT allows; "
                                            "raise it if the input is sound"
                                          : "there is not enough memory";
}

}  // namespace host

using namespace host;

void* host_alloc(std::size_t size, int kind, const char* source, int line, const char* description,
                 int /*flags*/) {
    const memory::Origin origin{source, line, description};
    return kind == HOST_BLOCK_ZEROED ? memory::allocate_zeroed(size, origin)
                                     : memory::allocate(size, origin);
}

void* host_realloc(void* block, std::size_t size, const char* source, int line, int /*flags*/) {
    if (block == nullptr) return memory::allocate(size, {source, line, "reallocated block"});
    return memory::reallocate(block, size, source, line);
}

void host_free(void* block, const char* /*source*/, int /*line*/, int /*flags*/) {
    memory::release(block);
}

char* host_strdup(const char* text, const char* source, int line) {
    if (text == nullptr) return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    void* copy = memory::allocate(size, {source, line, "text copy"});
    if (copy != nullptr) std::memcpy(copy, text, size);
    return static_cast<char*>(copy);
}
