// sxml copybook: makes a copybook that reads documents, from samples of them.

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/samples/sample_copybook.h"
#include "tools/sxml/atomic_output.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/run_files.h"

namespace command {

namespace {

struct CopybookOptions {
    std::vector<std::string> samples;
    std::string output = "-";
    std::string grow = "20%";
    std::string path;  // of the elements that are the records
    conversion::CopybookWishes wishes;
};

int percent_of(const std::string& text) {
    constexpr int MOST = 1000;
    const std::size_t digits = text.find_first_not_of("0123456789");
    const bool is_percent = digits == text.npos || (digits > 0 && text.substr(digits) == "%");
    const int percent = is_percent && text.size() < 6 ? std::atoi(text.c_str()) : MOST + 1;
    if (text.empty() || percent > MOST) {
        fail_usage("--grow: " + text + " is not a percentage; give one from 0% to 1000%");
    }
    return percent;
}

// File names as they can stand in a comment.
std::string in_comment(std::string text) {
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    }
    return text;
}

void make_copybook(CopybookOptions& options) {
    options.wishes.grow = percent_of(options.grow);
    RunFiles files;
    files.writes(options.output);
    conversion::DocumentProfile profile;
    for (const std::string& name : options.samples) {
        const auto document = value_of(conversion::DocumentSource::open(name));
        files.reads_document(name, document);
        const auto reduced = options.path.empty()
                                 ? std::nullopt
                                 : std::optional(value_of(document.with_records_at(options.path)));
        const conversion::DocumentSource& source = reduced ? *reduced : document;
        check(profile.add(source.file(), source.name()));
        std::string& all = options.wishes.made_from;
        all += (all.empty() ? "" : ", ") + in_comment(source.name());
    }
    files.check();
    const conversion::SampleCopybook copybook =
        value_of(conversion::copybook_of(profile, options.wishes));
    write_output(options.output, copybook.text);
    for (const conversion::Problem& loss : copybook.losses) {
        warn(conversion::message_of(loss));
    }
    if (copybook.needs_exact_names) {
        say("sxml: note: element names have capitals or hyphens; convert with "
            "--set 4GL_COLUMN_CASE=2\n");
    }
}

}  // namespace

void add_copybook_command(CLI::App& application) {
    CLI::App* command = application.add_subcommand(
        "copybook", "make a copybook that reads documents, from samples of them");
    auto options = std::make_shared<CopybookOptions>();
    command
        ->add_option("IN", options->samples,
                     "sample documents: files, web addresses, - for standard input")
        ->required()
        ->option_text("...");
    command->add_option("-o,--output", options->output, "the copybook (default: standard output)")
        ->option_text("NAME.cpy");
    command
        ->add_option("--grow", options->grow,
                     "how much longer than seen texts, numbers and tables may be (default: 20%)")
        ->option_text("PERCENT");
    command->add_flag("--packed", options->wishes.is_packed, "make numbers COMP-3");
    add_record_path_option(*command, options->path);
    command->footer(
        "Example:\n"
        "  sxml copybook orders1.xml orders2.xml -o orders.cpy\n"
        "  sxml from-xml orders1.xml orders.dat --layout orders.cpy");
    command->callback([options] { make_copybook(*options); });
}

}  // namespace command
