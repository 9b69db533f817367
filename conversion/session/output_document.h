// A document that is written, one record at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conversion/fields/completed_record.h"
#include "conversion/fields/record_fields.h"
#include "conversion/fields/sliding_record.h"
#include "conversion/problem.h"
#include "conversion/session/module.h"
#include "conversion/texts/character_set.h"
#include "conversion/texts/text_check.h"
#include "records/description.h"

namespace conversion {

// Of a floating-point field, in messages.
constexpr const char* INEXACT_NUMBER = "a number too large or too small for its text";

// What becomes of control characters that XML does not allow, and of NUL bytes with text after
// them.
enum class Controls : std::uint8_t {
    refuse,   // the record is not written
    replace,  // U+FFFD, or a question mark where the document cannot hold that
    drop,
    hex  // of a field with one, hexadecimal digits of all bytes are written
};

// The way of a record: its conditions are evaluated and its layout is chosen once, its texts are
// checked, and the module writes it as that layout. Any number of documents may be open at once.
class OutputDocument {
  public:
    struct Options {
        std::string file;              // its name on the disk
        std::string shown_name;        // in messages; empty: as `file`
        std::string document_element;  // empty: the description's name
        // A record of no layout, with a number that is not valid, or with a control character that
        // would be dropped or replaced, is a problem and not written.
        bool is_strict = false;
        // Records have lengths of their own: one that is longer than its layout, not counting
        // spaces and NUL bytes, is a problem and not written.
        bool has_lengths = false;
        Controls controls = Controls::refuse;
    };
    // What became of the record written last.
    struct Outcome {
        bool is_of_a_layout = true;          // false: no layout's conditions hold
        bool would_fit_with_spaces = false;  // but one would, were the record's NUL bytes spaces
        std::size_t layout = 0;              // that it was written as
        std::int32_t length = 0;             // bytes of it that were written
        // Numeric fields without a valid number, which came out repaired (docs/numbers.md).
        std::vector<const Field*> bad_numbers;
        // Texts whose control characters were dropped or replaced.
        struct LostControls {
            std::int32_t item;
            std::int32_t offset;  // of the first one, as the description has it
            std::uint32_t count;
        };
        std::vector<LostControls> lost_controls;
        // Floating-point fields whose text is too short for their number: it has nines, or lacks
        // digits.
        std::vector<const Field*> inexact_numbers;
        // A table whose counter tells the length ends the record, which does not slide: bytes after
        // the entries that it counts, which are not in the document, have data, or it is out of its
        // range, and all entries are in the document. With field, offset in the record and bytes.
        Done uncounted;
    };

    // Opens a document and writes its beginning. `description` describes the records as they are,
    // in `characters`; both must outlive the document.
    static Result<std::unique_ptr<OutputDocument>> open(const records::Description& description,
                                                        const CharacterSet& characters,
                                                        const Options& options);
    // Closes the document, unless it was abandoned.
    ~OutputDocument();
    OutputDocument(const OutputDocument&) = delete;
    OutputDocument& operator=(const OutputDocument&) = delete;

    const RecordFields& fields() const { return fields_; }

    // Writes the first `length` bytes of a record, of which as many can be read as the
    // description's records are long. What lies after the last occurrence of a table with OCCURS
    // DEPENDING ON that ends the record is left out; a field that the record's end cuts is filled
    // up with spaces. `layout`: write it as this one of fields().layouts(), whatever the conditions
    // say. Without it the conditions decide, and a record of no layout is written as the first.
    // `position`: of the record in its file, for conditions that ask for it. A problem, with field
    // and offset in the record, when the document cannot hold a text, or the record ends within a
    // character of two bytes; nothing is written then. take_write_failure() tells whether
    // everything could be stored.
    Done write(const std::uint8_t* record, std::int32_t length,
               std::optional<std::size_t> layout = std::nullopt,
               records::RecordPosition position = {});
    const Outcome& outcome() const { return outcome_; }
    // Where in the record written last the byte is that the description has at `offset`: records
    // with tables that slide are packed.
    std::int32_t offset_in_record(std::int32_t offset) const {
        return sliding_ ? sliding_->packed_offset(offset) : offset;
    }

    // Writes the end tag.
    void close();
    // Leaves the document without an end tag, so that no reader takes it for a complete one. What
    // has been written remains; the file stays open until the process ends.
    void abandon();

  private:
    OutputDocument(const host::Module& module, const records::Description& description,
                   const CharacterSet& characters, const Options& options, RecordFields fields);
    static std::int32_t choose_layout(void* document);
    static const char* translate_text(void* document, std::int32_t index, std::size_t* length);

    void translate(std::span<const std::uint8_t> bytes, TextForm form);
    void translate_characters(std::span<const std::uint8_t> bytes, TextForm form);
    void append_control();
    void choose(std::optional<std::size_t> layout);
    Done complete_cut_field();
    Done spread(std::span<const std::uint8_t> packed, std::optional<std::size_t> layout);
    Done hide_unused_entries();
    Place place_of(const Field& field, std::int32_t position) const;
    Done check_length(std::int32_t length) const;
    void find_text_runs();
    Done check_texts() const;
    Done check_text(const Field& field) const;
    void find_bad_numbers();
    void find_inexact_numbers();
    bool is_inexact(const Field& field) const;
    void find_uncounted(std::int32_t length, records::RecordPosition position);
    bool has_data(const Field& field, std::int32_t length) const;
    bool fits_with_spaces();
    Done check_strictly();
    std::string bytes_of(const Field& field) const;
    const RecordLayout& chosen() const { return fields_.layouts()[outcome_.layout]; }
    bool is_written(const Field& field) const {
        return holds_data(field, *module_file_.xfd, outcome_.length) &&
               (!sliding_ || sliding_->has_all(field.offset, field.length));
    }

    const host::Module& module_;
    const records::Description& description_;
    const CharacterSet& characters_;
    bool is_strict_;
    bool has_lengths_;
    bool has_counted_end_;
    bool has_doubles_;  // whose texts may be too short
    RecordFields fields_;
    // Plain texts of a layout that lie side by side in its records. They are looked at together,
    // and each by itself only where that shows something.
    struct TextRun {
        std::int32_t offset;
        std::int32_t length;
        std::size_t first;  // of the layout's texts
        std::size_t end;    // after the last
        bool is_plain;      // false: a text of another form
    };
    std::vector<std::vector<TextRun>> text_runs_;  // of each layout
    Controls controls_;
    TextCheck text_check_;     // what the document cannot have
    TextCheck control_check_;  // and control characters
    std::optional<SlidingRecord> sliding_;
    HostRecordHandler handler_{};
    ModuleFile module_file_;
    const std::uint8_t* record_ = nullptr;  // being written
    Outcome outcome_;
    Outcome::LostControls lost_{};   // of the text being translated, from its start
    CompletedRecord completed_;      // the one being written
    std::string translated_;         // one text
    bool is_out_of_memory_ = false;  // in a function that the module called
};

}  // namespace conversion
