// The sequence of entries of a string object. The entries lie one after the other, each with a NUL
// after it, and once more joined by line feeds, so that reading them never takes memory.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/runtime/memory/tracked_memory.h"

namespace host {

struct StringEntries;

// Adds a text as one more entry, making the sequence when there is none. The text may lie in the
// sequence itself. False, with nothing visible changed, when memory is exhausted.
bool add_entry(StringEntries** entries, std::string_view text, const memory::Origin& origin);
// Null stands for an empty sequence in all of these.
std::size_t entry_count(const StringEntries* entries);
const char* entry_text(const StringEntries* entries, std::size_t index);
// The texts joined by line feeds, with a NUL after them unless there are no entries.
std::string_view joined_entries(const StringEntries* entries);
void clear_entries(StringEntries* entries);
void free_entries(StringEntries* entries);

}  // namespace host
