// What a description owns: the model, and the module's structures built from it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/record_description.h"
#include "records/description.h"
#include "records/layout/conditions/condition_evaluator.h"
#include "records/layout/model.h"
#include "records/layout/sliding_plan.h"
#include "records/position.h"

namespace records {

// The conditions of a description as the module counts them: one for each occurrence of the tables
// that a condition lies in.
struct ConditionSet {
    struct Numbered {
        std::size_t condition;             // index into `tests` and Model::conditions
        std::vector<std::int32_t> shifts;  // as ConditionEvaluator::holds takes them
    };
    std::vector<ConditionEvaluator> tests;
    std::vector<std::size_t> first_number;  // of each condition, from 0
    std::vector<Numbered> numbered;
};

// An Xfd with everything it points to. Copies share nothing that changes.
struct XfdBlock : Xfd {
    explicit XfdBlock() : Xfd{} {}
    XfdBlock(const XfdBlock& other);
    XfdBlock& operator=(const XfdBlock&) = delete;

    // Points the Xfd at this block's own parts and sets its counts.
    void connect();

    XfdConventions own_conventions{};
    std::vector<XfdItem> own_items;
    std::vector<XfdCondition> own_conditions;
    std::shared_ptr<const ConditionSet> tests;
    RecordPosition position;  // of the record that conditions are tested on
};

struct DescriptionData {
    Model model;
    XfdBlock block;
    std::vector<Description::Row> rows;
    std::vector<SlidingPlan> plans;  // of the described layouts; none where nothing slides
};

// Builds the module's structures from a model that is consistent. Errors (too many items,
// dimensions or conditions) go to `problem`; the result is then null.
std::unique_ptr<DescriptionData> flatten(Model model, std::string& problem);

}  // namespace records
