// A weak reference is null where the host library does not define it.
#include "fsi/xml/sxml/optional_services.h"

HostRecordHandler* optional_record_handler(Xfd* xfd) {
    return host_record_handler != nullptr ? host_record_handler(xfd) : nullptr;
}
