// Sequences of file operations of a COBOL program, with a document and with a plain file. The
// input: the bytes of a document that is there at the start, up to a NUL; then operations by their
// letters (operations.cbl), W with the record. Whatever the document contains, every call returns a
// status that COBOL defines, and a document that was closed is well-formed to Expat alone. Where
// there was no document, the statuses and the records read are those of the plain file.
#include <dlfcn.h>
#include <fcntl.h>
#include <libcob.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "fuzz/judge.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t RECORD_LENGTH = 15;
constexpr std::size_t NAME_LENGTH = 200;
constexpr std::size_t MOST_OPERATIONS = 40;

fuzz::Judge judge(std::cout);  // what goes to standard error is lost

// The program OPERATIONS of one compilation, and the file that it works on.
class Program {
  public:
    using Record = std::array<unsigned char, RECORD_LENGTH>;

    Program(const char* library, const std::string& file) : file_(file) {
        void* const loaded = dlopen(library, RTLD_NOW | RTLD_LOCAL);
        judge.require(loaded != nullptr, "the program is loaded");
        call_ = reinterpret_cast<Call>(dlsym(loaded, "OPERATIONS"));
        judge.require(call_ != nullptr, "the program is found");
        name_.fill(' ');
        std::copy(file.begin(), file.end(), name_.begin());
    }

    std::string run(char operation, Record& record) {
        auto letter = static_cast<unsigned char>(operation);
        std::array<unsigned char, 2> status = {};
        call_(&letter, record.data(), status.data(), name_.data());
        return {status.begin(), status.end()};
    }

    const std::string& file() const { return file_; }

  private:
    using Call = int (*)(unsigned char*, unsigned char*, unsigned char*, unsigned char*);
    Call call_ = nullptr;
    std::string file_;
    std::array<unsigned char, NAME_LENGTH> name_ = {};
};

// The folder, and no messages: there may be thousands.
struct Surroundings {
    Surroundings() {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        judge.require(dup2(nowhere, STDERR_FILENO) == STDERR_FILENO, "messages go nowhere");
        cob_init(0, nullptr);
    }
    const fuzz::Folder folder{judge};
};

std::string contents(const std::string& name) {
    std::ifstream input(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

// Takes the record of a W from the input: digits and letters are made of the bytes, so that both
// kinds of file can hold it.
Program::Record next_record(std::string_view& input) {
    Program::Record record;
    const auto next = [&input]() -> unsigned {
        if (input.empty()) return 0;
        const unsigned value = static_cast<unsigned char>(input.front());
        input.remove_prefix(1);
        return value;
    };
    for (std::size_t i = 0; i < 4; ++i) record[i] = static_cast<unsigned char>('0' + next() % 10);
    for (std::size_t i = 4; i < 10; ++i) record[i] = static_cast<unsigned char>('A' + next() % 26);
    for (std::size_t i = 10; i < 13; ++i) {
        const unsigned value = next() % 100;
        record[i] = static_cast<unsigned char>(value / 10 << 4 | value % 10);
    }
    record[12] = static_cast<unsigned char>((record[12] & 0xF0) | (next() % 2 == 0 ? 0xC : 0xD));
    for (std::size_t i = 13; i < 15; ++i) record[i] = static_cast<unsigned char>('0' + next() % 10);
    return record;
}

bool is_known(const std::string& status) {
    constexpr std::string_view KNOWN[] = {"00", "04", "05", "07", "10", "30", "34", "35",
                                          "37", "38", "39", "41", "42", "43", "44", "46",
                                          "47", "48", "49", "61", "71", "91"};
    return std::ranges::find(KNOWN, status) != std::end(KNOWN);
}

bool has_parts(const fs::path& folder) {
    return std::any_of(fs::directory_iterator(folder), fs::directory_iterator(),
                       [](const fs::directory_entry& entry) {
                           return entry.path().filename().string().find(".part") !=
                                  std::string::npos;
                       });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Surroundings surroundings;
    static Program document(SXML_OPERATIONS_XML, surroundings.folder / "f.xml");
    static Program plain(SXML_OPERATIONS_PLAIN, surroundings.folder / "f.dat");
    std::string_view input(reinterpret_cast<const char*>(data), size);
    judge.begin(input);
    const std::size_t end = input.find('\0');
    if (end == std::string_view::npos) return 0;
    fs::remove(document.file());
    fs::remove(plain.file());
    if (end > 0) std::ofstream(document.file(), std::ios::binary) << input.substr(0, end);
    const bool is_compared = end == 0;
    input.remove_prefix(end + 1);
    std::string log;
    std::string opened = "-";
    for (std::size_t i = 0; i < MOST_OPERATIONS && !input.empty(); ++i) {
        // No I-O and no REWRITE where plain files allow what documents cannot do.
        const std::string_view letters = is_compared ? "IOECRWWWRR" : "IOEULCRXWRR";
        const char letter = letters[static_cast<unsigned char>(input.front()) % letters.size()];
        input.remove_prefix(1);
        Program::Record record = {};
        if (letter == 'W' || letter == 'X') record = next_record(input);
        Program::Record same = record;
        const std::string status = document.run(letter, record);
        log += letter + status + " ";
        judge.require(is_known(status), "a status is one of COBOL's", log);
        if (letter == 'O' || letter == 'E' || letter == 'I') {
            if (status < "10") opened = letter;
        } else if (letter == 'C' && status == "00") {
            const bool is_written = opened == "O" || opened == "E";
            if (is_written) judge.require_well_formed(contents(document.file()));
            opened = "-";
        }
        if (!is_compared) continue;
        const std::string expected = plain.run(letter, same);
        judge.require(status == expected, "the statuses are those of a plain file", log + expected);
        judge.require(record == same, "the records are those of a plain file", log);
    }
    Program::Record record = {};
    document.run('C', record);
    plain.run('C', record);
    judge.require(!has_parts(surroundings.folder.path()), "nothing is left behind", log);
    return 0;
}
