// Loading the module as a host does: dispatch table, initialisation, host functions, settings.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/dispatch_table.h"
#include "host/runtime/runtime_api.h"

namespace host {

// A function handed to the module by name.
struct NamedFunction {
    const char* name;
    HostFunction* function;
};

// The loaded module. It stays loaded until the process ends.
class RUNTIME_API Module {
  public:
    // Loads the module from `path` (empty: $SXML_MODULE, or sxml.so where library_file finds it),
    // initialises it, hands over `functions` together with f_remove, f_rename and f_copy, and
    // registers its settings. Throws std::runtime_error saying what went wrong with which file.
    static Module load(const std::string& path, const std::vector<NamedFunction>& functions);

    HostEntry* slot(DispatchSlot slot) const { return table_[slot]; }
    // The address of a named export, null when there is none.
    void* symbol(const char* name) const;
    // The same of an export that has a number.
    void* ordinal(int number) const;

    int make(const char* name, const char* params) const;
    XmlFile* open(const char* name, std::int32_t mode) const;
    int close(XmlFile* file) const;
    int read(XmlFile* file, void* record) const;
    // Reads on after the last record, as a read that gave 0 with file error code 8 leaves the
    // file, to the end of the document. False when something is missing or wrong there; file error
    // code and subcode tell. `record` is not filled.
    bool read_to_end(XmlFile* file, void* record) const;
    int write(XmlFile* file, const void* record, std::uint32_t length) const;

  private:
    void* library_ = nullptr;
    HostEntry* const* table_ = nullptr;
};

}  // namespace host

// Answers host_plugin_query: non-zero (the default) grants encoding support. Tests turn it off
// before they load the module.
namespace host {
RUNTIME_API void grant_encoding_support(bool granted);
}

// Functions of the host handed to the module by name. Result: 1, or 0 with the system's last error
// number. f_copy replaces the target only when the copy is complete.
extern "C" {
RUNTIME_API int f_remove(const char* name);
RUNTIME_API int f_rename(const char* old_name, const char* new_name);
RUNTIME_API int f_copy(const char* source, const char* target);
}
