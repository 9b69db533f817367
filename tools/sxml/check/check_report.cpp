#include "tools/sxml/check/check_report.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "conversion/texts/counted.h"
#include "conversion/texts/utf8.h"
#include "records/hexadecimal.h"
#include "tools/sxml/reports/field_value.h"
#include "tools/sxml/reports/text_table.h"

namespace command {

namespace {

using conversion::counted;
using Json = nlohmann::ordered_json;

constexpr std::size_t LONGEST_SHOWN = 32;  // bytes of a value or of evidence in the text

std::string shortened(const std::string& text) {
    const std::size_t size = conversion::whole_characters(text, LONGEST_SHOWN);
    return size < text.size() ? text.substr(0, size) + "..." : text;
}

std::string number_or_nothing(std::uint64_t number) {
    return number == 0 ? "" : std::to_string(number);
}

std::string layouts_text(const CheckOutcome& outcome) {
    const auto layouts = outcome.statistics.layouts();
    if (layouts.size() < 2) return {};
    Table table = {{"Layout", "Records"}};
    for (const auto& [name, records] : layouts) table.push_back({name, std::to_string(records)});
    if (outcome.statistics.of_no_layout() > 0) {
        table.push_back({"(none)", std::to_string(outcome.statistics.of_no_layout())});
    }
    return "\n" + table_text(table, {false, true});
}

std::string fields_text(const CheckOutcome& outcome) {
    Table table = {
        {"Field", "Values", "Blank", "Zero", "Invalid", "Cut", "Longest", "Smallest", "Largest"}};
    const bool has_several = outcome.statistics.layouts().size() > 1;
    for (const FieldCounts& field : outcome.statistics.fields()) {
        table.push_back({(has_several ? field.layout + "/" : "") + field.path,
                         std::to_string(field.count), number_or_nothing(field.blank),
                         number_or_nothing(field.zero), number_or_nothing(field.invalid),
                         number_or_nothing(field.cut), number_or_nothing(field.longest),
                         shortened(field.smallest), shortened(field.largest)});
    }
    return "\n" + table_text(table, {false, true, true, true, true, true, true, false, false});
}

std::string evidence_text(const CheckOutcome& outcome, const conversion::Problem& problem) {
    if (problem.evidence.empty()) return {};
    const auto bytes = bytes_of(problem.evidence);
    const bool is_long = bytes.size() > LONGEST_SHOWN;
    const auto shown = bytes.first(std::min(bytes.size(), LONGEST_SHOWN));
    return "    bytes " + records::hexadecimal(shown, " ") + (is_long ? " ..." : "") + ", text " +
           shown_text(shown, outcome.characters) + (is_long ? "..." : "") + "\n";
}

std::string findings_text(const CheckOutcome& outcome) {
    std::string text;
    for (std::size_t kind = 0; kind < FINDINGS; ++kind) {
        const auto finding = static_cast<Finding>(kind);
        if (outcome.findings.counted(finding) == 0) continue;
        const auto& named = outcome.findings.named(finding);
        text += "\n" + outcome.findings.sum_of(finding);
        if (named.size() < outcome.findings.counted(finding)) {
            text += "; the first " + std::to_string(named.size());
        }
        text += ":\n";
        for (const conversion::Problem& problem : named) {
            text += "  " + message_of(problem) + "\n" + evidence_text(outcome, problem);
        }
    }
    for (const std::string& sum : outcome.findings.unused_sums()) text += "  " + sum + "\n";
    return text;
}

std::string unnamed_text(const CheckOutcome& outcome) {
    const UnnamedBytes& unnamed = outcome.statistics.unnamed_bytes();
    if (unnamed.bytes == 0) return {};
    return "\n" + counted(unnamed.bytes, "byte") + " of " + counted(unnamed.records, "record") +
           " in no field and not blank, the first in record " +
           std::to_string(unnamed.first_record) + " at byte offset " +
           std::to_string(unnamed.first_offset) +
           "; --filler gives FILLER items elements, `sxml dump` shows the bytes\n";
}

std::string shifted_text(const CheckOutcome& outcome) {
    const ShiftedTexts& shifted = outcome.statistics.shifted_texts();
    if (shifted.count == 0) return {};
    return "\n" + counted(shifted.count, "text") +
           " with white space in front, or tabs or line ends after, which a document does not "
           "keep, the first in record " +
           std::to_string(shifted.first_record) + ", field " + shifted.first_field +
           ", at byte offset " + std::to_string(shifted.first_offset) + "\n";
}

Json fields_json(const CheckOutcome& outcome) {
    Json fields = Json::array();
    for (const FieldCounts& field : outcome.statistics.fields()) {
        Json one = {{"layout", field.layout}, {"path", field.path},       {"values", field.count},
                    {"blank", field.blank},   {"invalid", field.invalid}, {"cut", field.cut}};
        if (field.is_number) one["zero"] = field.zero;
        if (!field.is_number) one["longest"] = field.longest;
        one["smallest"] = field.smallest;
        one["largest"] = field.largest;
        fields.push_back(std::move(one));
    }
    return fields;
}

}  // namespace

bool CheckOutcome::loses() const {
    bool has_findings = false;
    for (std::size_t kind = 0; kind < FINDINGS; ++kind) {
        if (findings.counted(static_cast<Finding>(kind)) > 0) has_findings = true;
    }
    return has_findings || !failure.empty() || statistics.unnamed_bytes().bytes > 0 ||
           statistics.shifted_texts().count > 0 || !findings.warnings().empty();
}

std::string check_text(const CheckOutcome& outcome) {
    std::string text = outcome.name + ": " + counted(outcome.findings.records(), "record") +
                       (outcome.is_document ? " of a document\n" : " of a record file\n");
    text += layouts_text(outcome) + fields_text(outcome) + findings_text(outcome) +
            unnamed_text(outcome) + shifted_text(outcome);
    const std::string missing = outcome.findings.missing_note();
    if (!missing.empty()) text += "\nNote: " + missing + "\n";
    for (const std::string& warning : outcome.findings.warnings()) text += "\n" + warning + "\n";
    if (!outcome.failure.empty()) text += "\nThe run fails: " + outcome.failure + "\n";
    if (!outcome.reason.empty()) text += "\nLikely reason: " + outcome.reason + "\n";
    return text + (outcome.loses() ? "\nA conversion would not take over everything.\n"
                                   : "\nA conversion would lose nothing.\n");
}

std::string check_json(const CheckOutcome& outcome) {
    Json json = Json::object();
    json["input"] = outcome.name;
    json["as"] = outcome.is_document ? "xml" : "records";
    json["loses"] = outcome.loses();
    json["failure"] = outcome.failure.empty() ? Json() : Json(outcome.failure);
    json["likely_reason"] = outcome.reason.empty() ? Json() : Json(outcome.reason);
    Json layouts = Json::object();
    for (const auto& [name, records] : outcome.statistics.layouts()) layouts[name] = records;
    json["layouts"] = std::move(layouts);
    outcome.findings.add_to(json);
    for (std::size_t kind = 0; kind < FINDINGS; ++kind) {
        const auto finding = static_cast<Finding>(kind);
        const auto& named = outcome.findings.named(finding);
        Json& first = json[RunReport::key_of(finding)]["first"];
        for (std::size_t i = 0; i < named.size(); ++i) {
            if (named[i].evidence.empty()) continue;
            const std::string text = shown_text(bytes_of(named[i].evidence), outcome.characters);
            first[i]["text"] = text.substr(1, text.size() - 2);
        }
    }
    const UnnamedBytes& unnamed = outcome.statistics.unnamed_bytes();
    Json in_no_field = {{"bytes", unnamed.bytes}, {"records", unnamed.records}};
    if (unnamed.bytes > 0) {
        in_no_field["first"] = {{"record", unnamed.first_record},
                                {"byte_offset", unnamed.first_offset}};
    }
    json["in_no_field"] = std::move(in_no_field);
    const ShiftedTexts& shifted = outcome.statistics.shifted_texts();
    Json white_space = {{"texts", shifted.count}};
    if (shifted.count > 0) {
        white_space["first"] = {{"record", shifted.first_record},
                                {"field", shifted.first_field},
                                {"byte_offset", shifted.first_offset}};
    }
    json["white_space"] = std::move(white_space);
    json["fields"] = fields_json(outcome);
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace command
