// How a record of one layout is taken apart where its tables slide.
#pragma once

#include <string>
#include <vector>

#include "records/layout/model.h"
#include "records/sliding.h"

namespace records {

// A run of bytes of a fixed length, or a table.
struct SlidingPiece {
    std::int32_t offset = 0;  // at the first occurrence of all tables around
    std::int32_t length = 0;  // of a run, or of all entries of a table
    std::optional<Table> table;
    std::vector<SlidingPiece> entry;  // of a table whose entries differ in length
};
using SlidingPlan = std::vector<SlidingPiece>;

// True when the item or one in it is a table with a counter of its own.
bool has_counted_table(const ModelItem& item);
// The plan of a layout. What cannot be (items that overlap) goes to `problem`.
SlidingPlan make_sliding_plan(const ModelItem& layout, std::string& problem);

// Calls take(offset, length) for the bytes of a record in their order; it tells whether to go on.
// Counters are read from `record`, where every entry is in its place. Result: the first counter
// that is out of its range; what comes after it is not looked at.
class SlidingWalk {
  public:
    explicit SlidingWalk(const std::uint8_t* record) : record_(record) {}
    virtual ~SlidingWalk() = default;
    std::optional<CounterProblem> run(const SlidingPlan& plan);

  protected:
    virtual bool take(std::int32_t offset, std::int32_t length) = 0;

  private:
    bool walk(const SlidingPlan& pieces);
    bool walk_table(const SlidingPiece& piece);

    const std::uint8_t* record_;
    std::vector<std::int32_t> shifts_{0};  // of the entries that the walk is in, outermost first
    std::optional<CounterProblem> problem_;
};

}  // namespace records
