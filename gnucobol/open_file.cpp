#include "gnucobol/open_file.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "host/errors.h"

namespace gnucobol {

namespace {

// What an open, a read or a write that failed means to the program.
Result result_of(const conversion::Problem& problem) {
    std::string reason = problem.what;
    if (problem.place.line != 0) {
        reason = "line " + std::to_string(problem.place.line) + ", column " +
                 std::to_string(problem.place.column) + ": " + reason;
    }
    switch (problem.cause) {
        case conversion::Cause::not_found:
            return {Status::not_found, {}};
        case conversion::Cause::not_permitted:
            return {Status::not_permitted, {}};
        case conversion::Cause::document: {
            const bool is_short = *host_file_error() == HOST_FILE_END;
            const std::string summary =
                is_short ? "the document ends too early" : "the document is damaged";
            const bool is_located = problem.place.line != 0;
            return {Status::permanent_error, is_located ? summary + ": " + reason : summary};
        }
        default:
            if (!problem.place.field.empty())
                reason = "field " + problem.place.field + ": " + reason;
            if (!problem.remedy.empty()) reason += "; " + problem.remedy;
            return {Status::permanent_error, reason};
    }
}

}  // namespace

Status status_of_write_error(int error) {
    return conversion::cause_of(error) == conversion::Cause::no_space ? Status::no_space
                                                                      : Status::permanent_error;
}

OpenFile::OpenFile(std::string path, cob_file* program_file)
    : path_(std::move(path)), program_file_(program_file) {
    opening_.status = Status::optional_missing;
}

OpenFile::OpenFile(std::string path, cob_file* program_file, FileLayout layout,
                   conversion::DocumentSource source)
    : path_(std::move(path)),
      program_file_(program_file),
      source_(std::move(source)),
      layout_(std::move(layout)) {
    auto opened =
        conversion::InputDocument::open(layout_->description, nullptr, {source_->file(), path_});
    if (opened) {
        input_ = *std::move(opened);
    } else {
        opening_ = result_of(opened.problem());
    }
}

OpenFile::OpenFile(std::string path, cob_file* program_file, FileLayout layout,
                   conversion::CharacterSet characters)
    : path_(std::move(path)),
      program_file_(program_file),
      layout_(std::move(layout)),
      characters_(std::move(characters)) {
    auto opened =
        conversion::OutputDocument::open(layout_->description, *characters_, {path_, path_, {}});
    if (opened) {
        output_ = *std::move(opened);
    } else {
        opening_ = result_of(opened.problem());
    }
}

OpenFile::~OpenFile() = default;

void OpenFile::close() {
    input_.reset();
    output_.reset();
    source_.reset();
}

void OpenFile::fail_writing(int error) {
    if (!failure_) failure_ = Result{status_of_write_error(error), std::strerror(error)};
}

const std::vector<conversion::RecordLayout>& OpenFile::layouts() const {
    return (input_ ? input_->fields() : output_->fields()).layouts();
}

Result OpenFile::read(FCD3& fcd) {
    if (output_) return {Status::not_open_for_input, {}};
    if (ended_) return {Status::read_after_end, {}};
    if (!input_) {
        ended_ = true;
        return {Status::at_end, {}};
    }
    const conversion::Result<bool> read = input_->read();
    ended_ = !read || !*read;
    if (!read) return result_of(read.problem());
    if (ended_) return {Status::at_end, {}};
    const std::span<const std::uint8_t> record = input_->record();
    std::memcpy(fcd.recPtr, record.data(), record.size());
    const std::uint32_t length =
        length_of_record_read(fcd, static_cast<std::uint32_t>(input_->filled_length()));
    set_current_record(fcd, length);
    tell_program(length);
    const auto& troubles = input_->troubles();
    const bool is_doubtful =
        std::any_of(troubles.begin(), troubles.end(), [](const conversion::FieldTrouble& trouble) {
            return trouble.fate == conversion::FieldFate::no_number;
        });
    return {is_doubtful ? Status::doubtful_data : Status::done, {}};
}

// The runtime does not take the length over from the description.
void OpenFile::tell_program(std::uint32_t length) {
    if (program_file_ == nullptr) return;
    program_file_->record->size = length;
    cob_field* const depending = program_file_->variable_record;
    if (depending != nullptr) cob_set_int(depending, static_cast<int>(length));
}

// A document keeps no lengths. What tells one is, in this order: the counter of a table that ends
// the record, the layout, the text of a line or of a record that is but a text, and the last field
// that there was data for.
std::uint32_t OpenFile::length_of_record_read(const FCD3& fcd, std::uint32_t filled) const {
    const std::uint32_t longest = longest_record(fcd);
    const std::uint32_t shortest = shortest_record(fcd);
    if (shortest >= longest) return longest;
    const records::Description& description = layout_->description;
    std::uint32_t length = layout_length(longest);
    if (description.min_record_length() < description.record_length()) {
        const std::int32_t used =
            description.used_length(fcd.recPtr, static_cast<std::int32_t>(longest));
        length = std::min(length, static_cast<std::uint32_t>(used));
    } else if (fcd.fileOrg == ORG_LINE_SEQ || is_one_text()) {
        length = length_of_text();
    } else if (layouts().size() < 2) {
        length = std::min(length, filled);
    }
    return std::max(length, shortest);
}

std::uint32_t OpenFile::longest_layout() const {
    std::uint32_t longest = 0;
    for (const conversion::RecordLayout& layout : layouts()) {
        longest = std::max(longest, static_cast<std::uint32_t>(layout.length));
    }
    return longest;
}

// The record without blanks at its end.
std::uint32_t OpenFile::length_of_text() const {
    const std::span<const std::uint8_t> record = input_->record();
    const auto end =
        std::find_if(record.rbegin(), record.rend(), [](std::uint8_t byte) { return byte != ' '; });
    return static_cast<std::uint32_t>(record.rend() - end);
}

// Whether a record is but one field of characters.
bool OpenFile::is_one_text() const {
    const auto& fields = layouts().front().fields;
    return layouts().size() == 1 && fields.size() == 1 &&
           fields[0].kind == conversion::FieldKind::text;
}

// The length of the layout that was read: the first whose conditions all held.
std::uint32_t OpenFile::layout_length(std::uint32_t longest) const {
    if (layouts().size() < 2) return longest;
    const std::optional<std::size_t> layout = input_->layout();
    return layout ? static_cast<std::uint32_t>(layouts()[*layout].length) : longest;
}

Result OpenFile::write(const FCD3& fcd) {
    if (!output_) return {Status::not_open_for_output, {}};
    if (current_record(fcd) < shortest_record(fcd)) return {Status::wrong_length, {}};
    if (!layout_->is_whole && current_record(fcd) > longest_layout()) {
        return {Status::permanent_error,
                "the record has " + std::to_string(current_record(fcd)) + " bytes, " +
                    layout_->source + " describes " + std::to_string(longest_layout()) +
                    " of them; say in it when each record layout is meant (`*> sxml: when ...`)"};
    }
    const std::uint32_t length = std::min(current_record(fcd), longest_record(fcd));
    const auto problem = output_->write(fcd.recPtr, static_cast<std::int32_t>(length));
    return problem ? result_of(*problem) : Result{};
}

}  // namespace gnucobol
