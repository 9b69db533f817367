#include "platform/runtime_version.h"

#include <windows.h>

namespace platform {

RuntimeVersion c_runtime_version() {
    OSVERSIONINFOW system{};
    system.dwOSVersionInfoSize = sizeof system;
    GetVersionExW(&system);
    return {"Windows", std::to_string(system.dwMajorVersion) + "." +
                           std::to_string(system.dwMinorVersion) + "." +
                           std::to_string(system.dwBuildNumber)};
}

}  // namespace platform
