// The records of a document, read by the module one at a time.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "host/runtime/module.h"
#include "tools/sxml/record_buffer.h"
#include "tools/sxml/record_fields.h"

namespace command {

// The functions that the module of such a document is loaded with.
host::Module load_module_for_input();

// One document is read at a time in the process.
class InputRecords {
  public:
    // `file` is the document's name, `shown_name` its name in messages. A description must have
    // been bound; `fields` and `buffer` are made for the same one. Throws Failure when the document
    // cannot be read up to its first record.
    InputRecords(const host::Module& module, const std::string& file, std::string shown_name,
                 const RecordFields& fields, RecordBuffer& buffer);
    ~InputRecords();
    InputRecords(const InputRecords&) = delete;
    InputRecords& operator=(const InputRecords&) = delete;

    // Fills the buffer. False at the end of the document. Throws Failure where the document ends
    // too early or is not well-formed.
    bool next();
    // Records read so far.
    std::uint64_t count() const { return count_; }
    // Reads what lies behind the last record, which must be well-formed and complete, too. Says how
    // many numbers were lost. Throws Failure.
    void finish();

  private:
    friend int test_input_condition(Xfd* xfd, int number, const void* record);
    friend int convert_input(XfdDataDesc* field, const XfdDataDesc* text, int mode);

    void read_to_end();
    [[noreturn]] void fail_document() const;
    void report_number(const XfdDataDesc& field, const XfdDataDesc& text);

    const host::Module& module_;
    std::string file_name_;
    std::string shown_name_;
    const RecordFields& fields_;
    RecordBuffer& buffer_;
    XmlFile* file_ = nullptr;
    std::uint64_t count_ = 0;
    std::uint64_t lost_numbers_ = 0;
};

}  // namespace command
