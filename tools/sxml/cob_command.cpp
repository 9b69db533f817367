// sxml cob: compiles COBOL programs whose files may be documents.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <system_error>

#include "host/runtime/library_files.h"
#include "records/source/text/text_case.h"
#include "tools/sxml/cob/calling_compiler.h"
#include "tools/sxml/cob/descriptions.h"
#include "tools/sxml/cob/header.h"
#include "tools/sxml/cob/run.h"
#include "tools/sxml/cob/words.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

constexpr const char* ADAPTER_LIBRARY = "libsxml_cob.so";
constexpr const char* ADAPTER_HEADER = "sxml_cob.h";

// The path of a file that belongs to the adapter.
std::string adapter_file(const char* name) {
    const std::string file = host::library_file(name);
    std::error_code error;
    const auto path = std::filesystem::canonical(file, error);
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    if (error) {
        fail(file +
             " is not there; install sxml again, whole, on a machine that has GnuCOBOL "
             "(package libcob4-dev)");
    }
    return path.string();
}

// The folder of the adapter's library.
std::string library_folder() {
    return std::filesystem::path(adapter_file(ADAPTER_LIBRARY)).parent_path().string();
}

// As a word for the shell, by which cobc runs the C compiler.
std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

void check_names(const cob::Words& words, const std::vector<cob::DescribedSource>& sources) {
    std::size_t files = 0;
    const auto is_known = [&](const std::string& name) {
        return std::any_of(sources.begin(), sources.end(), [&](const cob::DescribedSource& source) {
            return std::any_of(source.files.begin(), source.files.end(),
                               [&](const cob::DescribedFile& file) { return file.name == name; });
        });
    };
    for (const cob::DescribedSource& source : sources) files += source.files.size();
    for (const auto& [fd, name] : words.document_names) {
        if (fd.empty() && files > 1) {
            fail_usage("cob: there are several FDs; say --name FD=" + name);
        }
        if (!fd.empty() && !is_known(fd)) fail_usage("cob: --name: there is no FD " + fd);
    }
}

// Writes what is known of the sources' files. Result: the header's name.
std::string write_header(const cob::WorkFolder& folder, const cob::Words& words) {
    std::vector<cob::DescribedSource> sources;
    for (const std::string& source : words.sources) {
        sources.push_back(cob::describe_source(source, words));
    }
    check_names(words, sources);
    return folder.write("files.h", cob::header_text(sources, adapter_file(ADAPTER_HEADER)));
}

void compile(const std::vector<std::string>& given) {
    const cob::Words words = cob::split_words(given);
    if (words.all.empty()) fail_usage("cob: name the program, as in `sxml cob orders.cbl`");
    std::vector<std::string> command = {"cobc"};
    if (!words.compiles) {
        command.insert(command.end(), words.all.begin(), words.all.end());
        throw Failure("", cob::run_program(command));
    }
    const std::string libraries = library_folder();
    const cob::WorkFolder folder;
    const std::string header = write_header(folder, words);
    if (!words.says_what_to_make) command.emplace_back("-x");
    command.insert(command.end(), words.all.begin(), words.all.end());
    for (const std::string& word : {std::string("-A"), "-include " + quoted(header),
                                    "-L" + libraries, std::string("-lsxml_cob"), std::string("-Q"),
                                    "-Xlinker -rpath -Xlinker " + quoted(libraries)}) {
        command.push_back(word);
    }
    const int status = cob::run_program(command);
    if (status != 0) throw Failure("", status);
}

// In the place of the C compiler that cobc calls: COB_CC="sxml cob-cc".
void compile_code(const std::vector<std::string>& given) {
    const cob::WorkFolder folder;
    const char* const chosen = std::getenv("SXML_CC");
    std::vector<std::string> command = {chosen != nullptr && *chosen != '\0' ? chosen : "gcc"};
    unsetenv("COB_CC");
    for (const std::string& word : given) {
        if (!word.ends_with(".c")) continue;
        const cob::Words words = cob::split_words(cob::words_of_cobc(word));
        if (words.sources.empty()) continue;
        command.emplace_back("-include");
        command.push_back(write_header(folder, words));
        break;
    }
    command.insert(command.end(), given.begin(), given.end());
    if (std::find(given.begin(), given.end(), "-c") == given.end()) {
        const std::string libraries = library_folder();
        for (const std::string& word :
             {"-L" + libraries, std::string("-lsxml_cob"), std::string("-Xlinker"),
              std::string("-rpath"), std::string("-Xlinker"), libraries}) {
            command.push_back(word);
        }
    }
    const int status = cob::run_program(command);
    if (status != 0) throw Failure("", status);
}

}  // namespace

void add_cob_command(Command application) {
    const Command command = application.add_subcommand(
        "cob", "compile a COBOL program whose files may be XML documents");
    command.hand_words_on();
    command.footer(
        "Calls GnuCOBOL's cobc with what is given, and binds in the record layouts of the "
        "program's\n"
        "files. Makes a program that can be run (-x) unless told otherwise.\n\n"
        "Beside cobc's options:\n"
        "  --name FD=NAME   the document element of the file; NAME alone for the only FD\n"
        "  --no-xml FD      never a document: its records need no description\n\n"
        "Examples:\n"
        "  sxml cob report.cbl\n"
        "  sxml cob report.cbl -I copybooks -o bin/report\n"
        "  make COBC=\"sxml cob\"\n"
        "  COB_CC=\"sxml cob-cc\" cobc -x report.cbl");
    command.run([command] { compile(command.words()); });
}

void add_cob_cc_command(Command application) {
    const Command compiler = application.add_subcommand(
        "cob-cc", "stand in for the C compiler that cobc calls: COB_CC=\"sxml cob-cc\"");
    compiler.hand_words_on();
    compiler.footer(
        "Calls the C compiler named by SXML_CC (default: gcc) as `sxml cob` has cobc do it.\n\n"
        "Example:\n"
        "  COB_CC=\"sxml cob-cc\" cobc -x report.cbl");
    compiler.run([compiler] { compile_code(compiler.words()); });
}

}  // namespace command
