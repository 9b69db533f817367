#include "tools/sxml/cob/words.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "records/source/text/text_case.h"
#include "tools/sxml/failure.h"

namespace command::cob {

namespace {

template <std::size_t COUNT>
bool is_one_of(std::string_view word, const std::array<std::string_view, COUNT>& words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

template <std::size_t COUNT>
bool begins_with_one_of(std::string_view word,
                        const std::array<std::string_view, COUNT>& beginnings) {
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::string_view beginning) { return word.starts_with(beginning); });
}

constexpr std::array<std::string_view, 9> MAKES = {"-x", "-m", "-b", "-c", "-C",
                                                   "-S", "-E", "-j", "-xj"};
constexpr std::array<std::string_view, 20> ASKS = {"-h",
                                                   "-help",
                                                   "--help",
                                                   "-V",
                                                   "-version",
                                                   "--version",
                                                   "-i",
                                                   "-info",
                                                   "--info",
                                                   "-E",
                                                   "-list-reserved",
                                                   "--list-reserved",
                                                   "-dumpversion",
                                                   "-list-mnemonics",
                                                   "--list-mnemonics",
                                                   "-list-intrinsics",
                                                   "-list-system",
                                                   "--list-system",
                                                   "-fsyntax-only",
                                                   "--list-intrinsics"};
// Options whose value is the next word.
constexpr std::array<std::string_view, 14> TAKE_NEXT = {
    "-o", "-t", "-T", "-L", "-l", "-A", "-Q", "-I", "-D", "-K", "-ext", "-std", "-conf", "-k"};
constexpr std::array<std::string_view, 12> READING = {"-I",    "-D",    "-std",   "-conf",
                                                      "-free", "-F",    "-fixed", "-ext",
                                                      "-f",    "--std", "--conf", "--free"};
// Those of them that do not concern reading.
constexpr std::array<std::string_view, 5> NOT_READING = {"-fec", "-fdump", "-fsyntax-only",
                                                         "-fno-ec", "-ftrace"};
constexpr std::array<std::string_view, 4> COMPILING = {"-d", "-debug", "-g", "-K"};
constexpr std::array<std::string_view, 8> COMPILED = {".c", ".o", ".obj", ".so",
                                                      ".a", ".s", ".i",   ".lib"};

bool is_source(const std::string& word) {
    if (word.starts_with("-") || word.empty()) return false;
    const std::string suffix = std::filesystem::path(word).extension().string();
    return !is_one_of(suffix, COMPILED);
}

class Splitter {
  public:
    explicit Splitter(const std::vector<std::string>& given) : given_(given) {}

    Words split() {
        for (at_ = 0; at_ < given_.size(); ++at_) take(given_[at_]);
        return std::move(words_);
    }

  private:
    const std::string& next() {
        if (at_ + 1 == given_.size()) fail_usage("cob: " + given_[at_] + " needs a value");
        return given_[++at_];
    }

    void take(const std::string& word) {
        if (word == "--no-xml") {
            words_.left_out.insert(records::to_upper(next()));
            return;
        }
        if (word == "--name") return take_name(next());
        words_.all.push_back(word);
        if (is_one_of(word, MAKES)) words_.says_what_to_make = true;
        if (is_one_of(word, ASKS)) words_.compiles = false;
        if (is_source(word)) words_.sources.push_back(word);
        if (!word.starts_with("-")) return;
        const bool is_reading =
            begins_with_one_of(word, READING) && !begins_with_one_of(word, NOT_READING);
        const bool is_compiling = is_reading || is_one_of(word, COMPILING);
        if (is_reading) words_.reading.push_back(word);
        if (is_compiling) words_.compiling.push_back(word);
        if (!is_one_of(word, TAKE_NEXT) || at_ + 1 == given_.size()) return;
        const std::string& value = next();
        words_.all.push_back(value);
        if (is_reading) words_.reading.push_back(value);
        if (is_compiling) words_.compiling.push_back(value);
    }

    void take_name(const std::string& value) {
        const std::size_t sign = value.find('=');
        const std::string fd = sign == std::string::npos ? "" : value.substr(0, sign);
        const std::string name = sign == std::string::npos ? value : value.substr(sign + 1);
        if (name.empty()) fail_usage("cob: --name takes FD=NAME, or the NAME for the only FD");
        words_.document_names[records::to_upper(fd)] = name;
    }

    const std::vector<std::string>& given_;
    std::size_t at_ = 0;
    Words words_;
};

}  // namespace

Words split_words(const std::vector<std::string>& given) {
    return Splitter(given).split();
}

}  // namespace command::cob
