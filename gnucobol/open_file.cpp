#include "gnucobol/open_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

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

// The lengths of the record layouts that conditions are tied to, by condition; entry 0 is that of
// the layout without one.
std::vector<std::uint32_t> layout_lengths(const Xfd& xfd) {
    std::vector<std::uint32_t> lengths(static_cast<std::size_t>(xfd.condition_count) + 1, 0);
    if ((xfd.flags & XFD_SEVERAL_LAYOUTS) == 0) return lengths;
    const auto length = [&xfd](std::int32_t item) {
        return static_cast<std::uint32_t>(std::max(xfd.items[item].data.length, 0));
    };
    std::vector<std::int32_t> tied;
    for (std::int16_t i = 0; i < xfd.condition_count; ++i) {
        const std::int32_t item = xfd.conditions[i].item;
        if (item < 0 || item >= xfd.item_count || xfd.items[item].level != 1) continue;
        lengths[static_cast<std::size_t>(i) + 1] = length(item);
        tied.push_back(item);
    }
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const bool is_tied = std::find(tied.begin(), tied.end(), i) != tied.end();
        if (xfd.items[i].level == 1 && !is_tied) lengths[0] = length(i);
    }
    return lengths;
}

}  // namespace

OpenFile::OpenFile(std::string path, const FCD3& fcd)
    : path_(std::move(path)), assigned_(assigned_name(fcd)), record_area_(fcd.recPtr) {
    opening_.status = Status::optional_missing;
}

OpenFile::OpenFile(std::string path, const FCD3& fcd, FileLayout layout, std::int32_t direction)
    : path_(std::move(path)),
      assigned_(assigned_name(fcd)),
      record_area_(fcd.recPtr),
      layout_(std::move(layout)),
      record_(longest_record(fcd)),
      direction_(direction) {
    const Xfd& xfd = layout_->description.xfd();
    blank_.emplace(xfd, longest_record(fcd));
    lengths_ = layout_lengths(xfd);
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
    const std::uint32_t length = lengths_[static_cast<std::size_t>(number)];
    if (length > 0) layout_length_ = length;
}

Result OpenFile::read(FCD3& fcd) {
    if (xml_ != nullptr && direction_ != XML_OPEN_INPUT) return {Status::not_open_for_input, {}};
    if (ended_) return {Status::read_after_end, {}};
    if (xml_ == nullptr) {
        ended_ = true;
        return {Status::at_end, {}};
    }
    blank_->blank(record_.data());
    layout_length_ = lengths_[0];
    const std::uint64_t exceptions = records::data_exceptions();
    watch_conditions(this);
    const int result = xml_module().read(xml_, record_.data());
    watch_conditions(nullptr);
    const std::int16_t error = *host_file_error();
    if (result == 0 || error != HOST_FILE_OK) {
        ended_ = true;
        if (result == 0 && error == HOST_FILE_END) return {Status::at_end, {}};
        return result_of_file_error();
    }
    std::memcpy(fcd.recPtr, record_.data(), record_.size());
    set_current_record(fcd, length_of_record_read(fcd));
    const bool is_doubtful = records::data_exceptions() != exceptions;
    return {is_doubtful ? Status::doubtful_data : Status::done, {}};
}

std::uint32_t OpenFile::length_of_record_read(const FCD3& fcd) const {
    const std::uint32_t longest = longest_record(fcd);
    const std::uint32_t shortest = shortest_record(fcd);
    if (shortest >= longest) return longest;
    const std::uint32_t layout = layout_length_ > 0 ? std::min(layout_length_, longest) : longest;
    const std::int32_t used =
        layout_->description.used_length(record_.data(), static_cast<std::int32_t>(layout));
    return std::max(static_cast<std::uint32_t>(used), shortest);
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
