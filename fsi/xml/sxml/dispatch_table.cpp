#include "host/dispatch_table.h"

#include <expat.h>

#include <cstring>
#include <iterator>

#include "fsi/xml/sxml/entries.h"
#include "fsi/xml/sxml/plugin.h"
#include "host/errors.h"
#include "host/startup.h"

std::int32_t encoding_support = 0;

namespace {

template <typename Entry>
HostEntry* entry(Entry* function) {
    return reinterpret_cast<HostEntry*>(function);
}

// A slot's place tells the host what the entry does; a null slot is an operation not provided.
HostEntry* const dispatch_table[] = {
    entry(xml_init),
    entry(xml_term),  // 0
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,  // 2
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,  // 7
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,                  // 12
    entry(xml_version_info),  // 17
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,  // 18
    entry(xml_set_host_function),
    entry(xml_register_settings),  // 25
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,  // 27
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,  // 34
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,  // 39
    entry(xml_smake),
    entry(xml_sopen),
    entry(xml_sclose),  // 44
    entry(xml_sread),
    entry(xml_swrite),
    entry(xml_sunsupported_a),  // 47
    entry(xml_sremove),
    entry(xml_srename),
    entry(xml_scopy),           // 50
    entry(xml_sunsupported_b),  // 53
    nullptr,
    nullptr  // 54
};
static_assert(std::size(dispatch_table) == DISPATCH_SLOT_COUNT);

constexpr std::int32_t ANSWER_TO_INIT = 3;

int unsupported(int result) {
    *host_file_error() = HOST_FILE_UNSUPPORTED;
    return result;
}

}  // namespace

LIBRARY_ENTRY int GetDispatchTable(HostEntry* const** table_out) {
    if (table_out == nullptr) return 1;
    *table_out = dispatch_table;
    return 0;
}

int xml_init(void* first, std::int32_t* version) {
    const int granted = host_plugin_query(first, version);
    *version = ANSWER_TO_INIT;
    if (granted != 0) encoding_support = 1;
    return 1;
}

// Every file's resources go with its close, so there is nothing left to release.
void xml_term() {}

int xml_version_info(void* tag, char* expat_version, char* label) {
    std::memcpy(tag, "XML", 4);
    const char* const version = XML_ExpatVersion();
    std::memcpy(expat_version, version, std::strlen(version) + 1);
    std::memcpy(label, VERSION_LABEL, sizeof VERSION_LABEL);
    return 1;
}

int xml_sunsupported_a() {
    return unsupported(0);
}
int xml_sunsupported_b() {
    return unsupported(-1);
}
