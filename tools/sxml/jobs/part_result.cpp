#include "tools/sxml/jobs/part_result.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace command {

namespace {

using Json = nlohmann::json;
using conversion::Place;
using conversion::Problem;

template <class Value>
Json json_of(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

template <class Value>
std::optional<Value> optional_of(const Json& json) {
    return json.is_null() ? std::nullopt : std::optional(json.get<Value>());
}

Json json_of(const Problem& problem) {
    const Place& place = problem.place;
    return {static_cast<unsigned>(problem.cause),
            problem.what,
            problem.remedy,
            problem.system_error,
            problem.evidence,
            place.file,
            place.record,
            place.field,
            place.path,
            json_of(place.byte_offset),
            json_of(place.in_record),
            place.line,
            place.column,
            place.element};
}

Problem problem_of(const Json& json) {
    Place place{json[5],
                json[6],
                json[7],
                json[8],
                optional_of<std::uint64_t>(json[9]),
                optional_of<std::uint32_t>(json[10]),
                json[11],
                json[12],
                json[13]};
    return {static_cast<conversion::Cause>(json[0].get<unsigned>()),
            std::move(place),
            json[1],
            json[2],
            json[3],
            json[4]};
}

Json json_of(const DocumentTotals& totals) {
    Json uses = Json::array();
    for (const auto& use : totals.field_uses) {
        uses.push_back({use.has_had_data, use.records_without});
    }
    return {totals.has_filled, std::move(uses)};
}

DocumentTotals totals_of(const Json& json) {
    DocumentTotals totals{json[0], {}};
    for (const Json& use : json[1]) totals.field_uses.push_back({use[0], use[1]});
    return totals;
}

}  // namespace

void RejectList::add(std::span<const std::uint8_t> record, const conversion::RecordFormat&) {
    list_.push_back({std::string(record.begin(), record.end()), {}});
}

void RejectList::add(conversion::InputDocument&, const Problem& problem) {
    list_.push_back({{}, problem});
}

void PartResult::take(const RunReport& report, const RejectList& list) {
    records = report.records();
    for (std::size_t kind = 0; kind < FINDINGS; ++kind) {
        counts.push_back(report.counted(static_cast<Finding>(kind)));
    }
    named = report.named();
    unused = report.unused();
    rejects = list.list();
}

std::string message_of(const PartResult& result) {
    Json json = {
        {"is_done", result.is_done}, {"is_last", result.is_last},       {"begin", result.begin},
        {"end", result.end},         {"input_read", result.input_read}, {"records", result.records},
        {"counts", result.counts},   {"named", Json::array()},          {"unused", Json::array()},
        {"rejects", Json::array()},  {"totals", json_of(result.totals)}};
    for (const RunReport::Named& each : result.named) {
        json["named"].push_back({static_cast<unsigned>(each.finding), json_of(each.problem)});
    }
    for (const auto& [path, unused] : result.unused) {
        json["unused"].push_back({path, unused.count, unused.hint});
    }
    for (const Rejected& each : result.rejects) {
        json["rejects"].push_back({each.record, json_of(each.problem)});
    }
    // Texts need not be UTF-8 there.
    std::string message;
    Json::to_cbor(json, message);
    return message;
}

PartResult result_of(std::string_view message) {
    const Json json = Json::from_cbor(message);
    PartResult result;
    result.is_done = json["is_done"];
    result.is_last = json["is_last"];
    result.begin = json["begin"];
    result.end = json["end"];
    result.input_read = json["input_read"];
    result.records = json["records"];
    json["counts"].get_to(result.counts);
    for (const Json& each : json["named"]) {
        result.named.push_back(
            {static_cast<Finding>(each[0].get<unsigned>()), problem_of(each[1])});
    }
    for (const Json& each : json["unused"]) result.unused[each[0]] = {each[1], each[2]};
    for (const Json& each : json["rejects"]) {
        result.rejects.push_back({each[0], problem_of(each[1])});
    }
    result.totals = totals_of(json["totals"]);
    return result;
}

void add_findings(PartResult& part, RunReport& report,
                  const std::function<void(Problem&)>& complete,
                  const std::function<void(const Rejected&)>& reject) {
    auto next = part.rejects.begin();
    const auto reject_before = [&](std::uint64_t record) {
        for (; next != part.rejects.end() && next->problem.place.record < record; ++next) {
            complete(next->problem);
            reject(*next);
        }
    };
    report.add_records(part.records);
    std::vector<std::uint64_t> left = part.counts;
    for (RunReport::Named& each : part.named) {
        reject_before(each.problem.place.record);
        --left[static_cast<std::size_t>(each.finding)];
        if (!report.count(each.finding)) continue;
        complete(each.problem);
        report.name(each.finding, each.problem);
    }
    for (std::size_t kind = 0; kind < FINDINGS; ++kind) {
        report.add(static_cast<Finding>(kind), left[kind]);
    }
    for (const auto& [path, unused] : part.unused) {
        report.count_unused(path, unused.hint, unused.count);
    }
    constexpr std::uint64_t ALL = std::numeric_limits<std::uint64_t>::max();
    reject_before(ALL);
}

}  // namespace command
