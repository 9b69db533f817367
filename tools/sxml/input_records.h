// The records of a document, read by the module one at a time.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "conversion/fields/single_entry.h"
#include "host/runtime/module.h"
#include "tools/sxml/field_warnings.h"
#include "tools/sxml/input_texts.h"
#include "tools/sxml/record_buffer.h"
#include "tools/sxml/record_fields.h"

namespace command {

// The functions that the module of such a document is loaded with.
host::Module load_module_for_input();

// One document is read at a time in the process.
class InputRecords {
  public:
    // `file` is the document's name, `shown_name` its name in messages. `description` must have
    // been bound; `fields`, `buffer` and `texts` are made for it. Throws Failure when the
    // document cannot be read up to its first record.
    InputRecords(const host::Module& module, const std::string& file, std::string shown_name,
                 const records::Description& description, const RecordFields& fields,
                 RecordBuffer& buffer, InputTexts& texts);
    ~InputRecords();
    InputRecords(const InputRecords&) = delete;
    InputRecords& operator=(const InputRecords&) = delete;

    // Fills the buffer. False at the end of the document. Throws Failure where the document ends
    // too early or is not well-formed.
    bool next();
    // Records read so far.
    std::uint64_t count() const { return count_; }
    // Reads what lies behind the last record, which must be well-formed and complete, too. Says how
    // many numbers and texts were lost, and how many records were of no layout. Throws Failure.
    void finish();

  private:
    friend Xfd* parse_input_description(const char* name, int first, int second);
    friend int test_input_condition(Xfd* xfd, int number, const void* record);
    friend int convert_input(XfdDataDesc* field, const XfdDataDesc* text, int mode);

    [[noreturn]] void fail_document() const;
    void begin_record();
    int convert(XfdDataDesc& field, const XfdDataDesc& text, int mode);
    void report_number(std::int32_t item, std::string_view text);
    void report_layout();

    const host::Module& module_;
    std::string file_name_;
    std::string shown_name_;
    const RecordFields& fields_;
    RecordBuffer& buffer_;
    InputTexts& texts_;
    documents::SingleEntry single_entry_;
    XmlFile* file_ = nullptr;
    const Xfd* xfd_ = nullptr;      // the module's
    bool takes_any_record_ = true;  // the layouts: one of them has no condition
    std::uint64_t count_ = 0;
    bool is_of_a_layout_ = false;  // the record at hand: a condition holds, or none is needed
    FieldWarnings lost_numbers_;
    FieldWarnings strangers_;     // records of no layout
    std::exception_ptr failure_;  // of a function that the module called
};

}  // namespace command
