#include "library/record_file.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "conversion/documents/document_losses.h"
#include "conversion/formats/format_detection.h"
#include "conversion/session/module.h"
#include "host/config.h"
#include "host/runtime/settings/settings.h"

namespace library {

namespace {

using conversion::Cause;
using conversion::CharacterSet;
using conversion::Done;
using conversion::FieldFate;
using conversion::Place;
using conversion::Problem;
using conversion::Result;

Problem problem_of(Cause cause, const std::string& file, const std::string& what,
                   const std::string& remedy) {
    Place place;
    place.file = file;
    return {cause, std::move(place), what, remedy};
}

bool ends_in_xml(const std::string& name) {
    constexpr std::string_view SUFFIX = ".xml";
    if (name.size() < SUFFIX.size()) return false;
    return std::equal(
        SUFFIX.begin(), SUFFIX.end(), name.end() - SUFFIX.size(),
        [](char expected, char c) { return c == expected || c == expected - 'a' + 'A'; });
}

// What the compiler of copybooks says, without the newline at its end.
std::string text_of(const records::Diagnostics& diagnostics) {
    std::string text = diagnostics.text();
    while (text.ends_with('\n')) text.pop_back();
    return text;
}

}  // namespace

// Settings belong to the process. They are set while a call of their file runs, and no longer.
class RecordFile::Settings {
  public:
    explicit Settings(const FileOptions& options) : options_(options) {
        for (const auto& [name, value] : options.settings) host::set_config(name, value);
    }
    ~Settings() {
        for (const auto& entry : options_.settings) host::set_config(entry.first, std::nullopt);
    }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    std::string configured_encoding() const { return host_config_string("SXML_ENCODING", ""); }

    // Tries all values. A problem names the first that cannot be.
    static Done check(const FileOptions& options) {
        Done found;
        for (const auto& [name, value] : options.settings) {
            std::string problem = "there is no such setting";
            const bool is_good =
                host::is_known_setting(name) && host::set_config(name, value, &problem);
            host::set_config(name, std::nullopt);
            if (is_good || found) continue;
            found = problem_of(Cause::setting, "", name + ": " + problem,
                               "docs/file-interface.md lists the settings");
        }
        return found;
    }

  private:
    const FileOptions& options_;
};

Result<std::unique_ptr<RecordFile>> RecordFile::open(const std::string& layout,
                                                     const Target& target, FileOptions options) {
    if (const auto module = conversion::xml_module(); !module) return module.problem();
    if (Done problem = Settings::check(options)) return *std::move(problem);
    const std::string encoding = options.encoding.empty() ? "utf-8" : options.encoding;
    Result<CharacterSet> characters = CharacterSet::find(
        encoding, conversion::document_encoding(encoding, Settings(options).configured_encoding()));
    if (!characters) return characters.problem();
    options.layout.encoding =
        characters->is_ebcdic() ? records::RecordEncoding::ebcdic : records::RecordEncoding::ascii;
    if (target.direction == Direction::write) {
        options.settings.emplace_back("SXML_ENCODING", characters->declared_name());
    }
    const Settings settings(options);
    options.layout.name_case = records::configured_name_case();
    records::Diagnostics diagnostics;
    std::optional<records::Description> description =
        records::load_description(layout, options.copybook, options.layout, diagnostics);
    if (!description) return problem_of(Cause::layout, "", text_of(diagnostics), "");
    if (target.direction == Direction::write && description->asks_for_last()) {
        return problem_of(Cause::layout, "",
                          "a condition asks for the last record, which is not known while writing",
                          "tell the record by its bytes");
    }
    Result<conversion::RecordFields> fields = conversion::RecordFields::of(description->xfd());
    if (!fields) return fields.problem();
    std::unique_ptr<RecordFile> file(new RecordFile(*std::move(description), *std::move(characters),
                                                    *std::move(fields), options, target));
    if (Done problem = file->open_file()) return *std::move(problem);
    if (!diagnostics.all().empty()) file->warnings_.push_back(text_of(diagnostics));
    return file;
}

RecordFile::RecordFile(records::Description description, CharacterSet characters,
                       conversion::RecordFields fields, FileOptions options, Target target)
    : description_(std::move(description)),
      characters_(std::move(characters)),
      options_(std::move(options)),
      target_(std::move(target)),
      fields_(std::move(fields)),
      names_(description_.xfd()),
      values_(characters_),
      blank_(description_.xfd(), description_.record_length(), conversion::BlankFill::by_type,
             &characters_),
      record_(static_cast<std::size_t>(description_.record_length())) {
    if (description_.slides()) sliding_.emplace(description_, characters_.space());
    clear();
}

RecordFile::~RecordFile() {
    const Settings settings(options_);
    if (output_ && !is_finished_ && replacement_->is_direct()) output_->abandon();
    output_.reset();
}

bool RecordFile::is_document() const {
    return options_.is_document.value_or(conversion::is_url(target_.name) ||
                                         ends_in_xml(target_.name));
}

// Options for another kind of file, or for reading, would be of no effect.
Done RecordFile::check_options() const {
    const bool is_input = target_.direction == Direction::read;
    if ((options_.skip > 0 || options_.skip_end > 0) && (is_document() || !is_input)) {
        return problem_of(Cause::usage, target_.name,
                          "the options skip and skip-end are for record files that are read",
                          "leave them out");
    }
    if (!options_.record_path.empty() && !(is_document() && is_input)) {
        return problem_of(Cause::usage, target_.name,
                          "the option record is for documents that are read", "leave it out");
    }
    return std::nullopt;
}

Done RecordFile::open_file() {
    if (target_.direction == Direction::none) return std::nullopt;
    if (Done problem = check_options()) return problem;
    if (target_.direction == Direction::write) return open_output();
    if (is_document()) return open_input_document();
    Result<conversion::ByteSource> source = conversion::ByteSource::open(target_.name);
    if (!source) return source.problem();
    source_.emplace(*std::move(source));
    if (Done problem = source_->leave_out(options_.skip, options_.skip_end)) return problem;
    if (options_.detects_format) {
        Result<conversion::RecordFormat> format =
            conversion::detect_format(*source_, record_.size());
        if (!format) return format.problem();
        options_.format = *std::move(format);
    }
    reader_ = conversion::read_records(
        options_.format, *source_,
        {record_.size(), characters_.space(), description_.asks_for_last()});
    return std::nullopt;
}

Done RecordFile::open_input_document() {
    Result<conversion::DocumentSource> source = conversion::DocumentSource::open(target_.name);
    if (!source) return source.problem();
    auto losses = conversion::find_document_losses(source->file(), source->name());
    if (!losses) return losses.problem();
    for (const conversion::DocumentLoss* loss : losses->all()) {
        for (const Problem& problem : loss->first) warnings_.push_back(message_of(problem));
    }
    if (options_.record_path.empty()) {
        document_source_.emplace(*std::move(source));
    } else {
        auto reduced = source->with_records_at(options_.record_path);
        if (!reduced) return reduced.problem();
        document_source_.emplace(*std::move(reduced));
    }
    auto document = conversion::InputDocument::open(
        description_, &characters_,
        {document_source_->file(), document_source_->name(), options_.fill, true});
    if (!document) return document.problem();
    input_ = *std::move(document);
    return std::nullopt;
}

Done RecordFile::open_output() {
    if (options_.detects_format) {
        return problem_of(Cause::usage, target_.name, "a new file does not tell its format",
                          "name the format");
    }
    auto replacement = platform::Replacement::begin(target_.name);
    if (!replacement) return conversion::system_problem(target_.name, errno);
    replacement_.emplace(*std::move(replacement));
    if (is_document()) {
        auto document = conversion::OutputDocument::open(
            description_, characters_,
            {replacement_->write_name(), target_.name, {}, options_.is_strict});
        if (!document) return document.problem();
        output_ = *std::move(document);
        return std::nullopt;
    }
    Result<conversion::ByteSink> sink =
        conversion::ByteSink::open(replacement_->write_name(), target_.name);
    if (!sink) return sink.problem();
    sink_.emplace(*std::move(sink));
    writer_ = conversion::write_records(options_.format, *sink_);
    return std::nullopt;
}

Result<bool> RecordFile::read() {
    warnings_.clear();
    if (!input_ && !reader_) {
        return problem_of(Cause::usage, target_.name, "is not open for reading",
                          "open it with the mode r");
    }
    const Settings settings(options_);
    can_go_on_ = false;
    Result<bool> outcome = input_ ? read_document() : read_record_file();
    if (can_go_on_) ++number_;
    if (!outcome || !*outcome) return outcome;
    ++number_;
    evaluate();
    const bool is_of_a_layout =
        input_ ? input_->is_of_a_layout()
               : fields_.takes_any_record() || fields_.choose(description_.xfd()).has_value();
    if (!is_of_a_layout) {
        warnings_.emplace_back("none of the record layouts' conditions holds");
    }
    if (Done problem = strict_problem()) {
        can_go_on_ = true;
        return *std::move(problem);
    }
    return outcome;
}

// The first warning, where it is to fail the record.
Done RecordFile::strict_problem() const {
    if (!options_.is_strict || warnings_.empty()) return std::nullopt;
    Problem problem = problem_of(Cause::record, target_.name, warnings_.front(), "");
    problem.place.record = number_;
    return problem;
}

Result<bool> RecordFile::read_document() {
    Result<bool> outcome = input_->read();
    if (!outcome || !*outcome) return outcome;
    can_go_on_ = true;
    position_ = input_->position();
    records::set_position(description_.xfd(), position_);
    if (input_->problem()) return problem_of_document();
    if (Done problem = take(input_->record(), input_->layout())) return *std::move(problem);
    can_go_on_ = false;
    warn_of_document();
    return outcome;
}

// Why the document does not have such a record. Its available data is kept; it is blank when the
// tables' counters do not define its form in a file.
Problem RecordFile::problem_of_document() {
    if (input_->record().empty() || take(input_->record(), input_->layout())) clear();
    return at_record(input_->problem()).value();
}

void RecordFile::warn_of_document() {
    if (input_->uncounted()) warn_of_counter(*input_->uncounted());
    for (const conversion::FieldTrouble& trouble : input_->troubles()) {
        const std::string field = "field " + fields_.name(trouble.item) + ": ";
        if (trouble.fate == FieldFate::no_number) {
            warnings_.push_back(field + "no number that fits the field: '" + trouble.text + "'");
        } else if (trouble.fate == FieldFate::no_digits) {
            warnings_.push_back(field + "not hexadecimal digits of " +
                                std::to_string(trouble.size) + " bytes: '" + trouble.text + "'");
        } else if (trouble.fate == FieldFate::cut_number) {
            warnings_.push_back(field + "more decimals than the field holds, which were cut: '" +
                                trouble.text + "'");
        } else if (trouble.fate == FieldFate::lost_character) {
            warnings_.push_back(field + "a character of '" + trouble.text + "' is not in " +
                                characters_.name());
        } else {
            warnings_.push_back(field + "a text of " + std::to_string(trouble.whole) +
                                " bytes was cut to fit into " + std::to_string(trouble.size));
        }
    }
    for (const conversion::UnusedData& data : input_->unused_data()) {
        warnings_.push_back(description_of(data));
    }
}

void RecordFile::warn_of_counter(const Problem& problem) {
    warnings_.push_back("field " + problem.place.field + ": " + problem.what);
}

Result<bool> RecordFile::read_record_file() {
    Result<std::optional<conversion::Record>> next = reader_->next();
    if (!next) return next.problem();
    if (!*next) return false;
    const conversion::Record& record = **next;
    position_ = record.position();
    records::set_position(description_.xfd(), position_);
    Done problem = take({record.data, record.length}, std::nullopt);
    if (!problem) return true;
    can_go_on_ = true;
    conversion::Place& place = problem->place;
    if (place.in_record) place.byte_offset = record.file_offset + *place.in_record;
    return *std::move(problem);
}

// Takes a record as it lies in a file. A problem when its tables slide and its counters are wrong.
Done RecordFile::take(std::span<const std::uint8_t> record, std::optional<std::size_t> layout) {
    if (sliding_) {
        Done problem = sliding_->spread(record, fields_, description_.xfd(), layout);
        std::copy_n(sliding_->full(), record_.size(), record_.begin());
        return at_record(std::move(problem));
    }
    const std::size_t length = std::min(record.size(), record_.size());
    const auto end = std::copy_n(record.data(), length, record_.begin());
    std::fill(end, record_.end(), characters_.space());
    return std::nullopt;
}

// The record as it is to lie in a file: packed where its tables slide.
Result<std::span<const std::uint8_t>> RecordFile::record_to_write() {
    if (!sliding_) return std::span<const std::uint8_t>(record_);
    evaluate();
    const std::size_t layout = fields_.choose(description_.xfd()).value_or(0);
    if (Done problem = sliding_->look_at(record_.data(), layout, fields_)) return *problem;
    sliding_->pack(record_.data(), packed_);
    if (writer_ && !options_.format.has_lengths()) {
        packed_.resize(record_.size(), characters_.space());
    }
    return std::span<const std::uint8_t>(packed_);
}

Done RecordFile::at_record(Done problem) const {
    if (!problem) return problem;
    problem->place.file = target_.name;
    problem->place.record = number_ + 1;
    return problem;
}

Done RecordFile::write() {
    warnings_.clear();
    if ((!output_ && !writer_) || is_finished_) {
        return problem_of(Cause::usage, target_.name, "is not open for writing",
                          "open it with the mode w, and write before sxml_finish");
    }
    const Settings settings(options_);
    can_go_on_ = true;
    auto record = record_to_write();
    if (!record) return at_record(record.problem());
    Done problem = output_
                       ? output_->write(record->data(), static_cast<std::int32_t>(record->size()),
                                        std::nullopt, position_)
                       : writer_->add(*record);
    can_go_on_ = problem && problem->cause == Cause::record;
    if (!problem && output_) problem = conversion::take_write_failure();
    if (problem) return at_record(std::move(problem));
    ++number_;
    if (output_) {
        if (!output_->outcome().is_of_a_layout) {
            warnings_.emplace_back(
                "none of the record layouts' conditions holds; only the fields "
                "that all layouts have were written");
        }
        for (const conversion::Field* field : output_->outcome().bad_numbers) {
            warnings_.push_back("field " + fields_.name(field->item) +
                                " held no valid number and came out repaired");
        }
        for (const conversion::Field* field : output_->outcome().inexact_numbers) {
            warnings_.push_back("field " + fields_.name(field->item) + ": " +
                                conversion::INEXACT_NUMBER);
        }
        if (const Done& counter = output_->outcome().uncounted) warn_of_counter(*counter);
    }
    clear();
    return std::nullopt;
}

Done RecordFile::finish() {
    if (!replacement_ || is_finished_) return std::nullopt;
    const Settings settings(options_);
    is_finished_ = true;
    Done problem;
    if (output_) {
        output_->close();
        output_.reset();
        problem = conversion::take_write_failure();
    } else {
        problem = writer_->close();
    }
    if (problem) {
        problem->place.file = target_.name;
        return problem;
    }
    const int error = replacement_->commit();
    if (error != 0) return conversion::system_problem(target_.name, error);
    return std::nullopt;
}

Result<int> RecordFile::find(std::string_view name) {
    std::vector<int> found = names_.find(name);
    if (found.size() > 1) {
        std::vector<int> of_record;
        std::ranges::copy_if(found, std::back_inserter(of_record),
                             [this](int field) { return applies(field); });
        if (of_record.size() == 1) found = of_record;
    }
    if (found.size() == 1) return found.front();
    if (found.empty()) {
        return problem_of(
            Cause::not_found, "", "there is no field " + std::string(name),
            "`sxml layout` lists the fields; those of a table take subscripts, as in phone(2)");
    }
    return problem_of(Cause::not_found, "",
                      "there are several fields " + std::string(name) + ": " +
                          names_.path(found[0]) + ", " + names_.path(found[1]),
                      "name the group as well");
}

// Evaluates the conditions, and blanks the fields of those that have come to hold.
void RecordFile::evaluate() {
    Xfd& xfd = description_.xfd();
    conversion::evaluate_conditions(xfd, record_.data());
    held_.resize(static_cast<std::size_t>(xfd.condition_count));
    for (std::size_t i = 0; i < held_.size(); ++i) held_[i] = (xfd.conditions[i].is_true & 1) != 0;
}

// Fields of a condition are blanked when it becomes true, except those that the program has set.
void RecordFile::note_set(const XfdItem& item) {
    std::fill_n(is_set_.begin() + item.offset, item.data.length, std::uint8_t{1});
    if (held_.empty()) return;
    const std::vector<bool> before = held_;
    evaluate();
    for (std::size_t i = 0; i < held_.size(); ++i) {
        if (!held_[i] || before[i]) continue;
        const std::vector<std::uint8_t> set = record_;
        blank_.add_condition(static_cast<int>(i) + 1, record_.data());
        for (std::size_t byte = 0; byte < set.size(); ++byte) {
            if (is_set_[byte] != 0) record_[byte] = set[byte];
        }
    }
}

bool RecordFile::applies(int field) {
    const Xfd& xfd = description_.xfd();
    conversion::evaluate_conditions(description_.xfd(), record_.data());
    const std::vector<conversion::RecordLayout>& layouts = fields_.layouts();
    if (layouts.empty()) return false;
    const conversion::RecordLayout& layout = layouts[fields_.choose(xfd).value_or(0)];
    const std::int32_t length =
        description_.used_length(record_.data(), description_.record_length(), position_);
    const std::int32_t index = names_.index(field);
    if (sliding_) sliding_->look_at(record_.data(), fields_.choose(xfd).value_or(0), fields_);
    return std::ranges::any_of(layout.fields, [&](const conversion::Field& one) {
        return one.item == index && conversion::holds_data(one, xfd, length) &&
               (!sliding_ || sliding_->has_all(one.offset, one.length));
    });
}

Problem RecordFile::field_problem(int field, const Complaint& complaint) const {
    Place place;
    place.file = target_.name;
    place.record = number_;
    place.field = names_.name(field);
    return {Cause::record, std::move(place), "the field " + complaint, ""};
}

Done RecordFile::missing_field(int field) const {
    if (names_.item(field) != nullptr) return std::nullopt;
    return problem_of(Cause::usage, "", "there is no field number " + std::to_string(field),
                      "sxml_field_count tells how many there are");
}

Done RecordFile::get_text(int field, std::string& text) const {
    if (Done problem = missing_field(field)) return problem;
    const Complaint complaint = values_.get_text(*names_.item(field), record_.data(), text);
    if (complaint.empty()) return std::nullopt;
    return field_problem(field, complaint);
}

Done RecordFile::get_number(int field, records::Decimal& number) const {
    if (Done problem = missing_field(field)) return problem;
    const Complaint complaint =
        FieldValues::get_number(*names_.item(field), record_.data(), number);
    if (complaint.empty()) return std::nullopt;
    return field_problem(field, complaint);
}

Done RecordFile::set_text(int field, std::string_view text) {
    if (Done problem = missing_field(field)) return problem;
    const XfdItem& item = *names_.item(field);
    const Complaint complaint = values_.set_text(item, record_.data(), text);
    if (!complaint.empty()) return field_problem(field, complaint);
    note_set(item);
    return std::nullopt;
}

Done RecordFile::set_number(int field, const records::Decimal& number) {
    if (Done problem = missing_field(field)) return problem;
    const XfdItem& item = *names_.item(field);
    const Complaint complaint = FieldValues::set_number(item, record_.data(), number);
    if (!complaint.empty()) return field_problem(field, complaint);
    note_set(item);
    return std::nullopt;
}

void RecordFile::clear() {
    if (target_.direction == Direction::write) {
        position_ = {number_ == 0, false};
        records::set_position(description_.xfd(), position_);
    }
    blank_.begin(record_.data());
    is_set_.assign(record_.size(), 0);
    held_.assign(static_cast<std::size_t>(description_.xfd().condition_count), false);
    evaluate();
    for (std::size_t i = 0; i < held_.size(); ++i) {
        if (held_[i]) blank_.add_condition(static_cast<int>(i) + 1, record_.data());
    }
}

Done RecordFile::set_record(std::span<const std::uint8_t> record) {
    if (record.size() > record_.size()) {
        return problem_of(Cause::record, "",
                          "a record of " + std::to_string(record.size()) +
                              " bytes is longer than the " + std::to_string(record_.size()) +
                              " of the layout",
                          "");
    }
    clear();
    std::ranges::copy(record, record_.begin());
    is_set_.assign(record_.size(), 1);
    evaluate();
    return std::nullopt;
}

}  // namespace library
