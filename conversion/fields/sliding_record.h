// Records whose tables with DEPENDING ON take the room of their entries in use only: packed, as
// they lie in files and in programs, and full, as the module knows them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "conversion/fields/record_fields.h"
#include "conversion/problem.h"
#include "records/description.h"

namespace conversion {

class SlidingRecord {
  public:
    // The description must outlive this, and slide. `space` fills what a record does not have.
    SlidingRecord(const records::Description& description, std::uint8_t space)
        : description_(description), space_(space) {}

    // Spreads a packed record: as the layout given, or as the one whose conditions hold in it once
    // it is spread, or as the first. `judged` is left with the conditions of the result. A problem
    // for a counter that is out of its range, and for bytes other than spaces and NUL after the
    // last item.
    Done spread(std::span<const std::uint8_t> packed, const RecordFields& fields, Xfd& judged,
                std::optional<std::size_t> layout);
    // Finds out which entries of a full record of a layout are in use. A problem as above.
    Done look_at(const std::uint8_t* full, std::size_t layout, const RecordFields& fields);

    // Of the record that was spread or looked at last:
    const std::uint8_t* full() const { return full_.data(); }
    // Whether the packed record has a byte of those from `offset` of the full one, or all of them.
    // True where there are none.
    bool has_any(std::int32_t offset, std::int32_t length) const;
    bool has_all(std::int32_t offset, std::int32_t length) const;
    // Where in the packed record the byte at `offset` of the full one is; its end for a byte that
    // it does not have.
    std::int32_t packed_offset(std::int32_t offset) const;
    std::int32_t packed_length() const;
    // The packed form of a full record.
    void pack(const std::uint8_t* full, std::vector<std::uint8_t>& packed) const;

  private:
    Done try_layout(std::span<const std::uint8_t> packed, std::size_t layout);
    Done check_rest(std::span<const std::uint8_t> packed) const;
    const records::SlidingRun* run_at(std::int32_t offset) const;

    const records::Description& description_;
    std::uint8_t space_;
    std::vector<std::uint8_t> full_;
    std::vector<records::SlidingRun> runs_;  // ascending in both forms
};

}  // namespace conversion
