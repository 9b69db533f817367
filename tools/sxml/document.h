// A document that the module writes, one record at a time.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "host/record_description.h"
#include "host/runtime/module.h"
#include "tools/sxml/atomic_output.h"

namespace command {

// Loads the module and hands it the functions of the record descriptions. Throws
// std::runtime_error.
host::Module load_module();
// The same with other functions for descriptions, conditions and conversion.
host::Module load_module(Q4ParseXFDFunction* parse, Q4TestCOBOLCondFunction* test_condition,
                         QconvertFunction* convert);

// Throws Failure when something that the module has written so far could not be stored (a full
// disk, say). `outputs` are those that were being written, so that the message gives the name that
// the user knows.
void check_written(std::initializer_list<const AtomicOutput*> outputs);

// Closing a document writes its end tag, so a document that fails half-way must not be closed where
// readers can see it: one that is written directly (a pipe, say) is then left open without its end
// tag; one that has a temporary name is closed and disappears with that.
class Document {
  public:
    // Opens it for output: the prologue up to the start tag of the document element is written.
    // A description must have been bound. Throws Failure.
    Document(const host::Module& module, const AtomicOutput& output);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    void write(const void* record, std::int32_t length) {
        module_.write(file_, record, static_cast<std::uint32_t>(length));
    }
    // Writes the end tag. Whether all of it could be stored, check_written() tells.
    void close();

  private:
    const host::Module& module_;
    const AtomicOutput& output_;
    XmlFile* file_ = nullptr;
};

}  // namespace command
