// A record file or document that is open, with the record that is being worked on.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/fields/blank_record.h"
#include "conversion/fields/record_fields.h"
#include "conversion/fields/sliding_record.h"
#include "conversion/formats/record_format.h"
#include "conversion/problem.h"
#include "conversion/session/input_document.h"
#include "conversion/session/output_document.h"
#include "library/field_names.h"
#include "library/field_values.h"
#include "library/file_options.h"
#include "platform/replacing.h"
#include "records/description.h"

namespace library {

enum class Direction : std::uint8_t { none, read, write };

class RecordFile {
  public:
    struct Target {
        std::string name;  // of the file; empty: none
        Direction direction = Direction::none;
    };
    static conversion::Result<std::unique_ptr<RecordFile>> open(const std::string& layout,
                                                                const Target& target,
                                                                FileOptions options);
    ~RecordFile();
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;

    // False at the end.
    conversion::Result<bool> read();
    conversion::Done write();
    // After a failure of read() or write(): whether it concerned that record alone, so that the
    // next one can be read, or another one written.
    bool can_go_on() const { return can_go_on_; }
    conversion::Done finish();
    // Of the record read or written last.
    const std::vector<std::string>& warnings() const { return warnings_; }

    const FieldNames& names() const { return names_; }
    conversion::Result<int> find(std::string_view name);
    bool applies(int field);
    conversion::Done get_text(int field, std::string& text) const;
    conversion::Done get_number(int field, records::Decimal& number) const;
    conversion::Done set_text(int field, std::string_view text);
    conversion::Done set_number(int field, const records::Decimal& number);
    void clear();
    std::span<const std::uint8_t> record() const { return record_; }
    conversion::Done set_record(std::span<const std::uint8_t> record);

  private:
    class Settings;  // of this file, while a call runs

    RecordFile(records::Description description, conversion::CharacterSet characters,
               conversion::RecordFields fields, FileOptions options, Target target);
    conversion::Done open_file();
    conversion::Done check_options() const;
    conversion::Done open_input_document();
    conversion::Done open_output();
    conversion::Result<bool> read_document();
    conversion::Problem problem_of_document();
    void warn_of_document();
    void warn_of_counter(const conversion::Problem& problem);
    conversion::Done strict_problem() const;
    conversion::Result<bool> read_record_file();
    conversion::Done take(std::span<const std::uint8_t> record, std::optional<std::size_t> layout);
    conversion::Result<std::span<const std::uint8_t>> record_to_write();
    conversion::Done at_record(conversion::Done problem) const;
    conversion::Problem field_problem(int field, const Complaint& complaint) const;
    conversion::Done missing_field(int field) const;
    void evaluate();
    void note_set(const XfdItem& item);
    bool is_document() const;

    records::Description description_;
    conversion::CharacterSet characters_;
    FileOptions options_;
    Target target_;
    conversion::RecordFields fields_;
    FieldNames names_;
    FieldValues values_;
    conversion::BlankRecord blank_;

    std::vector<std::uint8_t> record_;  // with all entries of its tables
    std::optional<conversion::SlidingRecord> sliding_;
    std::vector<std::uint8_t> packed_;
    records::RecordPosition position_;  // of the record
    std::vector<std::uint8_t> is_set_;  // 1 for bytes that the program has set
    std::vector<bool> held_;            // conditions, as last evaluated
    std::uint64_t number_ = 0;
    std::vector<std::string> warnings_;
    bool is_finished_ = false;
    bool can_go_on_ = false;

    std::optional<conversion::DocumentSource> document_source_;
    std::unique_ptr<conversion::InputDocument> input_;
    std::optional<platform::Replacement> replacement_;
    std::unique_ptr<conversion::OutputDocument> output_;
    std::optional<conversion::ByteSource> source_;
    std::unique_ptr<conversion::RecordReader> reader_;
    std::optional<conversion::ByteSink> sink_;
    std::unique_ptr<conversion::RecordWriter> writer_;
};

}  // namespace library
