#include "platform/environment.h"

#include <array>
#include <map>
#include <mutex>
#include <string>

#include "platform/windows/system_texts.h"

namespace platform {

namespace {

// The process has one environment, whatever C runtimes it has; values are kept here as UTF-8.
struct Values {
    std::mutex mutex;
    std::map<std::string, std::string, std::less<>> known;
};

Values& values() {
    static auto* const all = new Values;  // asked for while the process ends, too
    return *all;
}

// False when there is no such variable.
bool read_variable(const char* name, std::wstring& value) {
    constexpr DWORD USUAL_SIZE = 256;
    const std::wstring wide_name = wide(name);
    value.resize(USUAL_SIZE);
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        const auto size = static_cast<DWORD>(value.size());
        const DWORD length = GetEnvironmentVariableW(wide_name.c_str(), value.data(), size);
        if (length == 0 && GetLastError() != ERROR_SUCCESS) return false;
        value.resize(length);
        if (length < size) return true;
    }
}

}  // namespace

const char* environment_variable(const char* name) {
    std::wstring found;
    if (!read_variable(name, found)) return nullptr;
    std::string value = narrow(found);
    const std::lock_guard lock(values().mutex);
    std::string& kept = values().known[name];
    if (kept != value) kept = std::move(value);
    return kept.c_str();
}

// No program has more rights than the user who starts it.
const char* trusted_environment_variable(const char* name) {
    return environment_variable(name);
}

}  // namespace platform
