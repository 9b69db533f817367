// Why something could not be done, as data. The command makes messages and an exit status of it,
// the adapter for COBOL programs a file status.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace conversion {

enum class Cause : std::uint8_t {
    usage,          // wrong usage; nothing was changed
    setting,        // the value of a setting
    layout,         // the record description
    not_found,      // there is no such file
    not_permitted,  // access is refused, or the file is of an unsuitable kind
    busy,           // another program or file of this program uses it
    no_space,       // a full disk, a quota, the limit on the size of files
    no_memory,
    input_output,  // any other failure of reading or writing
    document,      // the document is not well-formed, or refused
    record         // a record cannot be what it has to become
};

// Where. What is not known is left at its default.
struct Place {
    std::string file = {};                          // as the user knows it
    std::uint64_t record = 0;                       // from 1
    std::string field = {};                         // with its subscripts, as in "phone(2)"
    std::string path = {};                          // of its element below the record's: "a/phone"
    std::optional<std::uint64_t> byte_offset = {};  // in the file, from 0
    std::optional<std::uint32_t> in_record = {};    // offset in the record, from 0
    std::uint64_t line = 0;                         // in a document, from 1
    std::uint64_t column = 0;                       // in bytes, from 1
    // Number of the element, from 1, whose line and column a caller still has to find; 0: nothing
    // to find.
    std::uint32_t element = 0;
};

struct Problem {
    Cause cause;
    Place place;
    std::string what;      // subject first, without the place
    std::string remedy;    // what the user can do; may be empty
    int system_error = 0;  // errno, when a call of the system failed
    // The bytes at fault, as they are in the record or, of a document, its text; may be empty.
    std::string evidence = {};
};

// A text for a message: a dot stands for each control character, line ends included, and bytes that
// are not UTF-8 are taken as ISO-8859-1.
std::string shown_in_line(std::string_view text);

// "FILE:LINE:COLUMN: what; remedy" or "FILE: record N, field F, byte offset B (b in the record):
// what; remedy", less what is not known. One line without its end, as shown_in_line() has it, but
// for what the compiler of copybooks says of a layout.
std::string message_of(const Problem& problem);

// The cause of a failed call of the system, by errno.
Cause cause_of(int system_error);

// A failed call of the system that concerns a file, with what the system says about it.
Problem system_problem(const std::string& file, int system_error);

// A value, or why there is none.
template <class Value>
class [[nodiscard]] Result {
  public:
    Result(Value value) : outcome_(std::move(value)) {}  // NOLINT(google-explicit-constructor)
    Result(Problem problem)
        : outcome_(std::move(problem)) {}  // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return std::holds_alternative<Value>(outcome_); }
    // Only when there is a value.
    Value& operator*() & { return std::get<Value>(outcome_); }
    const Value& operator*() const& { return std::get<Value>(outcome_); }
    Value&& operator*() && { return std::get<Value>(std::move(outcome_)); }
    Value* operator->() { return &std::get<Value>(outcome_); }
    // Only when there is none.
    const Problem& problem() const { return std::get<Problem>(outcome_); }

  private:
    std::variant<Value, Problem> outcome_;
};

// Done, or why not.
using Done = std::optional<Problem>;

}  // namespace conversion
