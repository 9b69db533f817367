// sxml copybook: makes a copybook that reads documents, from samples of them or their schema.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conversion/documents/document_source.h"
#include "conversion/samples/attribute_profile.h"
#include "conversion/samples/sample_copybook.h"
#include "conversion/schemas/document_type_profile.h"
#include "conversion/schemas/local_files.h"
#include "conversion/schemas/schema_profile.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/documents/record_document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/run_files.h"
#include "tools/sxml/output/atomic_output.h"

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

// The contents of the documents and of their descriptions.
struct Sources {
    conversion::DocumentProfile profile;
    conversion::SchemaSet schemas;
    conversion::DocumentType type;
    std::vector<conversion::Problem> losses{};  // what has no form in records
};

void append(std::vector<conversion::Problem>& all, const std::vector<conversion::Problem>& more) {
    all.insert(all.end(), more.begin(), more.end());
}

bool is_dtd(const std::string& name) {
    return name.ends_with(".dtd") || name.ends_with(".DTD");
}

// The input that is a DTD; empty without one.
std::string dtd_of(const CopybookOptions& options) {
    std::string found;
    for (const std::string& name : options.inputs) {
        if (!is_dtd(name)) continue;
        if (!found.empty()) fail_usage("there are two DTDs: " + found + " and " + name);
        found = name;
    }
    return found;
}

// As it is called on the disk. Fails when it cannot be read.
std::string dtd_file(const std::string& name) {
    auto file = conversion::local_file(name, "");
    if (file) return *file;
    conversion::Problem problem = file.problem();
    problem.place.file = name;
    fail(problem);
}

void add_sample(Sources& sources, const conversion::DocumentSource& document,
                const CopybookOptions& options) {
    check(sources.type.add(document.file(), document.name(), dtd_of(options)));
    const auto reduced = options.path.empty()
                             ? std::nullopt
                             : std::optional(value_of(document.with_records_at(options.path)));
    const conversion::DocumentSource& source = reduced ? *reduced : document;
    check(sources.profile.add(source.file(), source.name()));
    if (const auto problem = problem_of(source.left_out())) {
        sources.losses.push_back(*problem);
        sources.profile.root().attributes = {};  // counted there
    }
}

void read_sources(Sources& sources, CopybookOptions& options, RunFiles& files) {
    for (const std::string& name : options.inputs) {
        std::string& all = options.wishes.made_from;
        all += all.empty() ? "" : ", ";
        if (is_dtd(name)) {
            files.reads(dtd_file(name));
            all += in_comment(name);
            continue;
        }
        const auto document = value_of(conversion::DocumentSource::open(name));
        files.reads_document(name, document);
        all += in_comment(document.name());
        if (value_of(conversion::is_schema(document.file()))) {
            check(sources.schemas.add(document.file(), document.name()));
        } else {
            add_sample(sources, document, options);
        }
    }
    if (!dtd_of(options).empty() && sources.profile.root().count == 0) {
        fail_usage("a DTD needs a sample beside it: give a document of this type");
    }
    for (const std::string& file : sources.schemas.files()) files.reads(file);
    for (const std::string& file : sources.type.files()) files.reads(file);
    append(sources.losses, sources.type.not_read());
}

void declare_elements(Sources& sources, const CopybookOptions& options) {
    const bool has_sample = sources.profile.root().count > 0;
    const bool is_declared = !sources.schemas.is_empty() || !sources.type.is_empty();
    if (options.is_of_samples && (!has_sample || !is_declared)) {
        fail_usage("--sampled needs a schema or a DTD, and samples");
    }
    const conversion::SchemaWishes wishes{options.path, options.is_of_samples};
    if (!sources.type.is_empty()) {
        append(sources.losses,
               value_of(conversion::declare_by_type(sources.profile, sources.type, wishes)));
    }
    if (!sources.schemas.is_empty()) {
        append(sources.losses,
               value_of(conversion::declare_by_schema(sources.profile, sources.schemas, wishes)));
    }
    if (options.takes_attributes) {
        append(sources.losses, conversion::place_attributes(sources.profile));
    }
}

void make_copybook(CopybookOptions& options) {
    options.wishes.fields.grow = percent_of(options.grow);
    if (!options.path.empty()) check(conversion::check_record_path(options.path));
    RunFiles files;
    files.writes(options.output);
    Sources sources;
    if (options.takes_attributes) sources.profile.want_attributes();
    read_sources(sources, options, files);
    files.check();
    declare_elements(sources, options);
    const conversion::SampleCopybook copybook =
        value_of(conversion::copybook_of(sources.profile, options.wishes));
    append(sources.losses, copybook.losses);
    write_output(options.output, copybook.text);
    for (const conversion::Problem& loss : sources.losses) warn(conversion::message_of(loss));
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

void add_copybook_command(Command application) {
    const Command command = application.add_subcommand(
        "copybook", "make a copybook that reads documents, from samples of them or their schema");
    auto options = std::make_shared<CopybookOptions>();
    command
        .add_option(
            "IN", options->inputs,
            "sample documents, XML Schemas and a DTD: files, web addresses, - for standard input")
        .required()
        .value("...");
    command.add_option("-o,--output", options->output, "the copybook (default: standard output)")
        .value("NAME.cpy");
    command
        .add_option("--grow", options->grow,
                    "how much longer than seen texts, numbers and tables may be (default: 20%)")
        .value("PERCENT");
    command.add_flag("--packed", options->wishes.is_packed, "make numbers COMP-3");
    command.add_flag("--exact", options->wishes.fields.is_exact,
                     "make texts of numbers that to-xml would write in another way than they are");
    command.add_flag("--sampled", options->is_of_samples,
                     "leave out what a schema or DTD allows and no sample has");
    command.add_flag("--attributes", options->takes_attributes,
                     "take attributes as elements ELEMENT_ATTRIBUTE; give it to from-xml, too");
    add_record_path_option(command, options->path);
    command.footer(
        "Example:\n"
        "  sxml copybook orders1.xml orders2.xml -o orders.cpy\n"
        "  sxml copybook orders.xsd orders1.xml -o orders.cpy\n"
        "  sxml from-xml orders1.xml orders.dat --layout orders.cpy");
    command.run([options] { make_copybook(*options); });
}

}  // namespace command
