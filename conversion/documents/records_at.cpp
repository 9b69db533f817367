// A document whose records are the elements at a path: everything else becomes spaces, so that what
// is left stands where it stood.

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

#include "conversion/documents/checked_parser.h"
#include "conversion/documents/document_source.h"
#include "conversion/formats/byte_sink.h"
#include "conversion/formats/byte_source.h"

namespace conversion {

namespace {

constexpr std::size_t PIECE = std::size_t{1} << 16;

std::vector<std::string> steps_of(const std::string& path) {
    std::vector<std::string> steps(1);
    for (const char c : path) {
        if (c == '/') {
            steps.emplace_back();
        } else {
            steps.back() += c;
        }
    }
    return steps;
}

// Copies a file from its start on; what is not wanted as spaces. Line ends stay.
class PartialCopy {
  public:
    PartialCopy(ByteSource& from, ByteSink& to) : from_(from), to_(to), piece_(PIECE) {}

    enum class As { it_is, spaces };
    // As far as `end`, a byte offset in the file; the end of the file when there is less.
    Done copy(std::uint64_t end, As as) {
        while (at_ < end) {
            const std::uint64_t wanted = std::min<std::uint64_t>(end - at_, piece_.size());
            const Result<std::size_t> count = from_.read(piece_.data(), wanted);
            if (!count) return count.problem();
            if (*count == 0) return {};
            if (at_ == 0) note_units(*count);
            if (as == As::spaces) blank(*count);
            if (Done problem = to_.write(piece_.data(), *count)) return problem;
            at_ += *count;
        }
        return {};
    }

  private:
    // UTF-16 shows in the first character, which is '<' or a byte order mark.
    void note_units(std::size_t count) {
        if (count < 2) return;
        is_wide_ = piece_[0] == 0 || piece_[1] == 0 || piece_[0] >= 0xFE;  // no UTF-8 begins so
        is_big_endian_ = piece_[0] == 0 || piece_[0] == 0xFE;
    }

    // Pieces begin with whole units: they are even, and so is where events begin and end.
    void blank(std::size_t count) {
        const std::size_t size = is_wide_ ? 2 : 1;
        for (std::size_t unit = 0; unit + size <= count; unit += size) {
            std::uint8_t& low = piece_[unit + (is_wide_ && is_big_endian_ ? 1 : 0)];
            std::uint8_t* const high =
                is_wide_ ? &piece_[unit + (is_big_endian_ ? 0 : 1)] : nullptr;
            const bool is_line_end =
                (low == '\n' || low == '\r') && (high == nullptr || *high == 0);
            if (!is_line_end) low = ' ';
            if (high != nullptr) *high = 0;
        }
    }

    ByteSource& from_;
    ByteSink& to_;
    std::vector<std::uint8_t> piece_;
    std::uint64_t at_ = 0;
    bool is_wide_ = false;
    bool is_big_endian_ = false;
};

// One run over a document.
class RecordsAt {
  public:
    RecordsAt(const std::string& path, PartialCopy& copy)
        : steps_(steps_of(path)), path_(path), copy_(copy), parser_(this) {
        XML_SetElementHandler(parser_.expat(), &start, &finish);
        XML_SetCharacterDataHandler(parser_.expat(), &text);
    }

    const LeftOut& left_out() const { return left_out_; }

    Done run(const DocumentSource& document) {
        if (Done problem = parser_.parse(document.file(), document.name())) return problem;
        if (records_ == 0) {
            Place place;
            place.file = document.name();
            return Problem{Cause::document, std::move(place), "there is no element at " + path_,
                           "give the names from the document element on, as in orders/page/order; "
                           "`sxml tree` shows them"};
        }
        return copy_.copy(std::numeric_limits<std::uint64_t>::max(), PartialCopy::As::it_is);
    }

  private:
    static RecordsAt& of(void* parser) {
        return *static_cast<RecordsAt*>(CheckedParser::owner(parser));
    }

    static void XMLCALL text(void* user, const XML_Char* text, int length) {
        RecordsAt& self = of(user);
        if (self.is_counted_ || self.is_in_record()) return;
        const std::string_view seen(text, static_cast<std::size_t>(length));
        if (seen.find_first_not_of(" \t\r\n") == seen.npos) return;
        self.is_counted_ = true;
        self.leave_out(self.left_out_.texts);
    }

    bool is_in_record() const { return matching_ == steps_.size(); }

    void leave_out(std::uint64_t& count) {
        const bool is_first = left_out_.texts + left_out_.attributes == 0;
        ++count;
        if (!is_first) return;
        CheckedParser::guarded(parser_.expat(), [this] { left_out_.first = parser_.place(); });
    }

    static void XMLCALL start(void* user, const XML_Char* name, const XML_Char** attributes) {
        RecordsAt& self = of(user);
        self.is_counted_ = false;
        const std::size_t depth = self.depth_++;
        const bool is_on_path =
            self.matching_ == depth && depth < self.steps_.size() && self.steps_[depth] == name;
        if (is_on_path) ++self.matching_;
        for (; *attributes != nullptr && !self.is_in_record(); attributes += 2) {
            if (is_data_attribute(*attributes)) self.leave_out(self.left_out_.attributes);
        }
        if (depth == 0) {
            self.copy(self.event().end, PartialCopy::As::it_is);
        } else if (is_on_path && self.matching_ == self.steps_.size()) {
            self.begin_record();
        }
    }

    void begin_record() {
        ++records_;
        if (is_of_entity()) {
            return stop("the records come from an entity, of which no part can be taken",
                        "replace entities first, as `xmllint --noent` does");
        }
        copy(event().begin, PartialCopy::As::spaces);
    }

    // What comes from an entity stands where the reference to it stands.
    bool is_of_entity() const {
        const std::string_view text = input_at_event(parser_.expat());
        return text.starts_with('&') || text.starts_with(std::string_view("\0&", 2));
    }

    static void XMLCALL finish(void* user, const XML_Char*) {
        RecordsAt& self = of(user);
        self.is_counted_ = false;
        const std::size_t depth = --self.depth_;
        const bool is_record = depth + 1 == self.steps_.size() && self.matching_ == depth + 1;
        if (self.matching_ == depth + 1) self.matching_ = depth;
        if (depth == 0) {
            self.copy(self.event().begin, PartialCopy::As::spaces);
        } else if (is_record) {
            self.copy(self.event().end, PartialCopy::As::it_is);
        }
    }

    ByteRange event() const { return bytes_of_event(parser_.expat()); }

    void copy(std::uint64_t end, PartialCopy::As as) {
        CheckedParser::guarded(parser_.expat(), [&] {
            if (Done problem = copy_.copy(end, as)) parser_.stop(*std::move(problem));
        });
    }

    void stop(std::string what, std::string remedy) {
        parser_.stop({Cause::document, parser_.place(), std::move(what), std::move(remedy)});
    }

    std::vector<std::string> steps_;
    const std::string& path_;
    PartialCopy& copy_;
    CheckedParser parser_;
    std::size_t depth_ = 0;
    std::size_t matching_ = 0;  // steps that the open elements are
    std::uint64_t records_ = 0;
    LeftOut left_out_;
    bool is_counted_ = false;  // the text between two tags
};

}  // namespace

Done check_record_path(const std::string& path) {
    if (path.find('/') != path.npos && ("/" + path + "/").find("//") == path.npos) return {};
    return Problem{Cause::usage,
                   {},
                   "--record: " + path + " is not a path to records",
                   "give the names from the document element on, as in orders/page/order"};
}

Result<DocumentSource> DocumentSource::with_records_at(const std::string& path) const {
    if (Done problem = check_record_path(path)) return *std::move(problem);
    Result<DocumentSource> reduced = empty_copy(name_);
    if (!reduced) return reduced;
    Result<ByteSource> copied = ByteSource::open(file_);
    Result<ByteSink> sink =
        ByteSink::open(reduced->file(), "the copy of " + name_ + " for its records");
    if (!copied) return copied.problem();
    if (!sink) return sink.problem();
    PartialCopy copy(*copied, *sink);
    RecordsAt records(path, copy);
    if (Done problem = records.run(*this)) return *problem;
    if (Done problem = sink->close()) return *problem;
    reduced->counted_ = records.left_out();
    return reduced;
}

}  // namespace conversion
