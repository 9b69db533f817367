// The records of a name index in the order they were stored.
#pragma once

#include <cstddef>

struct HostNameIndex;

namespace host {

std::size_t index_count(const HostNameIndex* index);
// Null out of range.
void* index_record(const HostNameIndex* index, std::size_t number);

}  // namespace host
