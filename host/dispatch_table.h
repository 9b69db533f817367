// What the module hands to its host: the one named entry point, the table of entries behind it, and
// the signatures by which the host calls them.
#pragma once

#include <cstddef>
#include <cstdint>

struct XmlFile;  // an open file; belongs to the module

extern "C" {
using HostEntry = void();  // an entry whose signature its slot tells
using HostFunction = void();

// Takes two arguments, no more; both go to host_plugin_query as they are. The module's answer, 3,
// is stored in `version`. Result: 1.
using XmlInitEntry = int(void* first, std::int32_t* version);
using XmlTermEntry = void();
// `tag` receives 4 bytes, `expat_version` Expat's version text, `label` 21 bytes.
using XmlVersionInfoEntry = int(void* tag, char* expat_version, char* label);
// With a name: stores the function under it, gives the one stored before. With null: gives the name
// of the first function that is still missing, or null.
using XmlSetHostFunctionEntry = const void*(const char* name, HostFunction* function);
using XmlRegisterSettingsEntry = int();
using XmlMakeEntry = int(const char* name, const char* params);
using XmlOpenEntry = XmlFile*(const char* name, std::int32_t mode, std::int32_t p3, std::int32_t p4,
                              std::int32_t p5, std::int32_t p6, const char* p7, std::int32_t p8);
using XmlCloseEntry = int(XmlFile* file);
using XmlReadEntry = int(XmlFile* file, void* record);
using XmlWriteEntry = int(XmlFile* file, const void* record, std::uint32_t length);
using XmlUnsupportedEntry = int();
using XmlRemoveEntry = int(const char* name);
using XmlRenameEntry = int(const char* old_name, const char* new_name);
using XmlCopyEntry = int(const char* source, const char* target);

// Stores the address of the dispatch table; 0, or 1 when table_out is null.
using GetDispatchTableFunction = int(HostEntry* const** table_out);
}

constexpr std::size_t DISPATCH_SLOT_COUNT = 56;
// Slots not named here are null.
enum DispatchSlot : std::size_t {
    SLOT_INIT = 0,
    SLOT_TERM = 1,
    SLOT_VERSION_INFO = 17,
    SLOT_SET_HOST_FUNCTION = 25,
    SLOT_REGISTER_SETTINGS = 26,
    SLOT_MAKE = 44,
    SLOT_OPEN = 45,
    SLOT_CLOSE = 46,
    SLOT_READ = 47,
    SLOT_WRITE = 48,
    SLOT_UNSUPPORTED_A = 49,
    SLOT_REMOVE = 50,
    SLOT_RENAME = 51,
    SLOT_COPY = 52,
    SLOT_UNSUPPORTED_B = 53
};

// The low two bits of an open mode.
constexpr std::int32_t XML_OPEN_INPUT = 0;
constexpr std::int32_t XML_OPEN_OUTPUT = 1;
