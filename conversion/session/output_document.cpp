#include "conversion/session/output_document.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "conversion/fields/counted_end.h"
#include "conversion/session/document_settings.h"
#include "conversion/texts/text_decoder.h"
#include "conversion/texts/utf8.h"
#include "host/dispatch_table.h"
#include "host/runtime/memory/memory_report.h"
#include "records/field_types.h"
#include "records/hexadecimal.h"
#include "records/numbers.h"

namespace conversion {

namespace {

constexpr const char* ENDS_WITHIN_FIELD = "the record ends within the field";

bool is_number(FieldKind kind) {
    return kind == FieldKind::display_number || kind == FieldKind::other_number;
}

bool is_native_double(const XfdItem& item) {
    return item.data.type == records::FLOAT_NATIVE && item.data.length == sizeof(double) &&
           item.format != XFD_FORMAT_BINARY && item.condition != XFD_GROUP;
}

// Files without an end tag: kept where leak checkers see them.
void keep_until_exit(XmlFile* file) {
    static auto* const files = new std::vector<XmlFile*>;
    files->push_back(file);
}

// The document would not declare the prefix.
Done check_names(const Xfd& xfd) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const std::string_view name = xfd.items[i].name;
        if (name.find(':') == name.npos) continue;
        Place place;
        place.file = xfd.name;
        return Problem{Cause::layout, std::move(place),
                       "the element " + std::string(name) +
                           " cannot be written, as the document would not declare its prefix",
                       "give it a name without one (`*> sxml: name ...`) to write documents"};
    }
    return {};
}

}  // namespace

OutputDocument::OutputDocument(const host::Module& module, const records::Description& description,
                               const CharacterSet& characters, const Options& options,
                               RecordFields fields)
    : module_(module),
      description_(description),
      characters_(characters),
      is_strict_(options.is_strict),
      has_lengths_(options.has_lengths),
      has_counted_end_(description.has_counted_end()),
      has_doubles_(std::any_of(description.xfd().items,
                               description.xfd().items + description.xfd().item_count,
                               is_native_double)),
      fields_(std::move(fields)),
      controls_(options.controls),
      text_check_(characters, controls_ == Controls::hex ||
                                  (controls_ != Controls::refuse && !options.is_strict)),
      control_check_(characters),
      completed_(characters) {
    handler_.context = this;
    handler_.choose_layout = &choose_layout;
    find_text_runs();
    if (characters.converts() || controls_ != Controls::refuse) handler_.text = &translate_text;
    if (!description.slides()) return;
    sliding_.emplace(description, characters.space());
    handler_.moves_items = 1;
}

Result<std::unique_ptr<OutputDocument>> OutputDocument::open(
    const records::Description& description, const CharacterSet& characters,
    const Options& options) {
    const Result<const host::Module*> module = xml_module();
    if (!module) return module.problem();
    if (Done problem = check_document_settings(characters)) return *problem;
    if (Done problem = check_names(description.xfd())) return *problem;
    Result<RecordFields> fields = RecordFields::of(description.xfd());
    if (!fields) return fields.problem();
    std::unique_ptr<OutputDocument> document(
        new OutputDocument(**module, description, characters, options, *std::move(fields)));
    const Result<ModuleFile> opened = open_module_file(
        **module, {options.file, options.shown_name, XML_OPEN_OUTPUT, options.document_element},
        description, document->handler_);
    if (!opened) return opened.problem();
    document->module_file_ = *opened;
    return document;
}

OutputDocument::~OutputDocument() {
    close();
}

void OutputDocument::close() {
    if (module_file_.file != nullptr) module_.close(module_file_.file);
    module_file_ = {};
}

void OutputDocument::abandon() {
    // Closing would write the end tag. The module does not call the handler without a write.
    if (module_file_.file != nullptr) keep_until_exit(module_file_.file);
    module_file_ = {};
}

std::int32_t OutputDocument::choose_layout(void* document) {
    return static_cast<OutputDocument*>(document)->chosen().first_item;
}

const char* OutputDocument::translate_text(void* document, std::int32_t index,
                                           std::size_t* length) {
    auto& self = *static_cast<OutputDocument*>(document);
    const XfdItem& item = self.module_file_.xfd->items[index];
    self.translated_.clear();
    self.lost_ = {index, 0, 0};
    try {
        self.translate({self.record_ + item.offset, static_cast<std::size_t>(item.data.length)},
                       text_form(item, self.characters_));
        if (self.lost_.count > 0) {
            self.lost_.offset += item.offset;
            self.outcome_.lost_controls.push_back(self.lost_);
        }
    } catch (const std::bad_alloc&) {
        self.is_out_of_memory_ = true;
    }
    *length = self.translated_.size();
    return self.translated_.data();
}

void OutputDocument::translate(std::span<const std::uint8_t> bytes, TextForm form) {
    const auto size = static_cast<std::int32_t>(bytes.size());
    const bool has_controls =
        controls_ != Controls::refuse && control_check_.check(bytes.data(), size, form).has_value();
    if (has_controls && controls_ == Controls::hex) {
        translated_ += records::hexadecimal(bytes);
    } else if (has_controls || form != TextForm::plain || characters_.has_pairs()) {
        translate_characters(bytes, form);
    } else if (!characters_.converts()) {
        translated_.assign(bytes.begin(), bytes.end());
    } else {
        const bool is_latin1 = characters_.is_latin1_document();
        for (const std::uint8_t byte : bytes) {
            const auto code = static_cast<char32_t>(characters_.characters()[byte]);
            if (code < 0x80 || is_latin1) {
                translated_ += static_cast<char>(code);
            } else {
                append_utf8(code, translated_);
            }
        }
    }
}

void OutputDocument::translate_characters(std::span<const std::uint8_t> bytes, TextForm form) {
    TextDecoder decoder(bytes, characters_, form);
    const bool is_utf8 = characters_.declared_name() == "UTF-8";
    std::size_t end = 0;         // of what is not blank
    std::uint32_t controls = 0;  // up to this character; NUL bytes at the end are no loss
    while (const auto character = decoder.next()) {
        const std::int32_t code = character->code;
        if (is_control(code)) {
            if (controls++ == 0) lost_.offset = static_cast<std::int32_t>(character->start);
            append_control();
        } else if (is_utf8 || (characters_.converts() && code < 0x80)) {
            append_utf8(static_cast<char32_t>(code), translated_);
        } else if (characters_.converts()) {
            translated_ += static_cast<char>(code);
        } else {
            const auto part = bytes.subspan(character->start, character->length);
            translated_.append(part.begin(), part.end());
        }
        if (decoder.is_blank(*character)) continue;
        end = translated_.size();
        lost_.count = controls;
    }
    translated_.resize(end);
}

void OutputDocument::append_control() {
    if (controls_ != Controls::replace) return;
    constexpr char32_t REPLACEMENT = 0xFFFD;
    if (characters_.declared_name() == "UTF-8") {
        append_utf8(REPLACEMENT, translated_);
    } else {
        translated_ += '?';
    }
}

Done OutputDocument::write(const std::uint8_t* record, std::int32_t length,
                           std::optional<std::size_t> layout, records::RecordPosition position) {
    record_ = record;
    records::set_position(*module_file_.xfd, position);
    outcome_.length = description_.used_length(record, length, position);
    outcome_.bad_numbers.clear();
    outcome_.lost_controls.clear();
    if (sliding_) {
        const auto size = static_cast<std::size_t>(length);
        if (Done problem = spread({record, size}, layout)) return problem;
    }
    choose(layout);
    if (has_counted_end_) find_uncounted(length, position);
    if (sliding_) {
        if (Done problem = hide_unused_entries()) return problem;
    } else {
        if (has_lengths_) {
            if (Done problem = check_length(length)) return problem;
        }
        if (outcome_.length < description_.record_length()) {
            if (Done problem = complete_cut_field()) return problem;
        }
    }
    if (Done problem = check_texts()) return problem;
    if (has_doubles_) find_inexact_numbers();
    if (is_strict_) {
        if (Done problem = check_strictly()) return problem;
    }
    const std::uint64_t exceptions = records::data_exceptions();
    module_.write(module_file_.file, record_, static_cast<std::uint32_t>(outcome_.length));
    if (is_out_of_memory_) return Problem{Cause::no_memory, {}, host::memory_problem(), {}};
    if (records::data_exceptions() != exceptions) find_bad_numbers();
    return take_hidden_failure();
}

Done OutputDocument::spread(std::span<const std::uint8_t> packed,
                            std::optional<std::size_t> layout) {
    if (Done problem = sliding_->spread(packed, fields_, *module_file_.xfd, layout)) return problem;
    record_ = sliding_->full();
    outcome_.length = description_.record_length();
    return std::nullopt;
}

// The module steps over items that lie beyond the record's end. A problem when the record ends
// within a field.
Done OutputDocument::hide_unused_entries() {
    constexpr std::int32_t BEYOND = std::numeric_limits<std::int32_t>::max();
    const Xfd& own = description_.xfd();
    for (std::int32_t i = 0; i < own.item_count; ++i) {
        const XfdItem& item = own.items[i];
        const bool is_group = item.condition == XFD_GROUP;
        const bool is_there =
            is_group ? item.dimensions() == 0 || sliding_->has_any(item.offset, item.data.length)
                     : sliding_->has_all(item.offset, item.data.length);
        module_file_.xfd->items[i].offset = is_there ? item.offset : BEYOND;
    }
    for (const Field& field : chosen().fields) {
        if (!condition_holds(*module_file_.xfd, field.condition)) continue;
        if (!sliding_->has_any(field.offset, field.length)) continue;
        if (sliding_->has_all(field.offset, field.length)) continue;
        return Problem{Cause::record, place_of(field, 0), ENDS_WITHIN_FIELD, ""};
    }
    return std::nullopt;
}

Place OutputDocument::place_of(const Field& field, std::int32_t position) const {
    Place place{.field = fields_.name(field.item), .path = fields_.path(field.item)};
    place.in_record = static_cast<std::uint32_t>(offset_in_record(field.offset) + position);
    return place;
}

void OutputDocument::choose(std::optional<std::size_t> layout) {
    Xfd& xfd = *module_file_.xfd;
    evaluate_conditions(xfd, record_);
    const std::optional<std::size_t> by_conditions = fields_.choose(xfd);
    outcome_.is_of_a_layout = layout || by_conditions;
    outcome_.layout = layout.value_or(by_conditions.value_or(0));
    outcome_.would_fit_with_spaces = !outcome_.is_of_a_layout && fits_with_spaces();
    if (!layout) return;
    for (const std::int16_t condition : chosen().conditions) {
        xfd.conditions[condition - 1].is_true |= 1;
    }
}

// The module leaves a field out that reaches beyond the record. A problem when the record ends
// within a character of two bytes.
Done OutputDocument::complete_cut_field() {
    const std::span record(record_, static_cast<std::size_t>(outcome_.length));
    const auto halved = completed_.complete(record, chosen(), *module_file_.xfd);
    if (halved) return Problem{Cause::record, place_of(*halved, 0), ENDS_WITHIN_FIELD, ""};
    record_ = completed_.data();
    outcome_.length = completed_.length();
    return std::nullopt;
}

// Of a record with a length of its own.
Done OutputDocument::check_length(std::int32_t length) const {
    const std::int32_t most = chosen().length;
    if (length <= most || fields_.layouts().size() < 2) return std::nullopt;
    const auto* const surplus = std::find_if(
        record_ + most, record_ + length,
        [this](std::uint8_t byte) { return byte != 0 && byte != characters_.space(); });
    if (surplus == record_ + length) return std::nullopt;
    Place place;
    place.in_record = static_cast<std::uint32_t>(surplus - record_);
    return Problem{Cause::record, std::move(place),
                   "the record is too long: " + std::to_string(length) + " bytes, its layout " +
                       chosen().name + " has " + std::to_string(most),
                   ""};
}

void OutputDocument::find_inexact_numbers() {
    outcome_.inexact_numbers.clear();
    for (const Field& field : chosen().fields) {
        if (!is_native_double(module_file_.xfd->items[field.item]) || !is_written(field)) continue;
        if (is_inexact(field)) outcome_.inexact_numbers.push_back(&field);
    }
}

// Of most numbers the text has all digits: 17, and up to 90 zeros after the point.
bool OutputDocument::is_inexact(const Field& field) const {
    constexpr double SMALLEST = 1e-90;
    constexpr double LARGEST = 1e120;
    double value = 0;
    std::memcpy(&value, record_ + field.offset, sizeof value);
    const double size = std::abs(value);
    if (!std::isfinite(value) || size == 0 || (size > SMALLEST && size < LARGEST)) return false;
    XfdDataDesc source = module_file_.xfd->items[field.item].data;
    source.address = const_cast<std::uint8_t*>(record_) + field.offset;
    std::string text(static_cast<std::size_t>(source.digits) + 2, ' ');
    XfdDataDesc target{};
    target.address = text.data();
    target.length = static_cast<std::int32_t>(text.size());
    target.digits = source.digits;
    target.scale = source.scale;
    records::Decimal number;
    records::Decimal written;
    return Qconvert(&target, &source, 1) == 0 || !records::decode_field(source, number) ||
           !records::parse_number(text, written) || records::compare(number, written) != 0;
}

void OutputDocument::find_uncounted(std::int32_t length, records::RecordPosition position) {
    outcome_.uncounted.reset();
    const auto end = description_.counted_end(record_, length, position);
    if (!end || !outcome_.is_of_a_layout) return;
    if (end->problem) {
        outcome_.uncounted = counter_problem(*end->problem, chosen(), fields_);
        return;
    }
    if (end->length == length) return;
    for (const Field& field : chosen().fields) {
        if (field.offset < end->length || !has_data(field, length)) continue;
        outcome_.uncounted = uncounted_problem(field, fields_);
        outcome_.uncounted->place.in_record = static_cast<std::uint32_t>(field.offset);
        outcome_.uncounted->evidence = bytes_of(
            {field.offset, std::min(field.length, length - field.offset), 0, field.kind, 0});
        return;
    }
}

// Of a record of this length, whose end may cut the field.
bool OutputDocument::has_data(const Field& field, std::int32_t length) const {
    const Xfd& xfd = *module_file_.xfd;
    if (field.offset >= length || !condition_holds(xfd, field.condition)) return false;
    const std::uint8_t* const bytes = record_ + field.offset;
    const bool is_empty =
        std::all_of(bytes, bytes + std::min(field.length, length - field.offset),
                    [this](std::uint8_t byte) { return byte == 0 || byte == characters_.space(); });
    if (is_empty) return false;
    return field.offset + field.length > length ||
           !is_blank(xfd.items[field.item], bytes, characters_);
}

void OutputDocument::find_text_runs() {
    for (const RecordLayout& layout : fields_.layouts()) {
        std::vector<TextRun> runs;
        for (std::size_t i = 0; i < layout.texts.size(); ++i) {
            const Field& field = layout.texts[i];
            const XfdItem& item = description_.xfd().items[field.item];
            const bool is_plain = text_form(item, characters_) == TextForm::plain;
            const bool goes_on = !runs.empty() && runs.back().is_plain && is_plain &&
                                 runs.back().offset + runs.back().length == field.offset;
            if (goes_on) {
                runs.back().length += field.length;
                runs.back().end = i + 1;
            } else {
                runs.push_back({field.offset, field.length, i, i + 1, is_plain});
            }
        }
        text_runs_.push_back(std::move(runs));
    }
}

Done OutputDocument::check_texts() const {
    const std::vector<Field>& texts = chosen().texts;
    for (const TextRun& run : text_runs_[outcome_.layout]) {
        if (run.is_plain && run.offset + run.length <= outcome_.length &&
            text_check_.is_unproblematic(record_ + run.offset, run.length)) {
            continue;
        }
        for (std::size_t i = run.first; i < run.end; ++i) {
            if (Done problem = check_text(texts[i])) return problem;
        }
    }
    return std::nullopt;
}

Done OutputDocument::check_text(const Field& field) const {
    if (!is_written(field)) return std::nullopt;
    std::optional<TextProblem> problem =
        text_check_.check(record_ + field.offset, field.length,
                          text_form(module_file_.xfd->items[field.item], characters_));
    if (!problem) return std::nullopt;
    return Problem{Cause::record,
                   place_of(field, problem->position),
                   std::move(problem->what),
                   std::move(problem->remedy),
                   0,
                   bytes_of(field)};
}

// Programs pad fields with NUL bytes, where the literal of a condition is padded with spaces.
bool OutputDocument::fits_with_spaces() {
    std::vector<std::uint8_t> padded(record_, record_ + description_.record_length());
    std::replace(padded.begin(), padded.end(), std::uint8_t{0}, characters_.space());
    Xfd& xfd = *module_file_.xfd;
    evaluate_conditions(xfd, padded.data());
    const bool fits = fields_.choose(xfd).has_value();
    evaluate_conditions(xfd, record_);
    return fits;
}

Done OutputDocument::check_strictly() {
    if (!outcome_.is_of_a_layout) {
        return Problem{Cause::record, {}, "none of the record layouts' conditions holds", {}};
    }
    if (outcome_.uncounted) return outcome_.uncounted;
    if (!outcome_.inexact_numbers.empty()) {
        const Field& inexact = *outcome_.inexact_numbers.front();
        return Problem{Cause::record,    place_of(inexact, 0), INEXACT_NUMBER, {}, 0,
                       bytes_of(inexact)};
    }
    find_bad_numbers();
    if (outcome_.bad_numbers.empty()) return std::nullopt;
    const Field& field = *outcome_.bad_numbers.front();
    return Problem{Cause::record, place_of(field, 0), "not a valid number", {}, 0, bytes_of(field)};
}

std::string OutputDocument::bytes_of(const Field& field) const {
    return {reinterpret_cast<const char*>(record_) + field.offset,
            static_cast<std::size_t>(field.length)};
}

void OutputDocument::find_bad_numbers() {
    outcome_.bad_numbers.clear();
    for (const Field& field : chosen().fields) {
        if (!is_number(field.kind) || !is_written(field)) continue;
        XfdDataDesc data = module_file_.xfd->items[field.item].data;
        data.address = const_cast<std::uint8_t*>(record_) + field.offset;
        records::Decimal number;
        if (!records::decode_field(data, number)) outcome_.bad_numbers.push_back(&field);
    }
}

}  // namespace conversion
