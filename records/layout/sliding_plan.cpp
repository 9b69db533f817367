#include "records/layout/sliding_plan.h"

#include <algorithm>

#include "records/layout/counter.h"

namespace records {
namespace {

bool is_counted(const ModelItem& item) {
    return item.table && item.table->counter;
}

class Planner {
  public:
    explicit Planner(std::string& problem) : problem_(problem) {}

    SlidingPlan of_entry(const ModelItem& item) {
        SlidingPlan pieces;
        std::int32_t end = item.offset;
        add_children(item, end, pieces);
        add_run(end, item.offset + item.length, item, pieces);
        return pieces;
    }

  private:
    // `end`: of what is planned so far.
    void add_children(const ModelItem& group, std::int32_t& end, SlidingPlan& pieces) {
        for (const ModelItem& child : group.children) {
            if (!child.redefines.empty() || !has_counted_table(child)) continue;
            add_run(end, child.offset, child, pieces);
            end = child.offset;
            const bool is_table = is_counted(child) || (child.table && child.table->occurs > 1);
            if (!is_table) {
                add_children(child, end, pieces);
                continue;
            }
            const std::int64_t length = std::int64_t{child.table->occurs} * child.table->stride;
            if (length > group.offset + std::int64_t{group.length} - child.offset) {
                return overlap(child);
            }
            SlidingPiece piece{child.offset, static_cast<std::int32_t>(length), child.table, {}};
            const bool has_inner =
                std::any_of(child.children.begin(), child.children.end(), has_counted_table);
            if (has_inner) piece.entry = of_entry(child);
            end = piece.offset + piece.length;
            pieces.push_back(std::move(piece));
        }
    }

    void add_run(std::int32_t begin, std::int32_t end, const ModelItem& at, SlidingPlan& pieces) {
        if (begin > end) overlap(at);
        if (begin < end) pieces.push_back({begin, end - begin, {}, {}});
    }

    void overlap(const ModelItem& at) {
        if (!problem_.empty()) return;
        problem_ = "the items overlap at " + (at.name.empty() ? at.cobol_name : at.name) +
                   ", where tables with DEPENDING ON slide";
    }

    std::string& problem_;
};

}  // namespace

bool has_counted_table(const ModelItem& item) {
    return is_counted(item) ||
           std::any_of(item.children.begin(), item.children.end(), has_counted_table);
}

SlidingPlan make_sliding_plan(const ModelItem& layout, std::string& problem) {
    return Planner(problem).of_entry(layout);
}

std::optional<CounterProblem> SlidingWalk::run(const SlidingPlan& plan) {
    walk(plan);
    return std::move(problem_);
}

bool SlidingWalk::walk(const SlidingPlan& pieces) {
    return std::all_of(pieces.begin(), pieces.end(), [this](const SlidingPiece& piece) {
        return piece.table ? walk_table(piece) : take(piece.offset + shifts_.back(), piece.length);
    });
}

bool SlidingWalk::walk_table(const SlidingPiece& piece) {
    const Table& table = *piece.table;
    std::int32_t count = table.occurs;
    if (table.counter) {
        const Operand& counter = *table.counter;
        const std::int32_t at = counter.offset + shifts_[static_cast<std::size_t>(counter.tables)];
        const auto found = count_of(counter, record_ + at, table.min, table.occurs);
        if (!found) {
            problem_ = CounterProblem{counter.value, at, table.min, table.occurs};
            return false;
        }
        count = *found;
    }
    if (piece.entry.empty()) {
        return count == 0 || take(piece.offset + shifts_.back(), count * table.stride);
    }
    const std::int32_t around = shifts_.back();
    const bool has_subscript = table.occurs > 1;
    bool goes_on = true;
    for (std::int32_t i = 0; i < count && goes_on; ++i) {
        if (has_subscript) shifts_.push_back(around + i * table.stride);
        goes_on = walk(piece.entry);
        if (has_subscript) shifts_.pop_back();
    }
    return goes_on;
}

}  // namespace records
