#include "gnucobol/open_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "gnucobol/document_end.h"
#include "host/errors.h"
#include "host/records/numbers.h"

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

std::string damage_text() {
    const char* const text = *host_error_text();
    return text != nullptr && *text != '\0' ? std::string("the document is damaged: ") + text
                                            : "the document is damaged";
}

// What an open or a read that failed means to the program.
Result result_of_file_error() {
    switch (*host_file_error()) {
        case HOST_FILE_END:
            return {Status::permanent_error, "the document ends too early"};
        case HOST_FILE_NO_MEMORY:
            return {Status::permanent_error, "there is not enough memory"};
        case HOST_FILE_CANNOT_OPEN:
            return {Status::not_found, {}};
        case HOST_FILE_UNSUPPORTED:
            return {Status::not_permitted, {}};
        case HOST_FILE_XML:
            return {Status::permanent_error, damage_text()};
        default:
            return {Status::permanent_error, {}};
    }
}

Status status_of_write_error(int error) {
    const bool is_space = error == ENOSPC || error == EDQUOT || error == EFBIG;
    return is_space ? Status::no_space : Status::permanent_error;
}

// The record layouts of a description in order, each with the conditions of its fields.
std::vector<RecordLayout> layouts_of(const Xfd& xfd) {
    std::vector<RecordLayout> layouts;
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.level == 1) {
            layouts.push_back({static_cast<std::uint32_t>(std::max(item.data.length, 0)), {}});
        } else if (item.condition > 0 && item.condition <= xfd.condition_count &&
                   !layouts.empty()) {
            std::vector<std::int16_t>& conditions = layouts.back().conditions;
            if (conditions.empty() || conditions.back() != item.condition) {
                conditions.push_back(item.condition);
            }
        }
    }
    return layouts;
}

}  // namespace

OpenFile::OpenFile(std::string path, const FCD3& fcd, cob_file* program_file)
    : path_(std::move(path)), program_file_(program_file), record_(longest_record(fcd)) {
    opening_.status = Status::optional_missing;
}

OpenFile::OpenFile(std::string path, const FCD3& fcd, cob_file* program_file, FileLayout layout,
                   std::int32_t direction)
    : path_(std::move(path)),
      program_file_(program_file),
      layout_(std::move(layout)),
      record_(longest_record(fcd)),
      direction_(direction) {
    const Xfd& xfd = layout_->description.xfd();
    blank_.emplace(xfd, longest_record(fcd));
    layouts_ = layouts_of(xfd);
    held_.resize(static_cast<std::size_t>(xfd.condition_count) + 1);
    const host::Module& module = xml_module();
    const BoundDescription bound(layout_->description);
    xml_ = module.open(path_.c_str(), direction);
    if (xml_ == nullptr) opening_ = result_of_file_error();
}

OpenFile::~OpenFile() {
    close();
}

void OpenFile::close() {
    if (xml_ != nullptr) xml_module().close(xml_);
    xml_ = nullptr;
}

void OpenFile::fail_writing(int error) {
    if (!failure_) failure_ = Result{status_of_write_error(error), std::strerror(error)};
}

void OpenFile::condition_holds(int number) {
    blank_->blank_layout(number, record_.data());
    held_[static_cast<std::size_t>(number)] = true;
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
    watch_conditions(this);
    const int result = xml_module().read(xml_, record_.data());
    watch_conditions(nullptr);
    const std::int16_t error = *host_file_error();
    if (result == 0 || error != HOST_FILE_OK) {
        ended_ = true;
        const bool is_end = result == 0 && error == HOST_FILE_END && has_document_end(path_);
        return is_end ? Result{Status::at_end, {}} : result_of_file_error();
    }
    std::memcpy(fcd.recPtr, record_.data(), record_.size());
    const std::uint32_t length = length_of_record_read(fcd);
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

std::uint32_t OpenFile::length_of_record_read(const FCD3& fcd) const {
    const std::uint32_t longest = longest_record(fcd);
    const std::uint32_t shortest = shortest_record(fcd);
    if (shortest >= longest) return longest;
    const std::int32_t used =
        layout_->description.used_length(record_.data(), static_cast<std::int32_t>(longest));
    const std::uint32_t length = std::min(static_cast<std::uint32_t>(used), layout_length(longest));
    return std::max(length, shortest);
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

Result OpenFile::write(const FCD3& fcd) {
    if (xml_ == nullptr || direction_ != XML_OPEN_OUTPUT) return {Status::not_open_for_output, {}};
    const auto length =
        static_cast<std::int32_t>(std::min(current_record(fcd), longest_record(fcd)));
    const std::int32_t used = layout_->description.used_length(fcd.recPtr, length);
    if (xml_module().write(xml_, fcd.recPtr, static_cast<std::uint32_t>(used)) == 0) {
        return result_of_file_error();
    }
    return {};
}

}  // namespace gnucobol
