#include "tools/sxml/documents/record_document.h"

#include <string>
#include <utility>

#include "conversion/fields/record_fields.h"
#include "conversion/texts/counted.h"
#include "tools/sxml/failure.h"

namespace command {

using conversion::counted;
using conversion::DocumentSource;

RecordDocument::RecordDocument(const DocumentSource& given, const DocumentOptions& options)
    : options_(options), given_(given) {
    if (!options.path.empty()) at_path_.emplace(value_of(given.with_records_at(options.path)));
}

const DocumentSource& RecordDocument::source() const {
    if (with_attributes_) return *with_attributes_;
    return at_path_ ? *at_path_ : given_;
}

void RecordDocument::prepare(const records::Description& description, RunReport& report) {
    report.note_fill(options_.fill);
    if (options_.takes_attributes) {
        conversion::ElementNames names = conversion::element_names(description.xfd());
        const conversion::AttributeRule rule{std::move(names.groups), std::move(names.fields)};
        with_attributes_.emplace(value_of(source().with_attributes_as_elements(rule)));
    }
    const conversion::LeftOut left_out = source().left_out();
    if (const auto problem = problem_of(left_out)) {
        report.note_left_out(*problem, left_out.texts + left_out.attributes);
    }
}

conversion::InputDocument::Options RecordDocument::input() const {
    conversion::InputDocument::Options options{source().file(), source().name(), options_.fill,
                                               true};
    options.original = source().original();
    options.attributes = source().attributes();
    return options;
}

std::optional<conversion::Problem> problem_of(const conversion::LeftOut& left_out) {
    if (left_out.texts + left_out.attributes == 0) return std::nullopt;
    std::string what;
    if (left_out.texts > 0) what = counted(left_out.texts, "text");
    if (left_out.attributes > 0) {
        what += (what.empty() ? "" : " and ") + counted(left_out.attributes, "attribute");
    }
    what += " outside of the records went into no field";
    return conversion::Problem{conversion::Cause::record, left_out.first, std::move(what), ""};
}

}  // namespace command
