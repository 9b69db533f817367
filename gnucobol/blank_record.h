// What the fields of a record hold before a record is read into it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/record_description.h"

namespace gnucobol {

// The module leaves a field alone that the document has no data for. A COBOL program would see the
// record before in it; so each field is blanked first, when its turn to be filled comes: numbers
// are zero, binary data is LOW-VALUES, everything else is SPACES.
class BlankRecord {
  public:
    BlankRecord(const Xfd& xfd, std::uint32_t record_length);

    // Makes the whole record blank, with the fields that belong to every record.
    void blank(std::uint8_t* record) const;
    // Blanks the fields that belong to the records of which condition `number` (from 1) holds.
    void blank_layout(int number, std::uint8_t* record) const;

  private:
    struct Run {
        std::uint32_t offset;
        std::string bytes;
    };
    static void add(const XfdItem& field, std::vector<Run>& runs);
    static void store(std::span<const Run> runs, std::uint8_t* record);

    std::string blank_;
    std::vector<std::vector<Run>> runs_;  // by condition
};

}  // namespace gnucobol
