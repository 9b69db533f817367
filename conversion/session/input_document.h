// A document that is read, one record at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "conversion/documents/record_locator.h"
#include "conversion/fields/blank_record.h"
#include "conversion/fields/record_fields.h"
#include "conversion/fields/sliding_record.h"
#include "conversion/problem.h"
#include "conversion/session/module.h"
#include "conversion/texts/character_set.h"
#include "conversion/texts/field_text.h"
#include "host/runtime/streams.h"
#include "records/description.h"

namespace conversion {

// What became of a field of the record read last.
enum class FieldFate : std::uint8_t {
    not_in_document,  // it is blank
    filled,           // with all of the text
    cut,              // with as many whole characters as fit
    no_number,        // the text is not a number that fits; docs/numbers.md says what it holds
    no_digits,        // of a binary field: the text is not pairs of hexadecimal digits; it is zero
    cut_number,       // without the decimals, or low-order digits, that it has no room for
    lost_character    // the text has a character that the records' set lacks; it is blank
};

// A field that is not what the document says.
struct FieldTrouble {
    std::int32_t item;   // of the description
    FieldFate fate;      // cut, no_number, no_digits, cut_number or lost_character
    std::string text;    // in UTF-8 or, of a document in ISO-8859-1, in that
    std::size_t whole;   // cut: bytes that the whole text takes in the records' character set
    std::size_t size;    // cut, no_digits: bytes that the field has
    char32_t character;  // lost_character: the first one
};

// Text or attributes inside a record that went into no field.
struct UnusedData {
    enum class Kind : std::uint8_t {
        text,     // no field has the element's name
        surplus,  // a field is, but it does not take this element: there are more than it holds
        absent,   // a field is, but not one of this record, whose conditions do not hold
        attributes
    };
    // What is likely.
    enum class Hint : std::uint8_t {
        none,
        spelling,   // a field's name differs in case, hyphens, underscores or full stops only
        prefix,     // without its prefix it would be a field's name
        attribute,  // fields take elements only
        level       // the records are one level deeper in the document
    };
    Kind kind;
    Hint hint;
    std::string path;      // from below the record's element, as in "address/street"; the record's
                           // own name for itself
    std::uint32_t number;  // of the element among the record's elements, from 1
};

// The path of the data, with "/@*" for attributes, and what became of it: "name: the text went into
// no field; ...". For messages.
std::string path_text(const UnusedData& data);
std::string description_of(const UnusedData& data);

// The way of a record: the module parses it and says which element's text belongs to which field;
// the text is converted and stored in the record, and what became of each field is noted. Any
// number of documents may be open at once.
class InputDocument {
  public:
    // A part of a document, which by itself is a document (documents/document_parts.h).
    struct Part {
        host::InputPart bytes;
        std::uint64_t records_before = 0;
        // Whether it is left to others to find lines and columns: place_of() says of which element.
        bool leaves_lines = false;
    };
    struct Options {
        std::string file;        // its name on the disk
        std::string shown_name;  // in messages; empty: as `file`
        BlankFill fill = BlankFill::by_type;
        bool notes_unused = false;  // unused_data() is wanted
        // The document that `file` was made of with its attributes as elements; messages name the
        // places there. Empty: it is `file`.
        std::string original = {};
        AttributeRule attributes = {};
        // Hexadecimal digits of all of a text field's bytes are these bytes.
        bool takes_hex = false;
        // Of each layout: whether records are of it only when their element has its name, whatever
        // its conditions say; when no layout has that name, they may be of the first. Empty: none.
        std::vector<bool> is_named_by_element{};
        std::optional<Part> part{};  // read this only
    };

    // Opens a document. `description` describes the records as they become, in `characters`; null:
    // the document's own (UTF-8 or ISO-8859-1). Both must outlive the document.
    static Result<std::unique_ptr<InputDocument>> open(const records::Description& description,
                                                       const CharacterSet* characters,
                                                       const Options& options);
    ~InputDocument();
    InputDocument(const InputDocument&) = delete;
    InputDocument& operator=(const InputDocument&) = delete;

    const RecordFields& fields() const { return fields_; }
    // Of the document, in messages.
    const std::string& shown_name() const { return options_.shown_name; }
    // Of the records; known once a text has been read.
    const CharacterSet& characters() const {
        return characters_ != nullptr ? *characters_ : own_characters_;
    }

    // Reads the next record. False at the end of a document that is complete and well-formed. A
    // problem, with line and column, where it is not.
    Result<bool> read();
    // Records read so far, with those before the part.
    std::uint64_t count() const { return count_; }

    // Of the record read last, until the next is read:
    // Packed where tables slide.
    std::span<const std::uint8_t> record() const { return sliding_ ? packed_ : record_; }
    // Why there is no such record: its tables slide, and a counter is out of its range, or an entry
    // that the counter does not count has data.
    const Done& problem() const { return problem_; }
    // A table whose counter tells the length ends the record, which does not slide, and the counter
    // is out of its range or an entry that it does not count has data: used_length() does not tell
    // where the record's data ends. The record itself has all data.
    const Done& uncounted() const { return uncounted_; }
    // Where it stands; of a record whose layout is to be the last, that it is.
    records::RecordPosition position() const { return position_; }
    // Of the longest record, bytes.
    std::size_t record_length() const { return record_.size(); }
    // False: each of several layouts has a condition and none holds, so that only the fields of
    // every record were filled.
    bool is_of_a_layout() const { return is_of_a_layout_; }
    // The layout of which all conditions held while the record was filled.
    std::optional<std::size_t> layout() const;
    // Where the last field ends that the document had data for; 0 when there was none.
    std::int32_t filled_length() const { return filled_length_; }
    // How long the record is by itself: to the end of the last field that the document has an
    // element for, or of its layout when that is its last field; or as its counter says, when a
    // table with OCCURS DEPENDING ON ends it. In bytes. Needs notes_unused.
    std::size_t used_length() const;
    FieldFate fate(std::int32_t item) const { return fates_[static_cast<std::size_t>(item)]; }
    const std::vector<FieldFate>& fates() const { return fates_; }  // by item
    const std::vector<FieldTrouble>& troubles() const { return troubles_; }
    const std::vector<UnusedData>& unused_data() const { return unused_; }
    // Where an element of the record stands, as place in the document. Line and column are missing
    // when the document came through a pipe. Costs a parse of the document up to there. Throws
    // std::bad_alloc.
    Place place_of(std::uint32_t element);
    // The record as it stands in the document, in the encoding of its RecordLocator; empty when it
    // came through a pipe. Throws std::bad_alloc.
    std::string source_text();
    std::string source_encoding();
    // Of all records read so far, when unused data is wanted.
    struct FieldUse {
        bool has_had_data = false;
        std::uint64_t records_without = 0;  // an element for it
    };
    const std::vector<FieldUse>& field_uses() const { return field_uses_; }  // by item
    // How much of the document has been parsed, in bytes.
    std::uint64_t parsed_bytes() const { return static_cast<std::uint64_t>(handler_.parsed_bytes); }

  private:
    InputDocument(const host::Module& module, const records::Description& description,
                  const CharacterSet* characters, const Options& options, RecordFields fields);
    static void test_condition(void* document, std::int32_t number);
    static void store(void* document, std::int32_t index, const char* text, std::size_t length);
    static void note_missing(void* document, std::int32_t index);
    static void begin_element(void* document, const char* name);
    static void note_element(void* document, const HostRecordElement* element);

    void begin_record();
    records::RecordPosition position_asked_by(std::size_t layout) const;
    Done check_position();
    Done check_end() const;
    const std::string& name_of(std::optional<std::size_t> layout) const;
    bool has_wanted_name(std::int32_t condition) const;
    bool is_first_named(std::size_t layout) const;
    void begin_texts();
    void store_text(std::int32_t index, std::string_view text);
    void store_number(std::int32_t index, std::string_view text);
    void mark_record(std::int32_t condition);
    void store_digits(std::int32_t index, std::string_view text);
    bool convert(std::int32_t index, TextForm form, std::string_view& text);
    bool is_taken_as_it_is(const XfdItem& item) const;
    void place(const XfdItem& item, TextForm form, std::string_view text);
    void note_trouble(FieldTrouble trouble);
    void collect_names(const Xfd& xfd);
    void collect_unused();
    void count_missing();
    bool is_counted(std::int32_t item, std::int32_t used) const;
    void pack();
    void check_counted_end();
    Done find_uncounted(const RecordLayout& layout) const;
    bool is_used(std::int32_t item) const;
    bool is_repeated(std::int32_t item) const;
    std::string path_of(std::size_t element) const;
    UnusedData unused_text(std::size_t element) const;
    Problem reading_problem() const;
    RecordLocator* locator();

    struct Element {
        std::string name;
        std::uint32_t parent;
        bool has_text;
        bool has_attributes;
    };

    const host::Module& module_;
    Options options_;
    RecordFields fields_;
    bool takes_any_record_;
    const records::Description& description_;
    std::int32_t record_length_;
    bool has_decimal_comma_;
    bool has_counted_end_;
    std::vector<records::Description::Mark> marks_;
    const CharacterSet* characters_;
    CharacterSet own_characters_;
    std::optional<FieldText> texts_;            // known with the first record
    std::vector<std::uint8_t> takes_as_it_is_;  // by item, then known as well
    BlankRecord blank_;
    HostRecordHandler handler_{};
    ModuleFile module_file_;

    std::uint64_t count_ = 0;
    bool has_ended_ = false;
    std::vector<std::uint8_t> record_;
    std::optional<SlidingRecord> sliding_;
    std::vector<std::uint8_t> packed_;
    Done problem_;
    std::int32_t counted_ = 0;  // bytes of the record, with has_counted_end_
    Done uncounted_;
    bool is_of_a_layout_ = false;
    std::optional<std::size_t> named_layout_;  // by the record's element
    std::optional<std::size_t> first_layout_;  // which the first record must be of
    std::optional<std::size_t> last_layout_;   // which the last record must be of
    records::RecordPosition position_;         // of the record being read
    bool has_last_ = false;                    // a record of the layout for the last one
    std::int32_t filled_length_ = 0;
    std::vector<FieldFate> fates_;
    std::vector<FieldTrouble> troubles_;
    std::vector<std::int32_t> without_element_;  // items
    std::vector<FieldUse> field_uses_;           // by item
    std::vector<Element> elements_;
    std::vector<UnusedData> unused_;
    std::unordered_map<std::string, bool> names_;  // as folded(); of fields: true
    std::unordered_map<std::string, std::vector<std::int16_t>> conditions_;  // of fields, by name
    std::unique_ptr<RecordLocator> locator_;
    bool is_out_of_memory_ = false;  // in a function that the module called
    std::string converted_;
};

}  // namespace conversion
