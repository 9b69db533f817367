// Name tables: tracked blocks stored under names.
#pragma once

#include <cstddef>

#include "host/export.h"

struct HostTable;

// Stores a block from host_alloc under a name of at most 255 characters (a longer one is cut),
// creating the table when given null. A value that was stored under the name before is released.
// Result: the table, which owns the value from now on; null when memory is exhausted, and then
// neither the old table nor the value has changed hands.
HOST_API HostTable* host_table_put(HostTable* table, const char* name, void* value,
                                   const char* source, int line, const char* description,
                                   int flags);
// The value stored under a name; null when there is none.
HOST_API void* host_table_get(const HostTable* table, const char* name);
// Number of names; 0 for null. The name at `index` in order of first storing; null out of range.
HOST_API std::size_t host_table_count(const HostTable* table);
HOST_API const char* host_table_name(const HostTable* table, std::size_t index);
// Releases the table with its values. Null is allowed.
HOST_API void host_table_free(HostTable* table, const char* source, int line);
