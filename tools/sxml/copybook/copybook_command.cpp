// sxml copybook: makes a copybook that reads documents, from samples of them or their schema.

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/samples/attribute_profile.h"
#include "conversion/samples/sample_copybook.h"
#include "conversion/schemas/schema_profile.h"
#include "tools/sxml/atomic_output.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/documents/record_document.h"
#include "tools/sxml/errors.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/run_files.h"

namespace command {

namespace {

struct CopybookOptions {
    std::vector<std::string> inputs;  // samples and schemas
    std::string output = "-";
    std::string grow = "20%";
    std::string path;  // of the elements that are the records
    bool is_of_samples = false;
    bool takes_attributes = false;
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

// What the documents and schemas say.
struct Sources {
    conversion::DocumentProfile profile;
    conversion::SchemaSet schemas;
    std::vector<conversion::Problem> left_out{};  // of the samples
};

void add_sample(Sources& sources, const conversion::DocumentSource& document,
                const std::string& path) {
    const auto reduced =
        path.empty() ? std::nullopt : std::optional(value_of(document.with_records_at(path)));
    const conversion::DocumentSource& source = reduced ? *reduced : document;
    check(sources.profile.add(source.file(), source.name()));
    if (const auto problem = problem_of(source.left_out())) {
        sources.left_out.push_back(*problem);
        sources.profile.root().attributes = {};  // counted there
    }
}

// Result: what the schemas describe that has no form in records.
std::vector<conversion::Problem> read_sources(Sources& sources, CopybookOptions& options,
                                              RunFiles& files) {
    for (const std::string& name : options.inputs) {
        const auto document = value_of(conversion::DocumentSource::open(name));
        files.reads_document(name, document);
        if (conversion::is_schema(document.file())) {
            check(sources.schemas.add(document.file(), document.name()));
        } else {
            add_sample(sources, document, options.path);
        }
        std::string& all = options.wishes.made_from;
        all += (all.empty() ? "" : ", ") + in_comment(document.name());
    }
    const bool has_sample = !sources.profile.root().name.empty();
    if (options.is_of_samples && (!has_sample || sources.schemas.is_empty())) {
        fail_usage("--sampled needs a schema and samples");
    }
    if (sources.schemas.is_empty()) return {};
    return value_of(conversion::declare_by_schema(sources.profile, sources.schemas,
                                                  {options.path, options.is_of_samples}));
}

void make_copybook(CopybookOptions& options) {
    options.wishes.grow = percent_of(options.grow);
    RunFiles files;
    files.writes(options.output);
    Sources sources;
    if (options.takes_attributes) sources.profile.want_attributes();
    const std::vector<conversion::Problem> without_form = read_sources(sources, options, files);
    const std::vector<conversion::Problem> without_place =
        options.takes_attributes ? conversion::place_attributes(sources.profile)
                                 : std::vector<conversion::Problem>{};
    for (const std::string& file : sources.schemas.files()) files.reads(file);
    files.check();
    const conversion::SampleCopybook copybook =
        value_of(conversion::copybook_of(sources.profile, options.wishes));
    write_output(options.output, copybook.text);
    for (const auto* losses :
         {&std::as_const(sources).left_out, &without_form, &without_place, &copybook.losses}) {
        for (const conversion::Problem& loss : *losses) warn(conversion::message_of(loss));
    }
    if (!copybook.possible_records.empty() && options.path.empty()) {
        say("sxml: note: each document has one such record; if the records are further down, "
            "--record " +
            copybook.possible_records + " takes those\n");
    }
    if (copybook.needs_exact_names) {
        say("sxml: note: element names have capitals or hyphens; convert with "
            "--set 4GL_COLUMN_CASE=2\n");
    }
}

}  // namespace

void add_copybook_command(CLI::App& application) {
    CLI::App* command = application.add_subcommand(
        "copybook", "make a copybook that reads documents, from samples of them or their schema");
    auto options = std::make_shared<CopybookOptions>();
    command
        ->add_option("IN", options->inputs,
                     "sample documents and XML Schemas: files, web addresses, - for standard input")
        ->required()
        ->option_text("...");
    command->add_option("-o,--output", options->output, "the copybook (default: standard output)")
        ->option_text("NAME.cpy");
    command
        ->add_option("--grow", options->grow,
                     "how much longer than seen texts, numbers and tables may be (default: 20%)")
        ->option_text("PERCENT");
    command->add_flag("--packed", options->wishes.is_packed, "make numbers COMP-3");
    command->add_flag("--sampled", options->is_of_samples,
                      "leave out what a schema allows and no sample has");
    command->add_flag("--attributes", options->takes_attributes,
                      "take attributes as elements ELEMENT_ATTRIBUTE; give it to from-xml, too");
    add_record_path_option(*command, options->path);
    command->footer(
        "Example:\n"
        "  sxml copybook orders1.xml orders2.xml -o orders.cpy\n"
        "  sxml copybook orders.xsd orders1.xml -o orders.cpy\n"
        "  sxml from-xml orders1.xml orders.dat --layout orders.cpy");
    command->callback([options] { make_copybook(*options); });
}

}  // namespace command
