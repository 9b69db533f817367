#include "tools/sxml/document.h"

#include <cerrno>

#include "host/errors.h"
#include "host/runtime/streams.h"
#include "records/description.h"
#include "records/numbers.h"
#include "tools/sxml/conditions.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

// Keeps a document that was given up half-way reachable until the process ends.
XmlFile* abandoned_file = nullptr;

std::string shown_name(const std::string& name) {
    return name == "-" ? "standard output" : name;
}

[[noreturn]] void fail_open(const std::string& name, int error) {
    if (*host_file_error() == HOST_FILE_NO_MEMORY) fail("there is not enough memory");
    if (!records::last_description_error().empty()) fail(records::last_description_error());
    fail_file(name, error);
}

}  // namespace

host::Module load_module() {
    return load_module(&Q4ParseXFD, &give_condition_result, &Qconvert);
}

host::Module load_module(Q4ParseXFDFunction* parse, Q4TestCOBOLCondFunction* test_condition,
                         QconvertFunction* convert) {
    const auto function = [](auto* pointer) { return reinterpret_cast<HostFunction*>(pointer); };
    return host::Module::load("", {
                                      {"Q4ParseXFD", function(parse)},
                                      {"Q4XFDFree", function(&Q4XFDFree)},
                                      {"Q4TestCOBOLCond", function(test_condition)},
                                      {"Qconvert", function(convert)},
                                  });
}

void check_written(std::initializer_list<const AtomicOutput*> outputs) {
    const std::optional<host::WriteFailure> failure = host::take_write_failure();
    if (!failure) return;
    for (const AtomicOutput* output : outputs) {
        if (failure->file == output->write_name()) {
            fail_file(shown_name(output->target()), failure->error);
        }
    }
    fail_file(shown_name(failure->file), failure->error);
}

Document::Document(const host::Module& module, const AtomicOutput& output)
    : module_(module), output_(output) {
    errno = 0;
    file_ = module.open(output.write_name().c_str(), XML_OPEN_OUTPUT);
    if (file_ == nullptr) fail_open(shown_name(output.target()), errno);
}

Document::~Document() {
    if (file_ == nullptr) return;
    if (output_.is_direct()) {
        abandoned_file = file_;
    } else {
        module_.close(file_);
    }
}

void Document::close() {
    module_.close(file_);
    file_ = nullptr;
}

}  // namespace command
