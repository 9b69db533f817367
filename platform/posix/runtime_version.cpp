#include "platform/runtime_version.h"

#include <gnu/libc-version.h>

namespace platform {

RuntimeVersion c_runtime_version() {
    return {"glibc", std::string(gnu_get_libc_version()) + " (iconv)"};
}

}  // namespace platform
