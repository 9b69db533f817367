// An import that is missing keeps a library from being loaded, so the host library is asked.
#include <windows.h>

#include "fsi/xml/sxml/optional_services.h"

namespace {

using Service = HostRecordHandler* (*)(Xfd*);

Service service() {
    const HMODULE host = GetModuleHandleA(SXML_HOST_LIBRARY);
    if (host == nullptr) return nullptr;
    return reinterpret_cast<Service>(
        reinterpret_cast<void*>(GetProcAddress(host, "host_record_handler")));
}

}  // namespace

HostRecordHandler* optional_record_handler(Xfd* xfd) {
    const Service find = service();
    return find != nullptr ? find(xfd) : nullptr;
}
