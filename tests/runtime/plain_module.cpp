// A minimal module that records what its host does with it.
#include <array>
#include <cstring>

#include "host/config.h"
#include "host/dispatch_table.h"
#include "host/startup.h"

namespace {

struct NamedSlot {
    const char* name;
    HostFunction* function;
};
std::array<NamedSlot, 4> functions = {
    {{"QTrace", nullptr}, {"Qconvert", nullptr}, {"f_remove", nullptr}, {"f_copy", nullptr}}};

const HostSetting SETTINGS[] = {
    {"SXML_PLAIN_SETTING", HOST_SETTING_WORD, {"plain"}, nullptr, 0, {}}};

int granted = -1;

int init(void* first, std::int32_t* version) {
    granted = host_plugin_query(first, version);
    *version = 3;
    return 1;
}

const void* set_function(const char* name, HostFunction* function) {
    for (NamedSlot& slot : functions) {
        if (name == nullptr) {
            if (slot.function == nullptr) return slot.name;
        } else if (std::strcmp(name, slot.name) == 0) {
            HostFunction* before = slot.function;
            slot.function = function;
            return reinterpret_cast<const void*>(before);
        }
    }
    return nullptr;
}

int register_settings() {
    return host_register_settings(SETTINGS, 1, 0);
}

// Calls the function handed over under the file's name; 1 when it gave null.
int make(const char* name, const char* /*params*/) {
    for (const NamedSlot& slot : functions) {
        if (std::strcmp(name, slot.name) != 0) continue;
        auto* function = reinterpret_cast<void* (*)()>(slot.function);
        return function() == nullptr ? 1 : 0;
    }
    return granted;
}

template <class Function>
HostEntry* entry(Function* function) {
    return reinterpret_cast<HostEntry*>(function);
}

int unused() {
    return 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int GetDispatchTable(HostEntry* const** out) {
    static std::array<HostEntry*, DISPATCH_SLOT_COUNT> table = {};
    table[SLOT_INIT] = entry(&init);
    table[SLOT_SET_HOST_FUNCTION] = entry(&set_function);
    table[SLOT_REGISTER_SETTINGS] = entry(&register_settings);
    table[SLOT_MAKE] = entry(&make);
    for (const DispatchSlot slot : {SLOT_OPEN, SLOT_CLOSE, SLOT_READ, SLOT_WRITE}) {
        table[slot] = entry(&unused);
    }
    *out = table.data();
    return 0;
}
