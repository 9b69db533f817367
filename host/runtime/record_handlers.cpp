#include "host/runtime/record_handlers.h"

namespace host {

namespace {

constinit FindRecordHandler* finder = nullptr;

}  // namespace

void find_record_handlers(FindRecordHandler* find) {
    finder = find;
}

}  // namespace host

HostRecordHandler* host_record_handler(Xfd* xfd) {
    return host::finder != nullptr ? host::finder(xfd) : nullptr;
}
