// Why the records of a file do not fit their layout.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "conversion/texts/character_set.h"
#include "records/description.h"

namespace command {

// A layout as it is for records in a character set.
struct Reading {
    records::Description description;
    conversion::CharacterSet characters;
};

// The beginning of a record file, and how it is read.
struct RecordSample {
    std::vector<std::vector<std::uint8_t>> records;  // the first ones, as they are read
    std::vector<std::uint8_t> bytes;  // the beginning of the file, the whole when it is not longer
    bool is_whole_file = true;
    bool is_fixed = true;  // read as records of one length, with nothing between them
};
constexpr std::size_t RECORDS_LOOKED_AT = 100;
// How many bytes of a file with a layout of this record length a sample should have.
std::size_t sample_size(std::size_t record_length);

// Tries other interpretations of a file whose records do not fit as they are read: another
// character set, records with length headers or line ends, another length, another beginning, a
// field too long or too short. Result: the first interpretation in which every field of the
// examined records is valid, as a sentence that ends with the remedy; empty when the records fit as
// they are read, when no interpretation fits, or when the fields allow no conclusion. Throws
// Failure.
std::string reason_for_misfit(const RecordSample& sample, Reading& own, std::span<Reading> others);

}  // namespace command
