#include "gnucobol/document/open_file.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "gnucobol/report.h"
#include "host/config.h"
#include "host/errors.h"

namespace gnucobol {

namespace {

using conversion::FieldFate;
using conversion::FieldTrouble;
using conversion::UnusedData;

std::string with_remedy(const conversion::Problem& problem, std::string reason) {
    if (!problem.place.field.empty()) reason = "field " + problem.place.field + ": " + reason;
    return problem.remedy.empty() ? reason : reason + "; " + problem.remedy;
}

// The file status for a failed open, read or write.
Result result_of(const conversion::Problem& problem) {
    if (problem.system_error != 0) {
        Result result = refusal(problem.system_error);
        if (problem.cause == conversion::Cause::not_found) result.status = Status::not_found;
        return result;
    }
    switch (problem.cause) {
        case conversion::Cause::not_found:
            return {Status::not_found, {}};
        case conversion::Cause::not_permitted:
            return {Status::not_permitted, problem.what};
        case conversion::Cause::document: {
            std::string reason = *host_file_error() == HOST_FILE_END ? "the document ends too early"
                                                                     : "the document is damaged";
            if (problem.place.line != 0) {
                reason += ": line " + std::to_string(problem.place.line) + ", column " +
                          std::to_string(problem.place.column) + ": " + problem.what;
            }
            return {Status::permanent_error, reason};
        }
        default:
            return {Status::permanent_error, with_remedy(problem, problem.what)};
    }
}

// What could not be stored of a file that is written.
std::optional<Result> write_failure(const std::string& name) {
    const conversion::Done problem = conversion::take_write_failure(name);
    if (!problem) return std::nullopt;
    Result result = result_of(*problem);
    if (result.status != Status::no_space) result.status = Status::permanent_error;
    return result;
}

std::string quoted(const std::string& text) {
    constexpr std::size_t SHOWN = 40;
    return "\"" + (text.size() > SHOWN ? text.substr(0, SHOWN) + "..." : text) + "\"";
}

std::string text_of(const FieldTrouble& trouble) {
    switch (trouble.fate) {
        case FieldFate::cut:
            return quoted(trouble.text) + " is cut to " + std::to_string(trouble.size) + " bytes";
        case FieldFate::no_digits:
            return quoted(trouble.text) + " is not hexadecimal digits of the field's bytes";
        case FieldFate::cut_number:
            return quoted(trouble.text) + " loses the decimals that the field cannot hold";
        case FieldFate::lost_character:
            return quoted(trouble.text) +
                   " has a character that the program's set lacks; the "
                   "field is blank";
        default:
            return quoted(trouble.text) + " is not a number that the field can hold";
    }
}

std::string text_of(const UnusedData& unused) {
    switch (unused.kind) {
        case UnusedData::Kind::text:
            return "no field has the name of element " + unused.path;
        case UnusedData::Kind::surplus:
            return "element " + unused.path + " comes more often than the field";
        default:
            return "attributes of " + unused.path + " are in no field";
    }
}

// Attributes never become data; that is not worth a status of its own.
bool is_data(const UnusedData& unused) {
    return unused.kind != UnusedData::Kind::attributes;
}

}  // namespace

Result write_empty_document(const FileLayout& layout, const conversion::CharacterSet& characters,
                            const std::string& name) {
    auto opened = conversion::OutputDocument::open(layout.description, characters,
                                                   {name, name, layout.element});
    if (!opened) return result_of(opened.problem());
    (*opened)->close();
    return write_failure(name).value_or(Result{});
}

OpenFile::OpenFile(std::string path, cob_file& file) : path_(std::move(path)), file_(file) {
    opening_.status = Status::optional_missing;
}

OpenFile::OpenFile(std::string path, cob_file& file, FileLayout layout,
                   conversion::DocumentSource source)
    : path_(std::move(path)), file_(file), source_(std::move(source)), layout_(std::move(layout)) {
    conversion::InputDocument::Options options{source_->file(), path_};
    options.notes_unused = true;
    for (const FileLayout::Record& record : layout_->records) {
        options.is_named_by_element.push_back(!record.has_condition);
    }
    auto opened = conversion::InputDocument::open(layout_->description, nullptr, options);
    if (opened) {
        input_ = *std::move(opened);
    } else {
        opening_ = result_of(opened.problem());
    }
}

OpenFile::OpenFile(std::string path, cob_file& file, FileLayout layout,
                   conversion::CharacterSet characters, PrivateDocument document,
                   std::unique_ptr<Extension> extension)
    : path_(std::move(path)),
      file_(file),
      characters_(std::move(characters)),
      document_(std::move(document)),
      extension_(std::move(extension)),
      layout_(std::move(layout)),
      written_name_(extension_ ? extension_->name() : document_->name()) {
    auto opened = conversion::OutputDocument::open(layout_->description, *characters_,
                                                   {written_name_, path_, layout_->element});
    if (!opened) {
        opening_ = result_of(opened.problem());
        return;
    }
    output_ = *std::move(opened);
    if (const auto failure = write_failure(written_name_)) opening_ = *failure;
    find_gaps();
}

const std::vector<conversion::RecordLayout>& OpenFile::layouts() const {
    return (input_ ? input_->fields() : output_->fields()).layouts();
}

void OpenFile::find_gaps() {
    for (const conversion::RecordLayout& layout : layouts()) {
        std::vector<bool> is_described(longest());
        for (const conversion::Field& field : layout.fields) {
            const auto end = std::min<std::int64_t>(field.offset + field.length, longest());
            for (std::int64_t at = field.offset; at < end; ++at) {
                is_described[static_cast<std::size_t>(at)] = true;
            }
        }
        std::vector<Gap>& gaps = gaps_.emplace_back();
        for (std::uint32_t at = 0; at < longest(); ++at) {
            if (is_described[at]) continue;
            if (gaps.empty() || gaps.back().end != at) gaps.push_back({at, at});
            gaps.back().end = at + 1;
        }
    }
}

Result OpenFile::complete() {
    input_.reset();
    if (!is_output()) return {};
    output_->close();
    if (!failure_) failure_ = write_failure(written_name_);
    if (failure_) return *failure_;
    Result result = extension_ ? extension_->append(document_->descriptor()) : Result{};
    return result.status == Status::done ? document_->complete() : result;
}

void OpenFile::drop() {
    if (output_ && document_->descriptor() < 0) output_->abandon();
}

void OpenFile::leave_to_parent() {
    if (document_) document_->leave_to_parent();
}

Result OpenFile::read() {
    if (is_output()) return {Status::not_open_for_input, {}};
    if (ended_) return {Status::read_after_end, {}};
    if (!input_) {
        ended_ = true;
        return {Status::at_end, {}};
    }
    const conversion::Result<bool> read = input_->read();
    ended_ = !read || !*read;
    if (!read) return result_of(read.problem());
    if (ended_) return {Status::at_end, {}};
    if (input_->problem()) return result_of(*input_->problem());
    const std::span<const std::uint8_t> record = input_->record();
    const std::size_t copied = std::min<std::size_t>(record.size(), longest());
    std::memcpy(file_.record->data, record.data(), copied);
    std::memset(file_.record->data + copied, ' ', longest() - copied);
    const std::uint32_t length = length_of_record_read();
    file_.record->size = length;
    if (file_.variable_record != nullptr) {
        cob_set_int(file_.variable_record, static_cast<int>(length));
    }
    return tell_troubles();
}

// Reports differences between the document and the record.
Result OpenFile::tell_troubles() {
    const auto& unused = input_->unused_data();
    const bool has_data = std::any_of(unused.begin(), unused.end(), is_data);
    // Of several layouts, the program itself knows which one a record has.
    const conversion::Done uncounted =
        layouts().size() == 1 ? input_->uncounted() : conversion::Done();
    if (input_->troubles().empty() && unused.empty() && input_->is_of_a_layout() && !uncounted) {
        return {};
    }
    const std::string where = "record " + std::to_string(input_->count());
    Result result;
    if (has_data && input_->filled_length() == 0) {
        result.status = Status::doubtful_data;
    } else if (!input_->is_of_a_layout()) {
        result = {Status::doubtful_data, where + ": none of the record layouts' conditions holds"};
    }
    if (uncounted) {
        report_data(path_, "of fields",
                    where + ", field " + uncounted->place.field + ": " + uncounted->what);
        result.status = Status::doubtful_data;
    }
    for (const FieldTrouble& trouble : input_->troubles()) {
        report_data(
            path_, "of fields",
            where + ", field " + input_->fields().name(trouble.item) + ": " + text_of(trouble));
        result.status = Status::doubtful_data;
    }
    for (const UnusedData& data : unused) {
        report_data(path_, "of unused data", where + ": " + text_of(data));
        if (is_data(data)) result.status = Status::doubtful_data;
    }
    return result;
}

// A document keeps no lengths. The length is determined, in this order, by the counter of a table
// that ends the record, by the layout, by the text of a line or of a record that is a single text,
// and by the last field that has data.
std::uint32_t OpenFile::length_of_record_read() const {
    if (shortest() >= longest()) return longest();
    const records::Description& description = layout_->description;
    if (description.slides()) {
        return std::clamp(static_cast<std::uint32_t>(input_->record().size()), shortest(),
                          longest());
    }
    std::uint32_t length = layout_length();
    if (description.min_record_length() < description.record_length()) {
        const std::int32_t used = description.used_length(
            file_.record->data, static_cast<std::int32_t>(longest()), input_->position());
        length = std::min(length, static_cast<std::uint32_t>(used));
    } else if (file_.organization == COB_ORG_LINE_SEQUENTIAL || is_one_text()) {
        length = length_of_text();
    } else if (layouts().size() < 2) {
        length = std::min(length, static_cast<std::uint32_t>(input_->filled_length()));
    }
    return std::max(length, shortest());
}

// The record without blanks at its end.
std::uint32_t OpenFile::length_of_text() const {
    const std::span<const std::uint8_t> record = input_->record();
    const auto end =
        std::find_if(record.rbegin(), record.rend(), [](std::uint8_t byte) { return byte != ' '; });
    return static_cast<std::uint32_t>(record.rend() - end);
}

// Whether a record is a single field of characters.
bool OpenFile::is_one_text() const {
    const auto& fields = layouts().front().fields;
    return layouts().size() == 1 && fields.size() == 1 &&
           fields[0].kind == conversion::FieldKind::text;
}

// The length of the layout that was read: the first whose conditions all held.
std::uint32_t OpenFile::layout_length() const {
    if (layouts().size() < 2) return longest();
    const std::optional<std::size_t> layout = input_->layout();
    return layout ? static_cast<std::uint32_t>(layouts()[*layout].length) : longest();
}

bool OpenFile::holds(const conversion::RecordLayout& layout) {
    Xfd& xfd = layout_->description.xfd();
    return std::all_of(layout.conditions.begin(), layout.conditions.end(),
                       [&](std::int16_t number) {
                           return Q4TestCOBOLCond(&xfd, number, file_.record->data) != 0;
                       });
}

// The layout to write: the record's own if its conditions hold; else the first of which a directive
// says that it is meant.
std::optional<std::size_t> OpenFile::choose_layout(const std::string& record) {
    if (layouts().size() == 1) return 0;
    for (const bool is_own : {true, false}) {
        for (std::size_t i = 0; i < layouts().size(); ++i) {
            const FileLayout::Record& each = layout_->records[i];
            const bool may_be_meant = is_own ? each.name == record : each.has_condition;
            if (may_be_meant && holds(layouts()[i])) return i;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> OpenFile::byte_without_field(std::size_t layout,
                                                          std::uint32_t length) const {
    for (const Gap& gap : gaps_[layout]) {
        for (std::uint32_t at = gap.begin; at < std::min(gap.end, length); ++at) {
            const unsigned char byte = file_.record->data[at];
            if (byte != ' ' && byte != 0) return at;
        }
    }
    return std::nullopt;
}

// Reports, once for each file, a byte of the record that belongs to no field of the document.
Result OpenFile::tell_byte_without_field(std::uint32_t byte) {
    const std::string what = "byte " + std::to_string(byte + 1) +
                             " of the record is not blank and in no field (FILLER?), so that the "
                             "document does not have it; give what is to be kept a name";
    if (host_config_flag("SXML_STRICT", 0) != 0) return {Status::permanent_error, what};
    has_told_bytes_ = true;
    report_warning(path_, what);
    return {};
}

// Empty when it is not known, or does not matter.
const std::string& OpenFile::name_of_record(const Where& where, const char* expression) {
    static const std::string unknown;
    if (layouts().size() == 1) return unknown;
    const auto [name, is_new] = names_.try_emplace({where.source, expression});
    if (is_new) name->second = record_written(where, expression, *layout_);
    return name->second;
}

Result OpenFile::write(std::uint32_t length, const Where& where, const char* expression) {
    if (!is_output()) return {Status::not_open_for_output, {}};
    if (failure_) return {failure_->status, "nothing is written any more"};
    const std::string& record = name_of_record(where, expression);
    const std::optional<std::size_t> layout = choose_layout(record);
    if (!layout) {
        return {Status::permanent_error,
                "no layout can be chosen for the record" + (record.empty() ? "" : " " + record) +
                    "; write each record by the name of its 01, or say when each is meant (`*> "
                    "sxml: when ...`)"};
    }
    if (!has_told_bytes_) {
        const auto byte = byte_without_field(*layout, length);
        Result result = byte ? tell_byte_without_field(*byte) : Result{};
        if (result.status != Status::done) return result;
    }
    const auto described = static_cast<std::uint32_t>(layout_->description.record_length());
    const conversion::Done problem = output_->write(
        file_.record->data, static_cast<std::int32_t>(std::min(length, described)), layout);
    if (problem) return result_of(*problem);
    failure_ = write_failure(written_name_);
    return failure_.value_or(Result{});
}

}  // namespace gnucobol
