#include "conversion/fields/sliding_record.h"

#include <algorithm>
#include <string>
#include <utility>

namespace conversion {

namespace {

Problem problem_of(const records::CounterProblem& counter, std::int32_t in_record) {
    Place place;
    place.field = counter.counter;
    place.in_record = static_cast<std::uint32_t>(in_record);
    return {Cause::record, std::move(place),
            "the counter is not a number from " + std::to_string(counter.minimum) + " to " +
                std::to_string(counter.maximum) + ", so that the table's length is not known",
            "if every record holds its tables whole, give --odo fixed"};
}

}  // namespace

Done SlidingRecord::spread(std::span<const std::uint8_t> packed, const RecordFields& fields,
                           Xfd& judged, std::optional<std::size_t> layout) {
    const std::size_t count = fields.layouts().size();
    for (std::size_t i = layout.value_or(0); i < count; ++i) {
        Done problem = try_layout(packed, i);
        evaluate_conditions(judged, full_.data());
        if (!layout && fields.choose(judged) != i) continue;
        return problem ? std::move(problem) : check_rest(packed);
    }
    Done problem = try_layout(packed, 0);
    evaluate_conditions(judged, full_.data());
    return problem ? std::move(problem) : check_rest(packed);
}

Done SlidingRecord::try_layout(std::span<const std::uint8_t> packed, std::size_t layout) {
    full_.assign(static_cast<std::size_t>(description_.record_length()), space_);
    const auto problem = description_.spread(layout, packed, full_.data(), runs_);
    if (!problem) return std::nullopt;
    return problem_of(*problem, packed_offset(problem->offset));
}

Done SlidingRecord::check_rest(std::span<const std::uint8_t> packed) const {
    const auto end = packed.begin() + packed_length();
    const auto surplus = std::find_if(
        end, packed.end(), [this](std::uint8_t byte) { return byte != 0 && byte != space_; });
    if (surplus == packed.end()) return std::nullopt;
    Place place;
    place.in_record = static_cast<std::uint32_t>(surplus - packed.begin());
    return Problem{Cause::record, std::move(place),
                   "by its counters the record has " + std::to_string(packed_length()) +
                       " bytes, and there is data after them",
                   "if every record holds its tables whole, give --odo fixed"};
}

Done SlidingRecord::look_at(const std::uint8_t* full, std::size_t layout,
                            const RecordFields& fields) {
    const auto problem = description_.find_runs(layout, full, runs_);
    if (!problem) return std::nullopt;
    Problem result = problem_of(*problem, packed_offset(problem->offset));
    result.place.in_record.reset();
    for (const Field& field : fields.layouts()[layout].fields) {
        if (field.offset == problem->offset) result.place.field = fields.name(field.item);
    }
    return result;
}

const records::SlidingRun* SlidingRecord::run_at(std::int32_t offset) const {
    const auto after = std::upper_bound(
        runs_.begin(), runs_.end(), offset,
        [](std::int32_t at, const records::SlidingRun& run) { return at < run.offset; });
    if (after == runs_.begin()) return nullptr;
    const records::SlidingRun& run = *std::prev(after);
    return offset < run.offset + run.length ? &run : nullptr;
}

bool SlidingRecord::has_any(std::int32_t offset, std::int32_t length) const {
    if (length == 0) return true;
    const auto after = std::upper_bound(
        runs_.begin(), runs_.end(), offset + length - 1,
        [](std::int32_t at, const records::SlidingRun& run) { return at < run.offset; });
    if (after == runs_.begin()) return false;
    const records::SlidingRun& run = *std::prev(after);
    return run.offset + run.length > offset;
}

// A field lies in one part, unless it shares its place with several.
bool SlidingRecord::has_all(std::int32_t offset, std::int32_t length) const {
    return length == 0 || (run_at(offset) != nullptr && run_at(offset + length - 1) != nullptr);
}

std::int32_t SlidingRecord::packed_offset(std::int32_t offset) const {
    const records::SlidingRun* const run = run_at(offset);
    return run == nullptr ? packed_length() : run->packed + (offset - run->offset);
}

std::int32_t SlidingRecord::packed_length() const {
    return runs_.empty() ? 0 : runs_.back().packed + runs_.back().length;
}

void SlidingRecord::pack(const std::uint8_t* full, std::vector<std::uint8_t>& packed) const {
    packed.clear();
    for (const records::SlidingRun& run : runs_) {
        packed.insert(packed.end(), full + run.offset, full + run.offset + run.length);
    }
}

}  // namespace conversion
