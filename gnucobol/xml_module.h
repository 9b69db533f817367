// The module, loaded once for the process as any host loads it.
#pragma once

#include <cstdint>

#include "host/runtime/module.h"

namespace gnucobol {

// Loads the module at the first call. Throws std::runtime_error when that fails.
const host::Module& xml_module();

// Lets documents be read whose tables have a single entry, unless SXML_EXACT_TABLE_MATCH is set.
// Elements in such an entry carry no number for it: read strictly, a table in it would be lost.
void read_single_entries();

// Is told, while a record is being read, of each condition that holds, before the fields that
// belong to it are filled.
class ConditionWatch {
  public:
    ConditionWatch() = default;
    ConditionWatch(const ConditionWatch&) = delete;
    ConditionWatch& operator=(const ConditionWatch&) = delete;
    virtual ~ConditionWatch() = default;
    virtual void condition_holds(int number) = 0;
};

// The watch for what is read on this thread from now on; null for none.
void watch_conditions(ConditionWatch* watch);

}  // namespace gnucobol
