#include "gnucobol/xml_module.h"

#include "records/description.h"
#include "records/numbers.h"

namespace gnucobol {

namespace {

thread_local RecordWatch* watch = nullptr;

template <class Function>
host::NamedFunction named(const char* name, Function* function) {
    return {name, reinterpret_cast<HostFunction*>(function)};
}

}  // namespace

void watch_record(RecordWatch* new_watch) {
    watch = new_watch;
}

extern "C" {
static int test_watched_condition(Xfd* xfd, int number, const void* record) {
    const int holds = Q4TestCOBOLCond(xfd, number, record);
    if (holds != 0 && watch != nullptr) watch->condition_holds(number);
    return holds;
}

static int convert_watched(XfdDataDesc* destination, const XfdDataDesc* source, int mode) {
    const int result = Qconvert(destination, source, mode);
    if (watch != nullptr) watch->number_stored(destination->address);
    return result;
}
}

const host::Module& xml_module() {
    static const host::Module module =
        host::Module::load("", {named("Q4ParseXFD", &Q4ParseXFD), named("Q4XFDFree", &Q4XFDFree),
                                named("Q4TestCOBOLCond", &test_watched_condition),
                                named("Qconvert", &convert_watched)});
    return module;
}

}  // namespace gnucobol
