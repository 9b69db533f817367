// Record descriptions: compiled from a syntax tree, saved and loaded as .xfd files (JSON), found on
// a search path, and handed to the module as Xfd structures.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/record_description.h"
#include "records/copybook.h"
#include "records/data_item.h"
#include "records/diagnostics.h"
#include "records/position.h"
#include "records/sliding.h"

namespace records {

// What becomes of COBOL names; the values of 4GL_COLUMN_CASE.
enum class NameCase {
    lower = 0,        // lower case, hyphens become underscores
    underscores = 1,  // hyphens become underscores
    unchanged = 2
};

// What 4GL_COLUMN_CASE asks for at the moment: lower when it is not set or has another value.
NameCase configured_name_case();
// The machine that the records' programs run on. by_encoding: the mainframe for records in EBCDIC.
enum class Machine { by_encoding, native, mainframe };
// Bytes of binary items; those of cobc's -fbinary-size. COMP-5 has 1, 2, 4 or 8 with cobc's 2-4-8,
// too. smallest: 1--8. by_machine: 1-2-4-8 natively, and 2-4-8 on the mainframe, COMP-5 included.
enum class BinarySize { by_machine, by_digits_1248, by_digits_248, smallest };
// Of COMP, COMP-4 and BINARY: most significant byte first, or as the machine has COMP-5.
enum class ByteOrder { big_endian, native };
enum class RecordEncoding { ascii, ebcdic };  // of DISPLAY digits and signs
// What to do with data after a table with DEPENDING ON, which moves as the table's size changes.
enum class MovingData {
    by_machine,  // refused; on the mainframe sliding
    refused,
    fixed,   // the table always takes its full size
    sliding  // the table takes the room of the entries in use
};
// Bytes of PIC N and USAGE NATIONAL: two for each character, or as cobc 3.1 and 3.2 count them.
enum class NationalSize { two_bytes, cobc_3_1, cobc_3_2 };

struct LayoutOptions {
    NameCase name_case = NameCase::lower;
    Machine machine = Machine::by_encoding;
    BinarySize binary_size = BinarySize::by_machine;
    ByteOrder byte_order = ByteOrder::big_endian;
    NationalSize national_size = NationalSize::two_bytes;
    bool binary_truncate = true;  // cobc's default
    bool filler = false;          // give FILLER items elements, too (filler_1, filler_2 ...)
    // Describe every record layout, also several of which no directive says when they are meant:
    // under the condition that none of the others' holds. For who knows which record is meant.
    bool every_record = false;
    bool ebcdic_sign = false;  // overpunched signs follow EBCDIC's convention
    RecordEncoding encoding = RecordEncoding::ascii;
    MovingData moving_data = MovingData::by_machine;
    std::string name;  // of the description; empty: the FD's or the file's

    bool is_of_mainframe() const {
        return machine == Machine::mainframe ||
               (machine == Machine::by_encoding && encoding == RecordEncoding::ebcdic);
    }
    bool slides() const {
        return moving_data == MovingData::sliding ||
               (moving_data == MovingData::by_machine && is_of_mainframe());
    }
};

struct DescriptionData;  // what a description owns beside the Xfd (implementation)

// A compiled record description. Owns everything its Xfd points to.
class Description {
  public:
    explicit Description(std::unique_ptr<DescriptionData> data);
    Description(Description&&) noexcept;
    Description& operator=(Description&&) noexcept;
    ~Description();

    Xfd& xfd();
    const Xfd& xfd() const;
    std::int32_t record_length() const;      // of the longest layout, bytes
    std::int32_t min_record_length() const;  // shortest that OCCURS DEPENDING ON allows
    // Length of this record as its OCCURS DEPENDING ON counter gives it, when the table ends the
    // record; otherwise, or when the counter is out of range, `length` itself. Never above
    // `length`. `position`: of the record in its file, for conditions that ask for it, here and
    // below.
    std::int32_t used_length(const void* record, std::int32_t length,
                             RecordPosition position) const;
    // The same, and what is wrong with the counter; nothing when no such table ends this record.
    std::optional<CountedEnd> counted_end(const void* record, std::int32_t length,
                                          RecordPosition position) const;
    // Whether a table whose counter tells the length ends the records of a layout.
    bool has_counted_end() const;
    // Whether records lie packed in files: tables with OCCURS DEPENDING ON take the room of their
    // entries in use, and what comes after them follows at once. The lengths and offsets of all
    // items, record_length() too, are those of the full record, with every entry in its place.
    bool slides() const;
    // Spreads a packed record of a layout (by its number among the described ones) into `full`,
    // of which record_length() bytes can be written; what the record does not have stays as it is.
    // `runs`: its parts in both forms, in order; a record that ends too early has fewer. Result:
    // the first counter that is out of its range, where the record is not spread any further.
    std::optional<CounterProblem> spread(std::size_t layout, std::span<const std::uint8_t> packed,
                                         std::uint8_t* full, std::vector<SlidingRun>& runs) const;
    // The parts of a full record, so that it can be packed.
    std::optional<CounterProblem> find_runs(std::size_t layout, const std::uint8_t* full,
                                            std::vector<SlidingRun>& runs) const;

    // One line of `sxml layout`: an item at its first occurrence, groups and hidden items included.
    struct Row {
        std::int32_t offset;
        std::int32_t length;
        int level;
        std::string name;      // COBOL name, or the name in XML where the source gave none
        std::string xml_name;  // empty when the item gives no element
        std::string picture;
        std::string usage;
        std::string occurs;     // "3", "1 to 5 depending on N", empty
        std::string condition;  // text of the condition the item belongs to, empty for none
        std::string redefines;
        int depth = 0;     // number of the groups around it
        std::string path;  // elements from the record's on, "order/items/price"; or empty
        std::int32_t min_occurs = 1;  // of a table; 1 and 1 of other items
        std::int32_t max_occurs = 1;
        std::int32_t stride = 0;     // of a table: bytes from one occurrence to the next
        std::string depending_on{};  // name of a table's counter, empty for none
    };
    const std::vector<Row>& rows() const;
    // Makes a record one of a layout whose condition asks for a text in a field without an element:
    // reading stores the text, since the name of the record's element alone says what it is.
    struct Mark {
        int condition;        // number, from 1
        std::string element;  // of the record
        std::int32_t offset;  // of the field
        std::int32_t length;
        std::string text;  // in UTF-8
    };
    std::vector<Mark> marks() const;
    // Where records must stand of which condition `number` (from 1) holds.
    RecordPosition position_asked_by(int number) const;
    // Whether a condition asks for the last record, or for that or the first.
    bool asks_for_last() const;
    bool asks_for_position() const;
    // Text of condition `number` (from 1), for messages.
    const std::string& condition_text(int number) const;

    const DescriptionData& data() const { return *data_; }

  private:
    std::unique_ptr<DescriptionData> data_;
};

// Computes offsets, sizes, names and conditions. Nothing when there were errors.
std::optional<Description> compile_description(const RecordSource& source,
                                               const LayoutOptions& options,
                                               Diagnostics& diagnostics);

// JSON out and in. Reading checks every value: a damaged file gives errors that name the key.
std::string description_to_json(const Description& description);
std::optional<Description> description_from_json(std::string_view json, const std::string& file,
                                                 const LayoutOptions& options,
                                                 Diagnostics& diagnostics);

// Loads a description from LAYOUT: a description file (.xfd) or a copybook or program (any other
// suffix), told by contents when the suffix says nothing.
std::optional<Description> load_description(const std::string& file,
                                            const CopybookOptions& copybook,
                                            const LayoutOptions& layout, Diagnostics& diagnostics);

// The same from a text, told by its contents; `name` stands for the file in messages.
std::optional<Description> description_from_text(std::string_view text, const std::string& name,
                                                 const CopybookOptions& copybook,
                                                 const LayoutOptions& layout,
                                                 Diagnostics& diagnostics);

// The file that describes `data_file`: its name without folder and with and without a final suffix,
// with .xfd, then .cpy, then .cbl (any letter case), in each folder of SXML_PATH, or, when that is
// not set, in the data file's folder and the current one. Empty when there is none.
std::string find_description_file(const std::string& data_file);

// Makes every lookup of Q4ParseXFD on this thread give this description (a copy is made on each
// call), until null is given. For programs that have been told the layout.
void bind_description(const Description* description);

// What Q4ParseXFD last reported on this thread: the diagnostics' text, empty when all went well.
std::string last_description_error();

}  // namespace records

// The functions handed to the module by name; contracts in host/record_description.h.
extern "C" {
Xfd* Q4ParseXFD(const char* name, int first, int second);
void Q4XFDFree(Xfd* xfd);
int Q4TestCOBOLCond(Xfd* xfd, int number, const void* record);
}
