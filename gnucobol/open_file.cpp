#include "gnucobol/open_file.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "conversion/documents/document_check.h"
#include "gnucobol/document_encoding.h"
#include "host/encoding.h"
#include "host/errors.h"
#include "platform/files.h"
#include "records/numbers.h"

namespace gnucobol {

namespace {

// While this lives, the module gets this description for whatever it opens.
class BoundDescription {
  public:
    explicit BoundDescription(const records::Description& description) {
        records::bind_description(&description);
    }
    ~BoundDescription() { records::bind_description(nullptr); }
    BoundDescription(const BoundDescription&) = delete;
    BoundDescription& operator=(const BoundDescription&) = delete;
};

// What came through a pipe is gone and cannot be looked at again.
bool can_be_read_again(const std::string& file) {
    const auto state = platform::state_of(file);
    return state && state->kind == platform::FileKind::regular;
}

// What is wrong with a document that cannot be read on, and where.
std::string damage_text(const std::string& summary, const std::string& file) {
    if (!can_be_read_again(file)) return summary;
    const conversion::Done damage = conversion::check_document(file, file);
    if (!damage || damage->cause != conversion::Cause::document) return summary;
    return summary + ": line " + std::to_string(damage->place.line) + ", column " +
           std::to_string(damage->place.column) + ": " + damage->what;
}

// True when the document says that it is in ISO-8859-1: its texts come in that encoding then, and
// in UTF-8 otherwise. True also when this cannot be told.
bool is_latin1_document(const std::string& file) {
    if (!can_be_read_again(file)) return true;
    const auto name = conversion::declared_encoding(file);
    return !name || host_encoding_code((*name).c_str()) == HOST_ENCODING_LATIN1;
}

// What an open or a read of this file that failed means to the program.
Result result_of_file_error(const std::string& file) {
    switch (*host_file_error()) {
        case HOST_FILE_END:
            return {Status::permanent_error, damage_text("the document ends too early", file)};
        case HOST_FILE_NO_MEMORY:
            return {Status::permanent_error, "there is not enough memory"};
        case HOST_FILE_CANNOT_OPEN:
            return {Status::not_found, {}};
        case HOST_FILE_UNSUPPORTED:
            return {Status::not_permitted, {}};
        case HOST_FILE_XML:
            return {Status::permanent_error, damage_text("the document is damaged", file)};
        default:
            return {Status::permanent_error, {}};
    }
}

// The encoding of the texts of a document that is read or will be written.
std::string encoding_of_texts(const std::string& path, std::int32_t direction) {
    if (direction != XML_OPEN_INPUT) return encoding_to_write();
    return is_latin1_document(path) ? "ISO-8859-1" : "";
}

}  // namespace

Status status_of_write_error(int error) {
    return conversion::cause_of(error) == conversion::Cause::no_space ? Status::no_space
                                                                      : Status::permanent_error;
}

OpenFile::OpenFile(std::string path, const FCD3& fcd, cob_file* program_file)
    : path_(std::move(path)), program_file_(program_file), record_(longest_record(fcd)) {
    opening_.status = Status::optional_missing;
}

OpenFile::OpenFile(std::string path, const FCD3& fcd, cob_file* program_file, FileLayout layout,
                   conversion::DocumentSource source, std::int32_t direction)
    : path_(std::move(path)),
      program_file_(program_file),
      source_(std::move(source)),
      layout_(std::move(layout)),
      record_(longest_record(fcd)),
      direction_(direction) {
    Xfd& xfd = layout_->description.xfd();
    blank_.emplace(xfd, longest_record(fcd));
    layouts_ = layouts_of(xfd);
    text_.emplace(xfd, layouts_, encoding_of_texts(source_->file(), direction));
    held_.resize(static_cast<std::size_t>(xfd.condition_count) + 1);
    single_entry_.emplace(layout_->description);
    const host::Module& module = xml_module();
    const BoundDescription bound(layout_->description);
    xml_ = module.open(source_->file().c_str(), direction);
    if (xml_ == nullptr) opening_ = result_of_file_error(source_->file());
}

OpenFile::~OpenFile() {
    close();
}

void OpenFile::close() {
    if (xml_ != nullptr) xml_module().close(xml_);
    xml_ = nullptr;
    source_.reset();
}

void OpenFile::fail_writing(int error) {
    if (!failure_) failure_ = Result{status_of_write_error(error), std::strerror(error)};
}

void OpenFile::condition_holds(int number) {
    blank_->blank_layout(number, record_.data());
    held_[static_cast<std::size_t>(number)] = true;
}

void OpenFile::number_stored(const void* place) {
    try {
        single_entry_->number_stored(record_.data(), place);
    } catch (const std::bad_alloc&) {
        *host_file_error() = HOST_FILE_NO_MEMORY;
    }
}

Result OpenFile::read(FCD3& fcd) {
    if (xml_ != nullptr && direction_ != XML_OPEN_INPUT) return {Status::not_open_for_input, {}};
    if (ended_) return {Status::read_after_end, {}};
    if (xml_ == nullptr) {
        ended_ = true;
        return {Status::at_end, {}};
    }
    blank_->blank(record_.data());
    std::fill(held_.begin(), held_.end(), false);
    const std::uint64_t exceptions = records::data_exceptions();
    watch_record(this);
    const int result = xml_module().read(xml_, record_.data());
    watch_record(nullptr);
    single_entry_->end_record();
    const std::int16_t error = *host_file_error();
    if (result == 0 || error != HOST_FILE_OK) {
        ended_ = true;
        const bool is_end =
            result == 0 && error == HOST_FILE_END && xml_module().read_to_end(xml_, record_.data());
        return is_end ? Result{Status::at_end, {}} : result_of_file_error(source_->file());
    }
    text_->settle(record_.data(), held_);
    std::memcpy(fcd.recPtr, record_.data(), record_.size());
    const std::uint32_t length = length_of_record_read(fcd, static_cast<std::uint32_t>(result) - 1);
    set_current_record(fcd, length);
    tell_program(length);
    const bool is_doubtful = records::data_exceptions() != exceptions;
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
            description.used_length(record_.data(), static_cast<std::int32_t>(longest));
        length = std::min(length, static_cast<std::uint32_t>(used));
    } else if (fcd.fileOrg == ORG_LINE_SEQ || text_->is_one_text()) {
        length = length_of_text();
    } else if (layouts_.size() < 2) {
        length = std::min(length, filled);
    }
    return std::max(length, shortest);
}

std::uint32_t OpenFile::longest_layout() const {
    std::uint32_t longest = 0;
    for (const RecordLayout& layout : layouts_) longest = std::max(longest, layout.length);
    return longest;
}

// The record without blanks at its end.
std::uint32_t OpenFile::length_of_text() const {
    const auto end = std::find_if(record_.rbegin(), record_.rend(),
                                  [](std::uint8_t byte) { return byte != ' '; });
    return static_cast<std::uint32_t>(record_.rend() - end);
}

// The length of the layout that was read: the first whose conditions all held.
std::uint32_t OpenFile::layout_length(std::uint32_t longest) const {
    if (layouts_.size() < 2) return longest;
    for (const RecordLayout& layout : layouts_) {
        const bool is_read = std::all_of(
            layout.conditions.begin(), layout.conditions.end(),
            [this](std::int16_t number) { return held_[static_cast<std::size_t>(number)]; });
        if (is_read) return layout.length;
    }
    return longest;
}

// The record to write. One that ends within a field is filled up with blanks to that field's end.
const std::uint8_t* OpenFile::with_whole_fields(const std::uint8_t* record, std::uint32_t& length) {
    if (length >= record_.size()) return record;
    const std::uint32_t whole = text_->length_of_whole_fields(record, length);
    if (whole == length || whole > record_.size()) return record;
    std::fill(std::copy(record, record + length, record_.begin()), record_.end(), ' ');
    length = whole;
    return record_.data();
}

Result OpenFile::write(const FCD3& fcd) {
    if (xml_ == nullptr || direction_ != XML_OPEN_OUTPUT) return {Status::not_open_for_output, {}};
    if (current_record(fcd) < shortest_record(fcd)) return {Status::wrong_length, {}};
    if (!layout_->is_whole && current_record(fcd) > longest_layout()) {
        return {Status::permanent_error,
                "the record has " + std::to_string(current_record(fcd)) + " bytes, " +
                    layout_->source + " describes " + std::to_string(longest_layout()) +
                    " of them; say in it when each record layout is meant (`*> sxml: when ...`)"};
    }
    auto length = static_cast<std::uint32_t>(layout_->description.used_length(
        fcd.recPtr, static_cast<std::int32_t>(std::min(current_record(fcd), longest_record(fcd)))));
    const std::uint8_t* const record = with_whole_fields(fcd.recPtr, length);
    if (const auto problem = text_->problem(record, length)) {
        return {Status::permanent_error, *problem};
    }
    if (xml_module().write(xml_, record, length) == 0) return result_of_file_error(source_->file());
    return {};
}

}  // namespace gnucobol
