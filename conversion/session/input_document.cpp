#include "conversion/session/input_document.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "conversion/documents/document_check.h"
#include "conversion/fields/counted_end.h"
#include "conversion/texts/lost_digits.h"
#include "conversion/texts/meant_number.h"
#include "host/config.h"
#include "host/encoding.h"
#include "host/errors.h"
#include "host/runtime/memory/memory_report.h"
#include "platform/files.h"
#include "records/alignment.h"
#include "records/conventions.h"
#include "records/field_types.h"
#include "records/hexadecimal.h"
#include "records/numbers.h"

namespace conversion {

namespace {

constexpr std::int32_t EXPAT_NO_MEMORY = 1;  // Expat's code
constexpr const char* EXACT_TABLE_MATCH = "SXML_EXACT_TABLE_MATCH";

std::string records_text(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " record" : " records");
}

// Input from a pipe cannot be read again.
bool can_be_read_again(const std::string& file) {
    const auto state = platform::state_of(file);
    return state && state->kind == platform::FileKind::regular;
}

// A name without the differences in spelling between programs and documents: case, hyphens,
// underscores and full stops.
std::string folded(std::string_view name) {
    std::string text;
    for (const char c : name) {
        if (c == '-' || c == '_' || c == '.') continue;
        text += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

// An explicit choice takes precedence.
HostTableMatch table_match() {
    if (host_config_string(EXACT_TABLE_MATCH, nullptr) == nullptr) return HOST_TABLES_BY_PLACE;
    return host_config_flag(EXACT_TABLE_MATCH, 1) != 0 ? HOST_TABLES_EXACT : HOST_TABLES_LOOSE;
}

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool is_aligned(const XfdItem& item) {
    const records::FieldEdges edges = records::field_extra(item.data).edges;
    return edges.is_right != 0 || edges.blanks != 0;
}

// The text as the field's picture places it, as long as the field. In characters of ASCII.
std::string aligned(const XfdItem& item, std::string_view text) {
    XfdItem field = item;
    field.offset = 0;
    std::string placed(text);
    placed.resize(static_cast<std::size_t>(item.data.length), ' ');
    records::align_field(field, reinterpret_cast<std::uint8_t*>(placed.data()));
    return placed;
}

}  // namespace

InputDocument::InputDocument(const host::Module& module, const records::Description& description,
                             const CharacterSet* characters, const Options& options,
                             RecordFields fields)
    : module_(module),
      options_(options),
      fields_(std::move(fields)),
      takes_any_record_(fields_.takes_any_record()),
      description_(description),
      record_length_(description.record_length()),
      has_decimal_comma_(records::has_decimal_comma(description)),
      has_counted_end_(description.has_counted_end()),
      marks_(description.marks()),
      characters_(characters),
      own_characters_(*CharacterSet::find("utf-8")),
      blank_(description.xfd(), record_length_, options.fill, characters),
      record_(static_cast<std::size_t>(record_length_)),
      fates_(static_cast<std::size_t>(description.xfd().item_count)),
      field_uses_(fates_.size()) {
    handler_.context = this;
    handler_.test_condition = &test_condition;
    handler_.store = &store;
    handler_.table_match = table_match();
    if (options.notes_unused) {
        handler_.unused = &note_element;
        handler_.missing = &note_missing;
        collect_names(description.xfd());
    }
    for (std::size_t i = fields_.layouts().size(); i-- > 0;) {
        if (position_asked_by(i).is_first) first_layout_ = i;
        if (position_asked_by(i).is_last) last_layout_ = i;
    }
    const bool asks_for_position = first_layout_ || last_layout_;
    if (!options.is_named_by_element.empty() || !marks_.empty() || asks_for_position) {
        handler_.begin_record = &begin_element;
    }
    if (options_.shown_name.empty()) options_.shown_name = options_.file;
    if (description.slides()) sliding_.emplace(description, std::uint8_t{' '});
    if (options_.part) count_ = options_.part->records_before;
}

Result<std::unique_ptr<InputDocument>> InputDocument::open(const records::Description& description,
                                                           const CharacterSet* characters,
                                                           const Options& options) {
    const Result<const host::Module*> module = xml_module();
    if (!module) return module.problem();
    Result<RecordFields> fields = RecordFields::of(description.xfd());
    if (!fields) return fields.problem();
    std::unique_ptr<InputDocument> document(
        new InputDocument(**module, description, characters, options, *std::move(fields)));
    std::optional<host::InputPartScope> part;
    if (options.part) part.emplace(options.file, options.part->bytes);
    const Result<ModuleFile> opened =
        open_module_file(**module, {options.file, options.shown_name, XML_OPEN_INPUT, {}},
                         description, document->handler_);
    if (!opened) {
        const int code = *host_file_error();
        const bool is_content = code == HOST_FILE_XML || code == HOST_FILE_END;
        // Then the document is not to blame.
        const bool is_known =
            opened.problem().system_error != 0 || opened.problem().cause == Cause::no_memory;
        return is_content && !is_known ? document->reading_problem() : opened.problem();
    }
    document->module_file_ = *opened;
    return document;
}

InputDocument::~InputDocument() {
    if (module_file_.file != nullptr) module_.close(module_file_.file);
}

void InputDocument::begin_record() {
    blank_.begin(record_.data());
    for (const records::Description::Mark& mark : marks_) {
        const std::uint8_t space = characters_ != nullptr ? characters_->space() : ' ';
        std::fill_n(record_.begin() + mark.offset, mark.length, space);
    }
    std::fill(fates_.begin(), fates_.end(), FieldFate::not_in_document);
    troubles_.clear();
    elements_.clear();
    unused_.clear();
    without_element_.clear();
    problem_.reset();
    named_layout_.reset();
    position_ = {count_ == 0, false};
    records::set_position(*module_file_.xfd, position_);
    is_of_a_layout_ = takes_any_record_;
    filled_length_ = 0;
}

Result<bool> InputDocument::read() {
    if (has_ended_) return false;
    begin_record();
    const int result = module_.read(module_file_.file, record_.data());
    const int code = *host_file_error();
    if (is_out_of_memory_) return Problem{Cause::no_memory, {}, host::memory_problem(), {}};
    if (Done hidden = take_hidden_failure()) {
        has_ended_ = true;
        if (hidden->cause != Cause::no_memory) hidden->place.file = options_.shown_name;
        return *std::move(hidden);
    }
    if (result > 0 && code == HOST_FILE_OK) {
        ++count_;
        filled_length_ = result - 1;
        if (sliding_) pack();
        if (has_counted_end_) check_counted_end();
        if (!problem_) problem_ = check_position();
        if (!elements_.empty()) collect_unused();
        if (!without_element_.empty()) count_missing();
        return true;
    }
    has_ended_ = true;
    if (result == 0 && code == HOST_FILE_END &&
        module_.read_to_end(module_file_.file, record_.data())) {
        if (Done problem = check_end()) return *std::move(problem);
        return false;
    }
    return reading_problem();
}

Problem InputDocument::reading_problem() const {
    const bool is_of_expat =
        *host_file_error() == HOST_FILE_XML && *host_error_subcode() == EXPAT_NO_MEMORY;
    if (*host_file_error() == HOST_FILE_NO_MEMORY || is_of_expat) {
        return {Cause::no_memory, {}, host::memory_problem(), {}};
    }
    const std::string before = records_text(count_) + " came before";
    if (can_be_read_again(options_.file)) {
        Done problem = check_document(options_.file, options_.shown_name);
        if (problem) {
            problem->remedy = before;
            return *std::move(problem);
        }
    }
    return {Cause::document, {.file = options_.shown_name}, "the document cannot be read", before};
}

std::optional<std::size_t> InputDocument::layout() const {
    return fields_.choose(*module_file_.xfd);
}

// The fields that belong to the condition are filled next.
void InputDocument::test_condition(void* document, std::int32_t number) {
    auto& self = *static_cast<InputDocument*>(document);
    try {
        self.mark_record(number);
    } catch (const std::bad_alloc&) {
        self.is_out_of_memory_ = true;
    }
    Q4TestCOBOLCond(self.module_file_.xfd, number, self.record_.data());
    Xfd& xfd = *self.module_file_.xfd;
    if (!condition_holds(xfd, static_cast<std::int16_t>(number))) return;
    if (!self.has_wanted_name(number)) {
        xfd.conditions[number - 1].is_true &= static_cast<std::uint8_t>(~1U);
        return;
    }
    self.blank_.add_condition(number, self.record_.data());
    self.is_of_a_layout_ = true;
}

void InputDocument::begin_element(void* document, const char* name) {
    auto& self = *static_cast<InputDocument*>(document);
    self.named_layout_ = self.fields_.layout_named(name);
    // Whether more records follow is not known yet.
    if (!self.last_layout_ || !self.named_layout_) return;
    self.position_.is_last = self.position_asked_by(*self.named_layout_).is_last;
    records::set_position(*self.module_file_.xfd, self.position_);
}

records::RecordPosition InputDocument::position_asked_by(std::size_t layout) const {
    records::RecordPosition asked;
    for (const std::int16_t condition : fields_.layouts()[layout].conditions) {
        const records::RecordPosition one = description_.position_asked_by(condition);
        asked.is_first = asked.is_first || one.is_first;
        asked.is_last = asked.is_last || one.is_last;
    }
    return asked;
}

// Whether the record would be of its layout where it will stand in a file. Nothing is wrong where
// the name of its element tells no layout.
Done InputDocument::check_position() {
    if (!first_layout_ && !last_layout_) return std::nullopt;
    const bool follows_last = std::exchange(has_last_, position_.is_last);
    const auto problem = [](std::string what) {
        return Problem{Cause::record, {}, std::move(what), "the layouts' conditions ask for it"};
    };
    if (follows_last) {
        return problem("it follows a record of the layout " + name_of(last_layout_) +
                       ", which is to be the last");
    }
    if (!first_layout_ || !named_layout_) return std::nullopt;
    // Of the layouts of a record that is both, a reader takes the same one.
    if (position_.is_first && position_.is_last && layout() == named_layout_) return std::nullopt;
    const bool is_named = position_asked_by(*named_layout_).is_first;
    if (is_named == position_.is_first) return std::nullopt;
    return problem(is_named
                       ? "a record of the layout " + name_of(first_layout_) + " is to be the first"
                       : "the first record is to be of the layout " + name_of(first_layout_));
}

Done InputDocument::check_end() const {
    if (!last_layout_ || count_ == 0 || has_last_ || (count_ == 1 && first_layout_)) {
        return std::nullopt;
    }
    Place place;
    place.file = options_.shown_name;
    place.record = count_;
    return Problem{Cause::record, std::move(place),
                   "the last record is to be of the layout " + name_of(last_layout_),
                   "the layouts' conditions ask for it"};
}

const std::string& InputDocument::name_of(std::optional<std::size_t> layout) const {
    return fields_.layouts()[*layout].name;
}

// When the record's element determines the layout, only one layout is possible.
bool InputDocument::has_wanted_name(std::int32_t condition) const {
    const std::vector<RecordLayout>& layouts = fields_.layouts();
    if (options_.is_named_by_element.empty() || layouts.size() < 2) return true;
    for (std::size_t i = 0; i < layouts.size(); ++i) {
        const auto& own = layouts[i].conditions;
        if (std::find(own.begin(), own.end(), condition) == own.end()) continue;
        if (!options_.is_named_by_element[i]) return true;
        const bool is_named = named_layout_ && options_.is_named_by_element[*named_layout_];
        return is_named ? layouts[*named_layout_].name == layouts[i].name : is_first_named(i);
    }
    return true;
}

bool InputDocument::is_first_named(std::size_t layout) const {
    const auto& all = options_.is_named_by_element;
    return std::find(all.begin(), all.end(), true) - all.begin() ==
           static_cast<std::ptrdiff_t>(layout);
}

// Stores what makes the record one of the layout that its element's name stands for.
void InputDocument::mark_record(std::int32_t condition) {
    if (!named_layout_) return;
    const std::string& name = fields_.layouts()[*named_layout_].name;
    for (const records::Description::Mark& mark : marks_) {
        if (mark.condition != condition || mark.element != name) continue;
        if (!texts_) begin_texts();
        std::string text = mark.text;
        if (texts_->converts()) texts_->convert(mark.text, text);
        const std::size_t size = std::min(text.size(), static_cast<std::size_t>(mark.length));
        std::copy_n(text.begin(), size, record_.begin() + mark.offset);
    }
}

// Nothing may be thrown through the module.
void InputDocument::store(void* document, std::int32_t index, const char* text,
                          std::size_t length) {
    auto& self = *static_cast<InputDocument*>(document);
    const auto at = static_cast<std::size_t>(index);
    const XfdItem& item = self.module_file_.xfd->items[at];
    self.fates_[at] = FieldFate::filled;
    self.field_uses_[at].has_had_data = true;
    const auto size = static_cast<std::size_t>(item.data.length);
    if (self.texts_ && length <= size && self.takes_as_it_is_[at] != 0) {
        std::uint8_t* const target = self.record_.data() + item.offset;
        if (length > 0) std::memcpy(target, text, length);
        if (length < size) std::memset(target + length, self.characters_->space(), size - length);
        return;
    }
    try {
        if (is_numeric_type(item.data.type) && item.format != XFD_FORMAT_BINARY) {
            self.store_number(index, {text, length});
        } else {
            self.store_text(index, {text, length});
        }
    } catch (const std::bad_alloc&) {
        self.is_out_of_memory_ = true;
    }
}

void InputDocument::store_number(std::int32_t index, std::string_view text) {
    XfdDataDesc& target = module_file_.xfd->items[index].data;
    target.address = record_.data() + module_file_.xfd->items[index].offset;
    const std::optional<std::string> meant =
        meant_number(text, {target.digits, target.scale, has_decimal_comma_});
    const std::string_view written = text;
    if (meant) text = *meant;
    XfdDataDesc source = target;
    constexpr std::size_t LONGEST = std::numeric_limits<std::int32_t>::max();
    source.address = const_cast<char*>(text.data());
    source.length = static_cast<std::int32_t>(std::min(text.size(), LONGEST));
    source.type = records::TEXT;
    if (Qconvert(&target, &source, 1) == 0 && !text.empty()) {
        note_trouble({index, FieldFate::no_number, std::string(written), 0, 0, 0});
    } else if (loses_low_digits(text, target)) {
        note_trouble({index, FieldFate::cut_number, std::string(written), 0, 0, 0});
    }
}

// The encoding of a document's texts is known when its first record has been parsed.
void InputDocument::begin_texts() {
    const bool is_latin1 = handler_.text_encoding == HOST_ENCODING_LATIN1;
    if (characters_ == nullptr) {
        if (is_latin1) own_characters_ = *CharacterSet::find("iso-8859-1");
        characters_ = &own_characters_;
    }
    const Xfd& xfd = *module_file_.xfd;
    // Whole before the texts are known: without memory the module may go on with the next field.
    takes_as_it_is_.assign(static_cast<std::size_t>(xfd.item_count), 0);
    texts_.emplace(is_latin1 ? DocumentText::latin1 : DocumentText::utf8, *characters_);
    for (std::size_t i = 0; i < takes_as_it_is_.size(); ++i) {
        takes_as_it_is_[i] = is_taken_as_it_is(xfd.items[i]) ? 1 : 0;
    }
}

// Whether a text that is not too long goes into the field as it stands, with blanks after it.
bool InputDocument::is_taken_as_it_is(const XfdItem& item) const {
    if (texts_->converts() || options_.takes_hex || item.format == XFD_FORMAT_BINARY) return false;
    if (is_numeric_type(item.data.type)) return false;
    return text_form(item, *characters_) == TextForm::plain && !is_aligned(item);
}

void InputDocument::store_text(std::int32_t index, std::string_view text) {
    if (!texts_) begin_texts();
    const XfdItem& item = module_file_.xfd->items[index];
    const auto size = static_cast<std::size_t>(item.data.length);
    if (item.format == XFD_FORMAT_BINARY) return store_digits(index, text);
    // A text is never as long as the digits of its field.
    if (options_.takes_hex && text.size() == 2 * size && records::is_hexadecimal(text)) {
        return store_digits(index, text);
    }
    const TextForm form = text_form(item, *characters_);
    std::string_view value = text;
    if (texts_->converts() && !convert(index, form, value)) return;
    const std::size_t whole = value.size();
    if (whole > size && texts_->converts()) {
        texts_->cut(converted_, size, form);
        value = converted_;
    } else if (whole > size) {
        value = value.substr(0, texts_->fitting(value, size));
    }
    place(item, form, value);
    if (whole > size) note_trouble({index, FieldFate::cut, std::string(text), whole, size, 0});
}

// Stores bytes from their hexadecimal digits; zero bytes fill up what they leave.
void InputDocument::store_digits(std::int32_t index, std::string_view text) {
    const XfdItem& item = module_file_.xfd->items[index];
    const auto size = static_cast<std::size_t>(item.data.length);
    std::uint8_t* const target = record_.data() + item.offset;
    std::fill_n(target, size, std::uint8_t{0});
    if (!records::is_hexadecimal(text)) {
        return note_trouble({index, FieldFate::no_digits, std::string(text), 0, size, 0});
    }
    records::put_hexadecimal(text.substr(0, 2 * size), target);
    if (text.size() / 2 <= size) return;
    note_trouble({index, FieldFate::cut, std::string(text), text.size() / 2, size, 0});
}

// Converts a text into the records' character set. False when it cannot be.
bool InputDocument::convert(std::int32_t index, TextForm form, std::string_view& text) {
    const XfdItem& item = module_file_.xfd->items[index];
    const bool is_edited = item.data.type == records::EDITED && is_aligned(item);
    const bool fits = text.size() <= static_cast<std::size_t>(item.data.length);
    const std::string source =
        is_edited && fits && is_ascii(text) ? aligned(item, text) : std::string(text);
    const std::optional<char32_t> lost = texts_->convert(source, converted_, form);
    if (lost) {
        note_trouble({index, FieldFate::lost_character, std::string(text), 0, 0, *lost});
        return false;
    }
    text = converted_;
    return true;
}

// Stores a text in the records' character set, which fits, where the field's picture says.
void InputDocument::place(const XfdItem& item, TextForm form, std::string_view text) {
    const auto size = static_cast<std::size_t>(item.data.length);
    std::uint8_t* const target = record_.data() + item.offset;
    fill_blank(target, size, blank_of(form, *characters_));
    std::copy(text.begin(), text.end(), target);
    if (!is_aligned(item)) return;
    if (!characters_->is_ebcdic()) {
        records::align_field(item, record_.data());
    } else if (item.data.type == records::JUSTIFIED) {
        std::rotate(target, target + text.size(), target + size);
    }
}

void InputDocument::note_trouble(FieldTrouble trouble) {
    fates_[static_cast<std::size_t>(trouble.item)] = trouble.fate;
    troubles_.push_back(std::move(trouble));
}

void InputDocument::note_missing(void* document, std::int32_t index) {
    auto& self = *static_cast<InputDocument*>(document);
    try {
        self.without_element_.push_back(index);
    } catch (const std::bad_alloc&) {
        self.is_out_of_memory_ = true;
    }
}

void InputDocument::pack() {
    const std::size_t chosen = layout().value_or(0);
    problem_ = sliding_->look_at(record_.data(), chosen, fields_);
    packed_.clear();
    if (problem_) return;
    sliding_->pack(record_.data(), packed_);
    problem_ = find_uncounted(fields_.layouts()[chosen]);
}

// An entry that its table's counter does not count, and that has data.
Done InputDocument::find_uncounted(const RecordLayout& layout) const {
    for (const Field& field : layout.fields) {
        if (fate(field.item) == FieldFate::not_in_document || is_used(field.item)) continue;
        const std::uint8_t* const bytes = record_.data() + field.offset;
        if (is_blank(module_file_.xfd->items[field.item], bytes, characters())) continue;
        if (!is_repeated(field.item)) return uncounted_problem(field, fields_);
    }
    return std::nullopt;
}

// Of a record that does not slide.
void InputDocument::check_counted_end() {
    uncounted_.reset();
    const std::optional<std::size_t> chosen = layout();
    const auto end = description_.counted_end(record_.data(), record_length_, position_);
    counted_ = end ? end->length : record_length_;
    if (!chosen || !end) return;
    const RecordLayout& own = fields_.layouts()[*chosen];
    if (end->problem) {
        uncounted_ = counter_problem(*end->problem, own, fields_);
        uncounted_->place.in_record.reset();
        return;
    }
    uncounted_ = find_uncounted(own);
}

// Matched loosely, elements of a table's only entry are taken for every entry.
bool InputDocument::is_repeated(std::int32_t item) const {
    if (handler_.table_match != HOST_TABLES_LOOSE) return false;
    const Xfd& xfd = *module_file_.xfd;
    const XfdItem& own = xfd.items[item];
    const std::uint8_t* const bytes = record_.data() + own.offset;
    return std::any_of(xfd.items, xfd.items + xfd.item_count, [&](const XfdItem& other) {
        return std::string_view(other.name) == own.name && other.data.length == own.data.length &&
               is_used(static_cast<std::int32_t>(&other - xfd.items)) &&
               std::equal(bytes, bytes + own.data.length, record_.data() + other.offset);
    });
}

// Fields of other layouts are not missing, nor entries that the counter of a table does not count.
void InputDocument::count_missing() {
    const std::optional<std::size_t> chosen = layout();
    if (!chosen) return;
    const RecordLayout& own = fields_.layouts()[*chosen];
    const std::int32_t used = description_.used_length(record_.data(), record_length_, position_);
    for (const std::int32_t item : without_element_) {
        const bool is_own = item >= own.first_item && item < own.end_item;
        const bool is_used = is_counted(item, used);
        if (is_own && is_used) ++field_uses_[static_cast<std::size_t>(item)].records_without;
    }
}

bool InputDocument::is_used(std::int32_t item) const {
    return is_counted(item, counted_);
}

bool InputDocument::is_counted(std::int32_t item, std::int32_t used) const {
    const XfdItem& field = module_file_.xfd->items[item];
    return sliding_ ? sliding_->has_all(field.offset, field.data.length) : field.offset < used;
}

std::size_t InputDocument::used_length() const {
    if (sliding_) return packed_.size();
    const std::optional<std::size_t> chosen = layout();
    if (!chosen) return static_cast<std::size_t>(filled_length_);
    const RecordLayout& own = fields_.layouts()[*chosen];
    const std::int32_t counted =
        description_.used_length(record_.data(), record_length_, position_);
    if (counted < own.length) return static_cast<std::size_t>(counted);
    std::vector<std::int32_t> lacking = without_element_;
    std::sort(lacking.begin(), lacking.end());
    std::int32_t end = 0;   // of the layout's fields
    std::int32_t used = 0;  // of those that have elements
    for (const Field& field : own.fields) {
        if (!condition_holds(*module_file_.xfd, field.condition)) continue;
        const std::int32_t field_end = field.offset + field.length;
        end = std::max(end, field_end);
        if (std::binary_search(lacking.begin(), lacking.end(), field.item)) continue;
        used = std::max(used, field_end);
    }
    return static_cast<std::size_t>(used == end ? std::max(used, own.length) : used);
}

void InputDocument::note_element(void* document, const HostRecordElement* element) {
    auto& self = *static_cast<InputDocument*>(document);
    try {
        self.elements_.push_back(
            {element->name, element->parent, element->has_unused_text, element->has_attributes});
    } catch (const std::bad_alloc&) {
        self.is_out_of_memory_ = true;
    }
}

RecordLocator* InputDocument::locator() {
    if (!locator_ && !options_.original.empty()) {
        locator_ = std::make_unique<RecordLocator>(options_.original, options_.attributes);
    } else if (!locator_ && can_be_read_again(options_.file)) {
        locator_ = std::make_unique<RecordLocator>(options_.file);
    }
    return locator_.get();
}

Place InputDocument::place_of(std::uint32_t element) {
    Place place;
    place.file = options_.shown_name;
    place.record = count_;
    if (options_.part && options_.part->leaves_lines) {
        place.element = element;
        return place;
    }
    if (locator() == nullptr) return place;
    if (const auto position = locator_->position(count_, element)) {
        place.line = position->line;
        place.column = position->column;
    }
    return place;
}

std::string InputDocument::source_text() {
    return locator() != nullptr ? locator_->text(count_) : std::string();
}

std::string path_text(const UnusedData& data) {
    return data.kind == UnusedData::Kind::attributes ? data.path + "/@*" : data.path;
}

std::string description_of(const UnusedData& data) {
    const auto what = [&data] {
        switch (data.kind) {
            case UnusedData::Kind::attributes:
                return "attributes went into no field";
            case UnusedData::Kind::surplus:
                return "the text went into no field; there are more such elements than the field "
                       "takes";
            case UnusedData::Kind::absent:
                return "the text went into no field; by its conditions the record does not have "
                       "the field of this name";
            default:
                return "the text went into no field; no field has this name";
        }
    };
    return path_text(data) + ": " + what();
}

std::string InputDocument::source_encoding() {
    return locator() != nullptr ? locator_->encoding() : "UTF-8";
}

std::string InputDocument::path_of(std::size_t element) const {
    std::string path = elements_[element].name;
    std::size_t at = elements_[element].parent;
    while (at > 1) {
        path.insert(0, elements_[at - 1].name + "/");
        at = elements_[at - 1].parent;
    }
    return path;
}

void InputDocument::collect_names(const Xfd& xfd) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        const bool is_field = item.condition != XFD_GROUP;
        if (item.level == 1 && !is_field) continue;
        names_[folded(item.name)] |= is_field;
        if (!is_field) continue;
        std::vector<std::int16_t>& known = conditions_[item.name];
        if (std::find(known.begin(), known.end(), item.condition) == known.end()) {
            known.push_back(item.condition);
        }
    }
}

void InputDocument::collect_unused() {
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        if (elements_[i].has_text) unused_.push_back(unused_text(i));
        if (!elements_[i].has_attributes) continue;
        unused_.push_back({UnusedData::Kind::attributes, UnusedData::Hint::attribute, path_of(i),
                           static_cast<std::uint32_t>(i + 1)});
    }
}

UnusedData InputDocument::unused_text(std::size_t element) const {
    const std::string& name = elements_[element].name;
    const auto is_field = [this](std::string_view each) {
        const auto found = names_.find(folded(each));
        return found != names_.end() && found->second;
    };
    UnusedData data{UnusedData::Kind::text, UnusedData::Hint::none, path_of(element),
                    static_cast<std::uint32_t>(element + 1)};
    const std::uint32_t parent = elements_[element].parent;
    if (const auto found = conditions_.find(name); found != conditions_.end()) {
        const bool is_present = std::any_of(
            found->second.begin(), found->second.end(),
            [this](std::int16_t each) { return condition_holds(*module_file_.xfd, each); });
        data.kind = is_present ? UnusedData::Kind::surplus : UnusedData::Kind::absent;
        const bool is_deeper = parent > 1 && names_.count(folded(elements_[parent - 1].name)) == 0;
        if (is_deeper) data.hint = UnusedData::Hint::level;
    } else if (is_field(name)) {
        data.hint = UnusedData::Hint::spelling;
    } else if (is_field(std::string_view(name).substr(name.find(':') + 1))) {
        data.hint = UnusedData::Hint::prefix;
    }
    return data;
}

}  // namespace conversion
