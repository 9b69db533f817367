#include "records/description.h"
#include "records/conventions.h"

#include <algorithm>

#include "records/layout/counter.h"
#include "records/layout/description_data.h"
#include "records/layout/variants.h"

namespace records {
namespace {

bool condition_holds(const DescriptionData& data, int condition, const std::uint8_t* record,
                     RecordPosition position) {
    const ConditionEvaluator& test =
        data.block.tests->tests[static_cast<std::size_t>(condition - 1)];
    const std::vector<std::int32_t> first_occurrence{0};
    return test.holds(record, first_occurrence, position);
}

RecordPosition position_asked_by(const Test& test) {
    RecordPosition asked{test.kind == Test::Kind::is_first, test.kind == Test::Kind::is_last};
    if (test.kind != Test::Kind::logical_and) return asked;
    for (const Test& each : test.operands) {
        const RecordPosition part = position_asked_by(each);
        asked.is_first = asked.is_first || part.is_first;
        asked.is_last = asked.is_last || part.is_last;
    }
    return asked;
}

bool mentions(const Test& test, Test::Kind kind) {
    return test.kind == kind || std::ranges::any_of(test.operands, [kind](const Test& each) {
               return mentions(each, kind);
           });
}

bool mentions(const Model& model, Test::Kind kind) {
    return std::ranges::any_of(model.conditions, [kind](const Condition& condition) {
        return mentions(condition.test, kind);
    });
}

// Tells of the fields with an element in a layout, table entries by their first one.
class LayoutFields {
  public:
    explicit LayoutFields(const ModelItem& layout) { visit(layout); }

    // The condition that all fields belong to; 0 when there is no such condition.
    int condition() const { return is_mixed_ ? 0 : std::max(condition_, 0); }
    bool overlap(const Operand& place) const {
        return std::any_of(fields_.begin(), fields_.end(), [&](const ModelItem* field) {
            return field->offset < place.offset + place.length &&
                   place.offset < field->offset + field->length;
        });
    }

  private:
    void visit(const ModelItem& item) {
        for (const ModelItem& child : item.children) visit(child);
        if (item.group || item.name.empty()) return;
        fields_.push_back(&item);
        is_mixed_ = is_mixed_ || (condition_ >= 0 && condition_ != item.condition);
        condition_ = item.condition;
    }

    std::vector<const ModelItem*> fields_;
    int condition_ = -1;
    bool is_mixed_ = false;
};

// Copies a packed record to where its parts belong.
class Spreader : public SlidingWalk {
  public:
    Spreader(std::span<const std::uint8_t> packed, std::uint8_t* full,
             std::vector<SlidingRun>& runs)
        : SlidingWalk(full), packed_(packed), full_(full), runs_(runs) {}

  private:
    bool take(std::int32_t offset, std::int32_t length) override {
        const auto left = static_cast<std::int32_t>(packed_.size()) - position_;
        const std::int32_t taken = std::min(length, left);
        std::copy_n(packed_.data() + position_, taken, full_ + offset);
        if (taken > 0) runs_.push_back({offset, position_, taken});
        position_ += taken;
        return taken == length;
    }

    std::span<const std::uint8_t> packed_;
    std::uint8_t* full_;
    std::vector<SlidingRun>& runs_;
    std::int32_t position_ = 0;
};

class RunFinder : public SlidingWalk {
  public:
    RunFinder(const std::uint8_t* full, std::vector<SlidingRun>& runs)
        : SlidingWalk(full), runs_(runs) {}

  private:
    bool take(std::int32_t offset, std::int32_t length) override {
        runs_.push_back({offset, position_, length});
        position_ += length;
        return true;
    }

    std::vector<SlidingRun>& runs_;
    std::int32_t position_ = 0;
};

// The rule for the length of this record; null: there is none.
const LengthRule* find_rule(const DescriptionData& data, const std::uint8_t* record,
                            std::int32_t length, RecordPosition position) {
    for (const LengthRule& rule : data.model.length_rules) {
        if (length < rule.counter.offset + rule.counter.length) continue;
        // Conditions look at whole records.
        if (rule.condition != 0 && (length < data.model.record_length ||
                                    !condition_holds(data, rule.condition, record, position))) {
            continue;
        }
        return &rule;
    }
    return nullptr;
}

// Nothing when the counter is out of its range.
std::optional<std::int32_t> length_by(const LengthRule& rule, const std::uint8_t* record,
                                      std::int32_t length) {
    const auto count = count_of(rule.counter, record + rule.counter.offset, rule.min, rule.max);
    if (!count) return std::nullopt;
    return std::min(length, rule.table_offset + *count * rule.stride);
}

}  // namespace

Description::Description(std::unique_ptr<DescriptionData> data) : data_(std::move(data)) {}
Description::Description(Description&&) noexcept = default;
Description& Description::operator=(Description&&) noexcept = default;
Description::~Description() = default;

Xfd& Description::xfd() {
    return data_->block;
}
const Xfd& Description::xfd() const {
    return data_->block;
}

bool has_decimal_comma(const Description& description) {
    return description.data().model.decimal_comma;
}

std::int32_t Description::record_length() const {
    return data_->model.record_length;
}

std::int32_t Description::min_record_length() const {
    std::int32_t shortest = record_length();
    for (const LengthRule& rule : data_->model.length_rules) {
        shortest = std::min(shortest, rule.table_offset + rule.min * rule.stride);
    }
    return shortest;
}

std::int32_t Description::used_length(const void* record, std::int32_t length,
                                      RecordPosition position) const {
    const auto* bytes = static_cast<const std::uint8_t*>(record);
    const LengthRule* const rule = find_rule(*data_, bytes, length, position);
    return rule == nullptr ? length : length_by(*rule, bytes, length).value_or(length);
}

std::optional<CountedEnd> Description::counted_end(const void* record, std::int32_t length,
                                                   RecordPosition position) const {
    const auto* bytes = static_cast<const std::uint8_t*>(record);
    const LengthRule* const rule = find_rule(*data_, bytes, length, position);
    if (rule == nullptr) return std::nullopt;
    // Without a condition it does not say which of several layouts the record must have.
    const bool has_several = (data_->block.flags & XFD_SEVERAL_LAYOUTS) != 0;
    if (has_several && rule->condition == 0) return std::nullopt;
    if (const auto counted = length_by(*rule, bytes, length)) return CountedEnd{*counted, {}};
    return CountedEnd{
        length, CounterProblem{rule->counter.value, rule->counter.offset, rule->min, rule->max}};
}

bool Description::has_counted_end() const {
    return !data_->model.length_rules.empty();
}

bool Description::slides() const {
    return !data_->plans.empty();
}

std::optional<CounterProblem> Description::spread(std::size_t layout,
                                                  std::span<const std::uint8_t> packed,
                                                  std::uint8_t* full,
                                                  std::vector<SlidingRun>& runs) const {
    runs.clear();
    return Spreader(packed, full, runs).run(data_->plans[layout]);
}

std::optional<CounterProblem> Description::find_runs(std::size_t layout, const std::uint8_t* full,
                                                     std::vector<SlidingRun>& runs) const {
    runs.clear();
    return RunFinder(full, runs).run(data_->plans[layout]);
}

const std::vector<Description::Row>& Description::rows() const {
    return data_->rows;
}

std::vector<Description::Mark> Description::marks() const {
    std::vector<Mark> result;
    for (const ModelItem& layout : data_->model.layouts) {
        if (layout.name.empty()) continue;
        const LayoutFields fields(layout);
        if (fields.condition() == 0) continue;
        const auto condition = static_cast<std::size_t>(fields.condition() - 1);
        const Test& test = data_->model.conditions[condition].test;
        if (!asks_for_text(test) || fields.overlap(test.left)) continue;
        const std::size_t number = data_->block.tests->first_number[condition] + 1;
        result.push_back({static_cast<int>(number), layout.name, test.left.offset, test.left.length,
                          test.right.value});
    }
    return result;
}

RecordPosition Description::position_asked_by(int number) const {
    const auto& numbered = data_->block.tests->numbered;
    const std::size_t condition = numbered[static_cast<std::size_t>(number - 1)].condition;
    return records::position_asked_by(data_->model.conditions[condition].test);
}

bool Description::asks_for_last() const {
    return mentions(data_->model, Test::Kind::is_last);
}

bool Description::asks_for_position() const {
    return asks_for_last() || mentions(data_->model, Test::Kind::is_first);
}

const std::string& Description::condition_text(int number) const {
    static const std::string NONE;
    const ConditionSet& tests = *data_->block.tests;
    if (number < 1 || static_cast<std::size_t>(number) > tests.numbered.size()) return NONE;
    const std::size_t condition = tests.numbered[static_cast<std::size_t>(number - 1)].condition;
    return data_->model.conditions[condition].text;
}

void set_position(Xfd& xfd, RecordPosition position) {
    static_cast<XfdBlock&>(xfd).position = position;
}

}  // namespace records
