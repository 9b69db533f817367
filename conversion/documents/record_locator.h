// Where the elements of a document's records stand, found by Expat alone on request.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "conversion/documents/attribute_elements.h"

namespace conversion {

// Goes through a document forward, once, however many records are asked for. Every child of the
// document element is a record.
class RecordLocator {
  public:
    struct Position {
        std::uint64_t line;    // from 1
        std::uint64_t column;  // in bytes, from 1
    };

    // A file that can be read again. With a rule, elements that it makes of attributes count, and
    // stand where the element with the attribute does.
    explicit RecordLocator(std::string file, std::optional<AttributeRule> rule = std::nullopt);
    ~RecordLocator();
    RecordLocator(const RecordLocator&) = delete;
    RecordLocator& operator=(const RecordLocator&) = delete;

    // The start tag of an element of a record, both from 1; element 1 is the record's own. Records
    // must be asked for in order. Nothing when it cannot be told: the document cannot be read (on).
    // Throws std::bad_alloc.
    std::optional<Position> position(std::uint64_t record, std::uint32_t element);
    // The record as it stands in the document, from "<" to ">", in the encoding(). Empty when it
    // cannot be told. Throws std::bad_alloc.
    std::string text(std::uint64_t record);
    // What texts are in: the document's declared encoding; UTF-8 when it declares none, and when it
    // is in units of several bytes.
    std::string encoding() const;

  private:
    struct Search;
    bool seek(std::uint64_t record);

    std::unique_ptr<Search> search_;
};

}  // namespace conversion
