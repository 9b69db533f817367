#include "host/startup.h"

#include "host/runtime/module.h"

namespace host {

namespace {

constinit bool encoding_support = true;

}  // namespace

void grant_encoding_support(bool granted) {
    encoding_support = granted;
}

}  // namespace host

int host_plugin_query(void* /*first*/, std::int32_t* /*version*/) {
    return host::encoding_support ? 1 : 0;
}
