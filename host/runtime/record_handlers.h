// How the embedding program takes part in the records of files; see host/record_handler.h.
#pragma once

#include "host/record_handler.h"
#include "host/runtime/runtime_api.h"

namespace host {

// Gives the handler of the file that is being opened with a description; null for none.
using FindRecordHandler = HostRecordHandler*(Xfd* xfd);

// Installs this function; null removes it.
RUNTIME_API void find_record_handlers(FindRecordHandler* find);

}  // namespace host
