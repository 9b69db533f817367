#include "tools/sxml/document_conversion.h"

#include <array>
#include <cstdio>
#include <utility>

#include "conversion/texts/utf8.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/progress.h"

namespace command {

namespace {

using conversion::FieldFate;

constexpr std::uint64_t RECORDS_BETWEEN_LOOKS = 1024;

// A text for a message: in quotation marks, cut when it is long.
std::string quoted(const std::string& text) {
    constexpr std::size_t MOST_SHOWN = 40;
    const std::string shown = text.substr(0, conversion::whole_characters(text, MOST_SHOWN));
    return "'" + shown + (shown.size() < text.size() ? "...'" : "'");
}

std::string character_name(char32_t character) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "U+%04X", static_cast<unsigned>(character));
    return text.data();
}

}  // namespace

DocumentConversion::DocumentConversion(conversion::InputDocument& document, std::string name,
                                       conversion::RecordWriter& store)
    : document_(document), name_(std::move(name)), store_(store) {}

void DocumentConversion::run() {
    Progress progress(std::nullopt);
    while (value_of(document_.read())) {
        convert();
        if (document_.count() % RECORDS_BETWEEN_LOOKS == 0) {
            progress.update(document_.count(), document_.count() * document_.record().size());
        }
    }
    finish();
    check(store_.close());
}

void DocumentConversion::convert() {
    for (const conversion::FieldTrouble& trouble : document_.troubles()) report(trouble);
    if (!document_.is_of_a_layout()) report_layout();
    conversion::Done problem = store_.add(document_.record());
    if (!problem) return;
    if (problem->cause == conversion::Cause::record) {
        problem->place.file = name_;
        problem->place.record = document_.count();
    }
    fail(*problem);
}

std::string DocumentConversion::place() const {
    return name_ + ": record " + std::to_string(document_.count());
}

std::string DocumentConversion::place(std::int32_t item) const {
    return place() + ", field " + document_.fields().name(item) + ": ";
}

void DocumentConversion::report(const conversion::FieldTrouble& trouble) {
    switch (trouble.fate) {
        case FieldFate::lost_character:
            fail(place(trouble.item) + "its character " + character_name(trouble.character) +
                 " is not in " + document_.characters().name());
        case FieldFate::no_number:
            if (!lost_numbers_.wants_next()) return;
            warn(place(trouble.item) + "no number that fits the field: " + quoted(trouble.text));
            return;
        default:
            if (!cut_.wants_next()) return;
            warn(place(trouble.item) + "a text of " + std::to_string(trouble.whole) +
                 " bytes was cut to fit into " + std::to_string(trouble.size) + ": " +
                 quoted(trouble.text));
    }
}

void DocumentConversion::report_layout() {
    if (!strangers_.wants_next()) return;
    warn(place() + ": none of the record layouts' conditions holds");
}

void DocumentConversion::finish() const {
    lost_numbers_.sum_up(name_, "text", " of numeric fields that cannot be stored there");
    cut_.sum_up(name_, "text", " cut to the length of the field");
    strangers_.sum_up(name_, "record",
                      " of no layout; only the fields that all layouts have were filled");
}

}  // namespace command
