// The module, loaded once for the process as any host loads it.
#pragma once

#include <cstdint>

#include "host/runtime/module.h"

namespace gnucobol {

// Loads the module at the first call. Throws std::runtime_error when that fails.
const host::Module& xml_module();

// Is told what happens while a record is being read.
class RecordWatch {
  public:
    RecordWatch() = default;
    RecordWatch(const RecordWatch&) = delete;
    RecordWatch& operator=(const RecordWatch&) = delete;
    virtual ~RecordWatch() = default;
    // A condition holds; the fields that belong to it are filled next.
    virtual void condition_holds(int number) = 0;
    // A number has been stored at this place in the record.
    virtual void number_stored(const void* place) = 0;
};

// The watch for what is read on this thread from now on; null for none.
void watch_record(RecordWatch* watch);

}  // namespace gnucobol
