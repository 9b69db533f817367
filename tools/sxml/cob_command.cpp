// sxml cob: compiles a COBOL program whose files may be XML.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host/runtime/library_files.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

constexpr const char* HANDLER_LIBRARY = "libsxml_cob.so";
constexpr const char* HANDLER_HEADER = "sxml_extfh.h";

// The path of a file that belongs to the adapter.
std::string adapter_file(const char* name) {
    const std::string file = host::library_file(name);
    std::error_code error;
    const auto path = std::filesystem::canonical(file, error);
    if (error) fail(file + " is not there; install sxml again, whole");
    return path.string();
}

// As a word for the shell, by which cobc runs the C compiler.
std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

// True for the words by which cobc is told what to make.
bool says_what_to_make(const std::string& word) {
    constexpr std::array<std::string_view, 9> known = {"-x", "-m", "-b", "-c", "-C",
                                                       "-S", "-E", "-j", "-xj"};
    return std::find(known.begin(), known.end(), word) != known.end();
}

void compile(const std::vector<std::string>& given) {
    if (given.empty()) fail_usage("cob: name the program, as in `sxml cob orders.cbl`");
    const std::string header = adapter_file(HANDLER_HEADER);
    const std::string folder =
        std::filesystem::path(adapter_file(HANDLER_LIBRARY)).parent_path().string();
    std::vector<std::string> words = {"cobc", "-fcallfh=sxml_extfh"};
    if (std::none_of(given.begin(), given.end(), says_what_to_make)) words.emplace_back("-x");
    words.insert(words.end(), given.begin(), given.end());
    for (const std::string& word :
         {std::string("-A"), "-include " + quoted(header), "-L" + folder, std::string("-lsxml_cob"),
          std::string("-Q"), "-Xlinker -rpath -Xlinker " + quoted(folder)}) {
        words.push_back(word);
    }
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    fail(std::string("cobc cannot be run: ") + std::strerror(errno) +
         "; it comes with GnuCOBOL (package gnucobol3)");
}

}  // namespace

void add_cob_command(CLI::App& application) {
    CLI::App* command = application.add_subcommand(
        "cob", "compile a COBOL program whose files may be XML documents");
    command->prefix_command();
    command->footer(
        "Calls GnuCOBOL's cobc with what is given, and with the file handler for XML.\n"
        "Makes a program that can be run (-x) unless told otherwise.\n\n"
        "Example:\n"
        "  sxml cob report.cbl\n"
        "  sxml cob report.cbl -I copybooks -o bin/report");
    command->callback([command] { compile(command->remaining()); });
}

}  // namespace command
