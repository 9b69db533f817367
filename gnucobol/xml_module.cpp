#include "gnucobol/xml_module.h"

#include "host/config.h"
#include "host/records/description.h"
#include "host/records/numbers.h"
#include "host/runtime/settings.h"

namespace gnucobol {

namespace {

thread_local ConditionWatch* watch = nullptr;

template <class Function>
host::NamedFunction named(const char* name, Function* function) {
    return {name, reinterpret_cast<HostFunction*>(function)};
}

}  // namespace

void watch_conditions(ConditionWatch* new_watch) {
    watch = new_watch;
}

extern "C" {
static int test_watched_condition(Xfd* xfd, int number, const void* record) {
    const int holds = Q4TestCOBOLCond(xfd, number, record);
    if (holds != 0 && watch != nullptr) watch->condition_holds(number);
    return holds;
}
}

const host::Module& xml_module() {
    static const host::Module module = host::Module::load(
        "", {named("Q4ParseXFD", &Q4ParseXFD), named("Q4XFDFree", &Q4XFDFree),
             named("Q4TestCOBOLCond", &test_watched_condition), named("Qconvert", &Qconvert)});
    return module;
}

// The program may change its environment between two files, so our own value must not stand before
// it.
void read_single_entries() {
    constexpr const char* EXACT_TABLE_MATCH = "SXML_EXACT_TABLE_MATCH";
    host::set_config(EXACT_TABLE_MATCH, std::nullopt);
    if (host_config_string(EXACT_TABLE_MATCH, nullptr) == nullptr) {
        host::set_config(EXACT_TABLE_MATCH, "no");
    }
}

}  // namespace gnucobol
