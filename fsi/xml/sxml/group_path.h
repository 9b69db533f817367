// The groups that are open while the items of a description are walked from the top down.
//
// Levels may nest as deep as there are 16-bit numbers, far too deep for a recursive walk on the C
// stack. So the walks keep their path here, in one process-wide array: nothing is allocated while a
// record is written, and the pages of the array that no description needs are never touched. One
// walk runs at a time in the process.
#pragma once

#include <cstddef>
#include <cstdint>

struct OpenGroup {
    std::int32_t item;    // index of the group
    std::int32_t child;   // index of the child to look at next; -1 when there is none left
    std::uint32_t start;  // writing records: output position of the group's element
    bool has_data;        // writing records: some element below it holds data
};

class GroupPath {
  public:
    // Nested groups have increasing levels, so there are no more than there are 16-bit levels.
    static constexpr std::size_t CAPACITY = 65536;

    bool empty() const { return depth_ == 0; }
    bool full() const { return depth_ == CAPACITY; }
    OpenGroup& innermost() { return groups[depth_ - 1]; }
    void open(const OpenGroup& group) { groups[depth_++] = group; }
    OpenGroup close() { return groups[--depth_]; }
    bool contains(std::int32_t item) const {
        for (std::size_t i = depth_; i-- > 0;) {
            if (groups[i].item == item) return true;
        }
        return false;
    }

  private:
    inline static OpenGroup groups[CAPACITY];
    std::size_t depth_ = 0;
};

// Bounds one walk over a description. A description that fits its own rules is walked once over;
// one that does not (a group without items of its own is taken to hold the next deeper ones,
// wherever they are) could double the work at each level. Past the bound, children are left out.
class WalkBudget {
  public:
    explicit WalkBudget(std::int32_t item_count) : left_(std::int64_t{item_count} + 100'000) {}
    bool spend() { return left_-- > 0; }

  private:
    std::int64_t left_;
};
