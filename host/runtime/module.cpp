#include "host/runtime/module.h"

#include <array>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <string_view>

#include "host/errors.h"
#include "host/runtime/library_files.h"
#include "host/runtime/memory/memory_failure.h"
#include "platform/environment.h"
#include "platform/libraries.h"

namespace host {

namespace {

template <class Function>
Function* as_function(HostEntry* entry) {
    return reinterpret_cast<Function*>(entry);
}

// Stands in for functions that this host does not have. The module does not test them for null.
void* missing_function() {
    return nullptr;
}

std::string module_path(const std::string& path) {
    if (!path.empty()) return path;
    const char* named = platform::trusted_environment_variable("SXML_MODULE");
    if (named != nullptr && *named != '\0') return named;
    return library_file(PLATFORM_MODULE_FILE);
}

void hand_over(XmlSetHostFunctionEntry* set, const std::vector<NamedFunction>& functions) {
    const NamedFunction own[] = {
        {"f_remove", reinterpret_cast<HostFunction*>(&f_remove)},
        {"f_rename", reinterpret_cast<HostFunction*>(&f_rename)},
        {"f_copy", reinterpret_cast<HostFunction*>(&f_copy)},
    };
    for (const NamedFunction& function : own) set(function.name, function.function);
    for (const NamedFunction& function : functions) set(function.name, function.function);
    constexpr int most_names = 1000;  // against a module that always asks for one more
    for (int i = 0; i < most_names; ++i) {
        const auto* name = static_cast<const char*>(set(nullptr, nullptr));
        if (name == nullptr) return;
        set(name, reinterpret_cast<HostFunction*>(&missing_function));
    }
}

// Without memory for its own notes the loader says of a file that it is not there, or that it
// cannot create or allocate something.
bool is_for_want_of_memory(const std::string& file, std::string_view reason) {
    for (const char* sign : {": cannot create ", ": cannot allocate ", "out of memory"}) {
        if (reason.find(sign) != std::string_view::npos) return true;
    }
    return reason.starts_with(file + ": cannot open shared object file: No such") &&
           std::filesystem::exists(file);
}

}  // namespace

Module Module::load(const std::string& path, const std::vector<NamedFunction>& functions) {
    const std::string file = module_path(path);
    Module module;
    std::array<char, 1024> reason{};
    module.library_ = platform_open_library(file.c_str(), reason.data(), reason.size());
    if (module.library_ == nullptr) {
        if (is_for_want_of_memory(file, reason.data())) throw std::bad_alloc();
        throw std::runtime_error("cannot load the module " + file + ": " + reason.data());
    }
    auto* get_table =
        reinterpret_cast<GetDispatchTableFunction*>(module.symbol("GetDispatchTable"));
    if (get_table == nullptr || get_table(&module.table_) != 0 || module.table_ == nullptr) {
        throw std::runtime_error(file + " is not a module: it provides no dispatch table");
    }
    for (const DispatchSlot needed : {SLOT_INIT, SLOT_SET_HOST_FUNCTION, SLOT_REGISTER_SETTINGS,
                                      SLOT_MAKE, SLOT_OPEN, SLOT_CLOSE, SLOT_READ, SLOT_WRITE}) {
        if (module.slot(needed) != nullptr) continue;
        throw std::runtime_error(file + ": slot " + std::to_string(needed) +
                                 " of the dispatch table is empty");
    }
    std::int32_t version = 0;
    as_function<XmlInitEntry>(module.slot(SLOT_INIT))(nullptr, &version);
    hand_over(as_function<XmlSetHostFunctionEntry>(module.slot(SLOT_SET_HOST_FUNCTION)), functions);
    as_function<XmlRegisterSettingsEntry>(module.slot(SLOT_REGISTER_SETTINGS))();
    // Settings that are not registered would have other values than those declared.
    if (take_memory_failure()) throw std::bad_alloc();
    return module;
}

void* Module::symbol(const char* name) const {
    return platform_library_symbol(library_, name);
}

void* Module::ordinal(int number) const {
    return platform_library_ordinal(library_, number);
}

int Module::make(const char* name, const char* params) const {
    return as_function<XmlMakeEntry>(slot(SLOT_MAKE))(name, params);
}

XmlFile* Module::open(const char* name, std::int32_t mode) const {
    return as_function<XmlOpenEntry>(slot(SLOT_OPEN))(name, mode, 0, 0, 0, 0, nullptr, 0);
}

int Module::close(XmlFile* file) const {
    return as_function<XmlCloseEntry>(slot(SLOT_CLOSE))(file);
}

int Module::read(XmlFile* file, void* record) const {
    return as_function<XmlReadEntry>(slot(SLOT_READ))(file, record);
}

bool Module::read_to_end(XmlFile* file, void* record) const {
    constexpr std::int32_t NOT_TOLD = -1;
    const std::int16_t& code = *host_file_error();
    std::int32_t& missing = *host_error_subcode();
    int result = 0;
    do {
        missing = NOT_TOLD;
        result = read(file, record);
    } while (result == 0 && code == HOST_FILE_END && missing == NOT_TOLD);
    return code == HOST_FILE_END && missing == 0;
}

int Module::write(XmlFile* file, const void* record, std::uint32_t length) const {
    return as_function<XmlWriteEntry>(slot(SLOT_WRITE))(file, record, length);
}

}  // namespace host
