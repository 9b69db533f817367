#include "tools/sxml/cob/calling_compiler.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>

#include "tools/sxml/cob/run.h"

namespace command::cob {

namespace {

std::vector<std::string> split(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

// What the compiler was called with, as a comment in the C code says; `cobc` comes first.
std::vector<std::string> words_in_comment(const std::string& code) {
    constexpr std::string_view LABEL = "/* Compile command";
    for (const char* suffix : {".h", ""}) {
        std::istringstream stream(text_of(code + suffix));
        for (std::string line; std::getline(stream, line);) {
            if (!line.starts_with(LABEL)) continue;
            return split(line.substr(LABEL.size(), line.rfind("*/") - LABEL.size()));
        }
    }
    return {};
}

std::vector<std::string> words_of_process(pid_t process) {
    std::ifstream stream("/proc/" + std::to_string(process) + "/cmdline", std::ios::binary);
    std::vector<std::string> words;
    for (std::string word; std::getline(stream, word, '\0');) words.push_back(word);
    return words;
}

// 0 when there is none.
pid_t parent_of(pid_t process) {
    std::ifstream stream("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(stream, text);
    // The name of the program, in parentheses, may hold anything.
    const std::vector<std::string> fields = split(text.substr(text.rfind(')') + 1));
    return fields.size() < 2 ? 0 : std::stoi(fields[1]);
}

// In the comment the names of sources come last.
bool are_same(const std::vector<std::string>& words, std::vector<std::string> in_comment) {
    std::string joined;
    for (const std::string& word : words) joined += word + " ";
    std::vector<std::string> pieces = split(joined);
    std::sort(pieces.begin(), pieces.end());
    std::sort(in_comment.begin(), in_comment.end());
    return pieces == in_comment;
}

}  // namespace

std::vector<std::string> words_of_cobc(const std::string& code) {
    std::vector<std::string> words = words_in_comment(code);
    if (words.empty()) return {};
    for (pid_t process = getppid(); process > 1; process = parent_of(process)) {
        std::vector<std::string> its_words = words_of_process(process);
        if (!are_same(its_words, words)) continue;
        words = std::move(its_words);
        break;
    }
    words.erase(words.begin());
    return words;
}

}  // namespace command::cob
