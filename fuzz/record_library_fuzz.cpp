// Records into documents and back, through the record library. The input: a byte that chooses the
// character set and settings, a copybook up to a NUL, the bytes of records. What is refused is
// refused with a reason and leaves no document; what is written is well-formed to Expat alone, and
// the records that it gives make the same document again, unless a warning told of a repair.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/judge.h"
#include "sxml/records.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t MOST_RECORDS = 4;
constexpr std::size_t LARGEST_RECORD = 20'000;

fuzz::Judge judge(std::cerr);

const fuzz::Folder& folder() {
    static const fuzz::Folder made(judge);
    return made;
}

struct Close {
    void operator()(SxmlFile* file) const { sxml_close(file); }
};
using File = std::unique_ptr<SxmlFile, Close>;

std::string contents(const std::string& name) {
    std::ifstream input(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

// Without the white space at the ends of texts: what stands in front of a NUL is written, and not
// kept apart from the blanks that fill the field when it is read.
std::string without_space_at_ends(const std::string& document) {
    static const std::regex space("(&#x0[9ad];| )+<");
    return std::regex_replace(document, space, "<");
}

class Case {
  public:
    Case(std::uint8_t choices, std::string_view copybook)
        : ignores_empty_data_((choices & 4) != 0) {
        constexpr const char* ENCODINGS[] = {"encoding=utf-8", "encoding=iso-8859-1",
                                             "encoding=cp037", "encoding=cp1141"};
        options_ = {ENCODINGS[choices & 3],
                    ignores_empty_data_ ? "SXML_IGNORE_EMPTY_DATA=yes" : "SXML_CREATE_STYLE=NONE",
                    (choices & 8) != 0 ? "binary-size=1--8" : "buffer=by-type", nullptr};
        std::ofstream(layout_, std::ios::binary) << copybook;
    }

    // The records of `bytes`, as far as they go; false when the layout is refused.
    bool take_apart(std::string_view bytes) {
        const File file = open(nullptr, nullptr);
        std::size_t length = 0;
        if (sxml_record(file.get(), &length) == nullptr) {
            judge.require(*sxml_problem(file.get()) != '\0', "a refusal has a reason");
            return false;
        }
        if (length == 0 || length > LARGEST_RECORD) return false;
        while (!bytes.empty() && records_.size() < MOST_RECORDS) {
            records_.emplace_back(bytes.substr(0, length));
            bytes.remove_prefix(std::min(length, bytes.size()));
        }
        return true;
    }

    // Writes the records. Without those from the first on that is refused, it succeeds.
    std::string document(const char* name) {
        for (;;) {
            const std::size_t written = write(name);
            if (written == records_.size()) return contents(folder() / name);
            judge.require(!fs::exists(folder() / name), "what failed leaves no document");
            records_.resize(written);
        }
    }

    void read(const char* name) {
        const File file = open(name, "r");
        records_.clear();
        int result = 0;
        while ((result = sxml_read(file.get())) == 1) {
            is_repaired_ |= sxml_warning(file.get(), 0) != nullptr;
            std::size_t length = 0;
            const auto* const record = static_cast<const char*>(sxml_record(file.get(), &length));
            records_.emplace_back(record, length);
        }
        judge.require(result == 0, "the document is read to its end", sxml_problem(file.get()));
    }

    std::size_t record_count() const { return records_.size(); }
    bool ignores_empty_data() const { return ignores_empty_data_; }
    // Whether a warning told that a document and its record differ.
    bool is_repaired() const { return is_repaired_; }

  private:
    File open(const char* name, const char* mode) const {
        const std::string path = name != nullptr ? folder() / name : "";
        File file(sxml_open(layout_.c_str(), name != nullptr ? path.c_str() : nullptr, mode,
                            options_.data()));
        judge.require(file != nullptr, "there is a handle");
        return file;
    }

    // How many records could be written, when not all.
    std::size_t write(const char* name) {
        const File file = open(name, "w");
        for (std::size_t i = 0; i < records_.size(); ++i) {
            const std::string& record = records_[i];
            const bool is_taken = sxml_set_record(file.get(), record.data(), record.size()) == 0 &&
                                  sxml_write(file.get()) == 0;
            is_repaired_ |= sxml_warning(file.get(), 0) != nullptr;
            if (is_taken) continue;
            judge.require(*sxml_problem(file.get()) != '\0', "a refusal has a reason");
            judge.require(sxml_finish(file.get()) != 0, "a file that has failed is not finished");
            return i;
        }
        judge.require(sxml_finish(file.get()) == 0, "the document is finished",
                      sxml_problem(file.get()));
        return records_.size();
    }

    bool ignores_empty_data_;
    std::string layout_ = folder() / "layout.cpy";
    std::vector<const char*> options_;
    std::vector<std::string> records_;
    bool is_repaired_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    judge.begin(input);
    const std::size_t end = input.find('\0', 1);
    if (end == std::string_view::npos) return 0;
    Case one(data[0], input.substr(1, end - 1));
    if (!one.take_apart(input.substr(end + 1))) return 0;
    const std::string document = one.document("first.xml");
    const std::size_t count = one.record_count();
    judge.require_well_formed(document);
    one.read("first.xml");
    judge.require(one.record_count() == count || one.ignores_empty_data(),
                  "as many records come back as went", document);
    const bool is_repaired = one.is_repaired();
    const std::string again = one.document("second.xml");
    judge.require(is_repaired || without_space_at_ends(again) == without_space_at_ends(document),
                  "the records make the same document", document + "\n" + again);
    fs::remove(folder() / "first.xml");
    fs::remove(folder() / "second.xml");
    judge.require(folder().entries() == 1, "nothing is left behind");
    return 0;
}
