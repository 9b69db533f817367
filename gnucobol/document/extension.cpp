#include "gnucobol/document/extension.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "conversion/documents/document_check.h"
#include "platform/shared_files.h"

namespace gnucobol {

namespace {

constexpr std::string_view DATED_COMMENT = "<!-- Created by ";

// Closed by its destructor.
class Descriptor {
  public:
    explicit Descriptor(const std::string& file)
        : number_(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }

  private:
    int number_;
};

std::uint64_t size_of(int descriptor) {
    struct stat info {};
    if (fstat(descriptor, &info) != 0) throw std::runtime_error(std::strerror(errno));
    return static_cast<std::uint64_t>(info.st_size);
}

// `size` bytes from `offset` on, or as many as there are.
std::string part_of(int descriptor, std::uint64_t offset, std::uint64_t size) {
    std::string part(size, '\0');
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t count = pread(descriptor, part.data() + filled, size - filled,
                                    static_cast<off_t>(offset + filled));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw std::runtime_error(std::strerror(errno));
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    part.resize(filled);
    return part;
}

// The length of `wanted` at the beginning of `text`, in which only the dated comment may differ;
// nothing when anything else differs.
std::optional<std::size_t> same_beginning(std::string_view text, std::string_view wanted) {
    std::size_t at = 0;
    while (!wanted.empty()) {
        const std::string_view line = wanted.substr(0, wanted.find('\n') + 1);
        if (line.empty()) return std::nullopt;
        const std::string_view own = text.substr(at, text.find('\n', at) + 1 - at);
        const bool is_dated = line.starts_with(DATED_COMMENT) && own.starts_with(DATED_COMMENT);
        if (!is_dated && own != line) return std::nullopt;
        at += own.size();
        wanted.remove_prefix(line.size());
    }
    return at;
}

Result copied(int from, std::uint64_t begin, std::uint64_t end, int to, std::uint64_t position) {
    const int error = platform::copy_bytes(from, begin, end, to, position);
    return error == 0 ? Result{} : refusal(error);
}

}  // namespace

Extension::Extension(const std::string& folder) : descriptor_(platform::open_nameless(folder)) {
    if (descriptor_ < 0) {
        throw std::runtime_error(std::string("there is no room for new records: ") +
                                 std::strerror(errno));
    }
    name_ = platform::name_of_descriptor(descriptor_);
}

Extension::~Extension() {
    close(descriptor_);
}

Result Extension::begin(const std::string& old_document, int target) {
    const std::string empty = part_of(descriptor_, 0, size_of(descriptor_));
    const std::size_t end_tag = empty.rfind("</");
    if (end_tag == std::string::npos) return {Status::permanent_error, "no document can be begun"};
    begin_size_ = end_tag;
    end_ = empty.substr(end_tag);
    if (const auto damage = conversion::check_document(old_document, old_document)) {
        if (damage->system_error != 0) return refusal(damage->system_error);
        return {Status::permanent_error,
                "the document is damaged: line " + std::to_string(damage->place.line) +
                    ", column " + std::to_string(damage->place.column) + ": " + damage->what};
    }
    const Descriptor old(old_document);
    if (old.number() < 0) return refusal(errno);
    const std::uint64_t size = size_of(old.number());
    constexpr std::uint64_t LONGER_COMMENT = 1000;
    const auto beginning = same_beginning(part_of(old.number(), 0, begin_size_ + LONGER_COMMENT),
                                          std::string_view(empty).substr(0, end_tag));
    const bool has_same_end =
        size >= end_.size() && part_of(old.number(), size - end_.size(), end_.size()) == end_;
    if (!beginning || !has_same_end || *beginning + end_.size() > size) {
        return {Status::attributes_differ,
                "the document does not begin and end as this program writes it, so that nothing "
                "can be added; write it anew"};
    }
    old_size_ = size - end_.size();
    return copied(old.number(), 0, old_size_, target, 0);
}

Result Extension::append(int target) const {
    const std::uint64_t size = size_of(descriptor_);
    const std::uint64_t whole = begin_size_ + end_.size();
    if (size < whole) return {Status::permanent_error, "the new records are not complete"};
    return copied(descriptor_, begin_size_, size, target, old_size_);
}

}  // namespace gnucobol
