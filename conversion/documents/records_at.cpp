// A document whose records are the elements at a path: everything else becomes spaces, so that what
// is left stands where it stood.

#include <expat.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "conversion/documents/document_check.h"
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
        is_wide_ = piece_[0] == 0 || piece_[1] == 0 || (piece_[0] | piece_[1]) == 0xFF;
        is_big_endian_ = piece_[0] == 0 || piece_[0] == 0xFE;
    }

    void blank(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const bool is_high = is_wide_ && ((at_ + i) % 2 == 0) == is_big_endian_;
            const bool is_line_end = piece_[i] == '\n' || piece_[i] == '\r';
            if (is_high) {
                piece_[i] = 0;
            } else if (!is_line_end) {
                piece_[i] = ' ';
            }
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
    RecordsAt(const std::string& path, const std::string& shown_name, PartialCopy& copy)
        : steps_(steps_of(path)),
          path_(path),
          shown_name_(shown_name),
          copy_(copy),
          parser_(XML_ParserCreate(nullptr), &XML_ParserFree) {
        if (!parser_) throw std::bad_alloc();
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), &start, &finish);
    }

    // The document is well-formed.
    Done run(ByteSource& source) {
        std::vector<std::uint8_t> piece(PIECE);
        std::uint64_t size = 0;
        for (bool is_last = false; !is_last && !problem_;) {
            const Result<std::size_t> count = source.read(piece.data(), piece.size());
            if (!count) return count.problem();
            size += *count;
            is_last = *count < piece.size();
            const auto* text = reinterpret_cast<const char*>(piece.data());
            const XML_Status status = XML_Parse(parser_.get(), text, static_cast<int>(*count),
                                                is_last ? XML_TRUE : XML_FALSE);
            if (is_out_of_memory_) throw std::bad_alloc();
            if (status == XML_STATUS_OK || problem_) continue;
            stop(XML_ErrorString(XML_GetErrorCode(parser_.get())), "");
        }
        if (problem_) return problem_;
        if (records_ == 0) {
            Place place;
            place.file = shown_name_;
            return Problem{Cause::document, std::move(place), "there is no element at " + path_,
                           "give the names from the document element on, as in orders/page/order; "
                           "`sxml tree` shows them"};
        }
        return copy_.copy(size, PartialCopy::As::it_is);
    }

  private:
    static RecordsAt& of(void* user) { return *static_cast<RecordsAt*>(user); }

    static void XMLCALL start(void* user, const XML_Char* name, const XML_Char**) {
        RecordsAt& self = of(user);
        const std::size_t depth = self.depth_++;
        const bool is_on_path =
            self.matching_ == depth && depth < self.steps_.size() && self.steps_[depth] == name;
        if (is_on_path) ++self.matching_;
        if (depth == 0) {
            self.copy(self.end_of_event(), PartialCopy::As::it_is);
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
        copy(static_cast<std::uint64_t>(XML_GetCurrentByteIndex(parser_.get())),
             PartialCopy::As::spaces);
    }

    // What comes from an entity stands where the reference to it stands.
    bool is_of_entity() const {
        int offset = 0;
        int size = 0;
        const char* text = XML_GetInputContext(parser_.get(), &offset, &size);
        if (text == nullptr || offset + 1 >= size) return false;
        return text[offset] == '&' || (text[offset] == '\0' && text[offset + 1] == '&');
    }

    static void XMLCALL finish(void* user, const XML_Char*) {
        RecordsAt& self = of(user);
        const std::size_t depth = --self.depth_;
        const bool is_record = depth + 1 == self.steps_.size() && self.matching_ == depth + 1;
        if (self.matching_ == depth + 1) self.matching_ = depth;
        if (depth == 0) {
            self.copy(static_cast<std::uint64_t>(XML_GetCurrentByteIndex(self.parser_.get())),
                      PartialCopy::As::spaces);
        } else if (is_record) {
            self.copy(self.end_of_event(), PartialCopy::As::it_is);
        }
    }

    std::uint64_t end_of_event() const {
        return static_cast<std::uint64_t>(XML_GetCurrentByteIndex(parser_.get()) +
                                          XML_GetCurrentByteCount(parser_.get()));
    }

    // Nothing may be thrown through Expat.
    void copy(std::uint64_t end, PartialCopy::As as) {
        try {
            problem_ = copy_.copy(end, as);
        } catch (const std::bad_alloc&) {
            is_out_of_memory_ = true;
        }
        if (problem_ || is_out_of_memory_) XML_StopParser(parser_.get(), XML_FALSE);
    }

    void stop(std::string what, std::string remedy) {
        Place place;
        place.file = shown_name_;
        place.line = XML_GetCurrentLineNumber(parser_.get());
        place.column = XML_GetCurrentColumnNumber(parser_.get()) + 1;
        problem_ = Problem{Cause::document, std::move(place), std::move(what), std::move(remedy)};
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    std::vector<std::string> steps_;
    const std::string& path_;
    const std::string& shown_name_;
    PartialCopy& copy_;
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    std::size_t depth_ = 0;
    std::size_t matching_ = 0;  // steps that the open elements are
    std::uint64_t records_ = 0;
    Done problem_;
    bool is_out_of_memory_ = false;
};

}  // namespace

Result<DocumentSource> DocumentSource::with_records_at(const std::string& path) const {
    if (path.find('/') == path.npos || ("/" + path + "/").find("//") != std::string::npos) {
        return Problem{Cause::usage,
                       {},
                       "--record: " + path + " is not a path to records",
                       "give the names from the document element on, as in orders/page/order"};
    }
    if (Done problem = check_document(file_, name_)) return *problem;
    Result<DocumentSource> reduced = empty_copy(name_);
    if (!reduced) return reduced;
    Result<ByteSource> parsed = ByteSource::open(file_);
    Result<ByteSource> copied = ByteSource::open(file_);
    Result<ByteSink> sink =
        ByteSink::open(reduced->file(), "the copy of " + name_ + " for its records");
    if (!parsed) return parsed.problem();
    if (!copied) return copied.problem();
    if (!sink) return sink.problem();
    PartialCopy copy(*copied, *sink);
    if (Done problem = RecordsAt(path, name_, copy).run(*parsed)) return *problem;
    if (Done problem = sink->close()) return *problem;
    return reduced;
}

}  // namespace conversion
