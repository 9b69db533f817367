#include "conversion/session/module.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <iterator>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <vector>

#include "host/config.h"
#include "host/errors.h"
#include "host/runtime/memory/memory_failure.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/record_handlers.h"
#include "host/runtime/streams.h"
#include "records/numbers.h"

namespace conversion {

namespace {

// The file that the module is opening on this thread: the module asks for its description and its
// handler while the call lasts.
struct Opening {
    const std::string& document_element;
    HostRecordHandler& handler;
    Xfd* xfd;
};
thread_local Opening* opening = nullptr;

HostRecordHandler* handler_being_opened(Xfd* xfd) {
    if (opening == nullptr) return nullptr;
    opening->xfd = xfd;
    const std::string& name = opening->document_element;
    if (!name.empty()) std::memcpy(xfd->name, name.c_str(), name.size() + 1);
    return &opening->handler;
}

class OpeningScope {
  public:
    OpeningScope(Opening& now, const records::Description& description) {
        opening = &now;
        records::bind_description(&description);
    }
    ~OpeningScope() {
        records::bind_description(nullptr);
        opening = nullptr;
    }
    OpeningScope(const OpeningScope&) = delete;
    OpeningScope& operator=(const OpeningScope&) = delete;
};

template <class Function>
host::NamedFunction named(const char* name, Function* function) {
    return {name, reinterpret_cast<HostFunction*>(function)};
}

// Documents that our faces read may take the module's lane for plain records, unless the user says
// otherwise.
constexpr HostSetting SETTINGS[] = {
    {"SXML_PLAIN_RECORDS", HOST_SETTING_FLAG, {.number = 1}, nullptr, 0, {}}};

host::Module load() {
    host::Module module = host::Module::load(
        "", {named("Q4ParseXFD", &Q4ParseXFD), named("Q4XFDFree", &Q4XFDFree),
             named("Q4TestCOBOLCond", &Q4TestCOBOLCond), named("Qconvert", &Qconvert)});
    if (host_register_settings(SETTINGS, static_cast<int>(std::size(SETTINGS)), 0) == 0) {
        throw std::bad_alloc();
    }
    host::find_record_handlers(&handler_being_opened);
    return module;
}

std::string error_text(int error) {
    return std::error_code(error, std::generic_category()).message();
}

Problem exhausted_memory() {
    return {Cause::no_memory, {}, host::memory_problem(), {}};
}

Problem problem_of(const host::StreamFailure& failure) {
    return {cause_of(failure.error),
            {.file = failure.file},
            error_text(failure.error),
            {},
            failure.error};
}

Problem problem_of_opening(const FileToOpen& file) {
    const int error = host::take_open_failure();
    Place place{.file = file.shown_name.empty() ? file.name : file.shown_name};
    if (*host_file_error() == HOST_FILE_NO_MEMORY) {
        return exhausted_memory();
    }
    if (!records::last_description_error().empty()) {
        return {Cause::layout, std::move(place), records::last_description_error(), {}};
    }
    return {cause_of(error),
            std::move(place),
            error != 0 ? error_text(error) : "the file cannot be opened",
            {},
            error};
}

// Failures of files that were not asked for yet. The host has one list for all files.
struct WriteFailures {
    std::mutex mutex;
    std::vector<host::StreamFailure> known;
};

WriteFailures& write_failures() {
    static auto* const failures = new WriteFailures;  // documents may be closed at exit
    return *failures;
}

template <class Wanted>
Done take_failure(const Wanted& is_wanted) {
    if (host::take_memory_failure()) return exhausted_memory();
    WriteFailures& failures = write_failures();
    const std::lock_guard lock(failures.mutex);
    while (std::optional<host::StreamFailure> next = host::take_write_failure()) {
        failures.known.push_back(std::move(*next));
    }
    const auto found = std::find_if(failures.known.begin(), failures.known.end(), is_wanted);
    if (found == failures.known.end()) return std::nullopt;
    const host::StreamFailure failure = std::move(*found);
    failures.known.erase(found);
    return problem_of(failure);
}

}  // namespace

Result<const host::Module*> xml_module() {
    try {
        static const host::Module module = load();
        return &module;
    } catch (const std::bad_alloc&) {
        return exhausted_memory();
    } catch (const std::exception& failure) {
        return Problem{Cause::input_output, {}, failure.what(), {}};
    }
}

Result<ModuleFile> open_module_file(const host::Module& module, const FileToOpen& file,
                                    const records::Description& description,
                                    HostRecordHandler& handler) {
    const std::string& element = file.document_element;
    if (element.size() >= XFD_NAME_SIZE || element.find('\0') != std::string::npos) {
        return Problem{Cause::usage,
                       {},
                       element + " cannot be the name of a document element",
                       "take a name of at most 197 bytes"};
    }
    Opening now{element, handler, nullptr};
    const OpeningScope scope(now, description);
    host::take_open_failure();
    XmlFile* const opened = module.open(file.name.c_str(), file.direction);
    Done hidden = take_hidden_failure();
    if (opened == nullptr) return hidden ? *hidden : problem_of_opening(file);
    if (hidden) {
        module.close(opened);
        return *std::move(hidden);
    }
    return ModuleFile{opened, now.xfd};
}

Done take_hidden_failure() {
    if (host::take_memory_failure()) return exhausted_memory();
    const std::optional<host::StreamFailure> failure = host::take_read_failure();
    return failure ? Done(problem_of(*failure)) : std::nullopt;
}

Done take_write_failure(const std::string& file) {
    return take_failure([&file](const host::StreamFailure& failure) {
        return failure.file.empty() || failure.file == file;
    });
}

Done take_write_failure() {
    return take_failure([](const host::StreamFailure&) { return true; });
}

}  // namespace conversion
