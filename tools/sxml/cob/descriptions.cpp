#include "tools/sxml/cob/descriptions.h"

#include <algorithm>
#include <optional>
#include <set>

#include "records/copybook.h"
#include "records/description.h"
#include "records/source/text/text_case.h"
#include "tools/sxml/cob/generated_code.h"
#include "tools/sxml/cob/judge.h"
#include "tools/sxml/cob/run.h"
#include "tools/sxml/failure.h"

namespace command::cob {

namespace {

constexpr records::BinarySize BINARY_SIZES[] = {records::BinarySize::by_digits_1248,
                                                records::BinarySize::by_digits_248,
                                                records::BinarySize::smallest};

bool is_free_format(const Words& words) {
    return std::any_of(words.reading.begin(), words.reading.end(), [](const std::string& word) {
        return word == "-free" || word == "-F" || word == "--free" || word == "-fformat=free";
    });
}

// Runs cobc over a source for what it makes of it. Throws an empty Failure when it makes nothing.
void translate(const Words& words, const std::vector<std::string>& more) {
    std::vector<std::string> command = {"cobc"};
    command.insert(command.end(), words.compiling.begin(), words.compiling.end());
    command.insert(command.end(), more.begin(), more.end());
    if (run_program(command, "/dev/null") == 0) return;
    if (run_program(command) != 0) throw Failure("", EXIT_FAILED);
}

bool is_unnamed(const records::DataItem& item) {
    if (item.children.empty()) return item.name.empty();
    return std::all_of(item.children.begin(), item.children.end(),
                       [](const auto& child) { return is_unnamed(*child); });
}

bool has_only_filler(const records::RecordSource& source) {
    return std::all_of(source.records.begin(), source.records.end(),
                       [](const auto& record) { return is_unnamed(*record); });
}

bool has_varying_table(const records::DataItem& item) {
    return (item.occurs && !item.occurs->depending_on.empty()) ||
           std::any_of(item.children.begin(), item.children.end(),
                       [](const auto& child) { return has_varying_table(*child); });
}

// The only record whose length varies; empty when there is none or several.
std::string variable_record(const records::RecordSource& source) {
    std::string found;
    for (const auto& record : source.records) {
        if (!has_varying_table(*record)) continue;
        if (!found.empty()) return {};
        found = record->name;
    }
    return found;
}

std::string message_of(const records::Diagnostics& diagnostics, const Source& source) {
    for (const records::Diagnostic& each : diagnostics.all()) {
        if (each.severity != records::Severity::error) continue;
        if (each.place.line == 0) return each.message;
        return source.place(each.place.line) + ": " + each.message;
    }
    return "there is no record description";
}

bool is_element_name(const std::string& name) {
    const auto is_start = [](char c) { return records::is_letter(c) || c == '_'; };
    return is_start(name.front()) && std::all_of(name.begin(), name.end(), [&](char c) {
               return is_start(c) || records::is_digit(c) || c == '-' || c == '.';
           });
}

// Describes one file of one program.
class FileDescriber {
  public:
    FileDescriber(const Source& source, std::size_t program, const FileEntry& file,
                  const Words& words, bool has_ebcdic_signs)
        : source_(source),
          program_(program),
          file_(file),
          words_(words),
          has_ebcdic_signs_(has_ebcdic_signs) {}

    DescribedFile describe() {
        DescribedFile result;
        result.program = source_.programs[program_].name;
        result.name = file_.name;
        result.has_reports = file_.has_reports;
        records::RecordSource records = parse(file_.name);
        std::string judged_as = file_.name;
        if (has_only_filler(records)) {
            judged_as.clear();
            records = item_moved(records);
        }
        result.variable_record = variable_record(records);
        for (const auto& record : records.records) {
            if (!record->when) result.plain_records += record->name + " ";
        }
        result.description = description_of(records, judged_as);
        result.element = element();
        return result;
    }

  private:
    [[noreturn]] void fail_file_entry(const std::string& why) const {
        fail(source_.file + ": the records of FD " + file_.name + " cannot be described: " + why +
             "; mend it, or, if the file never is a document, add --no-xml " + file_.name);
    }

    records::RecordSource parse(const std::string& name) const {
        records::CopybookOptions options;
        options.format = records::SourceFormat::free;
        options.fd = name;
        options.program = source_.programs[program_].name;
        records::Diagnostics diagnostics;
        auto records =
            records::parse_copybook_text(source_.text, source_.file, options, diagnostics);
        if (!records || diagnostics.has_errors()) fail_file_entry(message_of(diagnostics, source_));
        return std::move(*records);
    }

    // The item that the program moves to and from records that have no fields of their own.
    records::RecordSource item_moved(const records::RecordSource& records) const {
        std::set<std::string> names;
        for (const auto& record : records.records) names.insert(record->name);
        const std::set<std::string> items = moved_items(source_, program_, file_.name, names);
        if (items.size() != 1) {
            std::string all;
            for (const std::string& item : items) all += (all.empty() ? "" : ", ") + item;
            fail_file_entry(items.empty()
                                ? "they have no named field, and nothing is written FROM or read "
                                  "INTO an item that could tell"
                                : "they have no named field, and several items are written FROM or "
                                  "read INTO: " +
                                      all);
        }
        records::RecordSource item = parse(*items.begin());
        item.name = file_.name;
        return item;
    }

    std::string description_of(const records::RecordSource& records,
                               const std::string& judged_as) const {
        std::string difference;
        for (const records::BinarySize size : BINARY_SIZES) {
            records::LayoutOptions options;
            options.name_case = records::configured_name_case();
            options.binary_size = size;
            options.ebcdic_sign = has_ebcdic_signs_;
            options.every_record = true;
            // Where items lie, the compiler is asked.
            options.moving_data = records::MovingData::fixed;
            records::Diagnostics diagnostics;
            const auto description = records::compile_description(records, options, diagnostics);
            if (!description) fail_file_entry(message_of(diagnostics, source_));
            const std::string json = records::description_to_json(*description);
            Judgement judgement = judge(json, source_, program_, judged_as, words_);
            if (!judgement.difference) return judgement.description;
            if (difference.empty()) difference = *judgement.difference;
        }
        fail_file_entry(difference);
    }

    // The name of the document element that was asked for.
    std::string element() const {
        auto name = words_.document_names.find(file_.name);
        if (name == words_.document_names.end()) name = words_.document_names.find("");
        if (name == words_.document_names.end()) return {};
        if (!is_element_name(name->second)) {
            fail_usage("cob: --name: " + name->second +
                       " is not a name of letters, digits, `_`, `-` and `.`");
        }
        return name->second;
    }

    const Source& source_;
    std::size_t program_;
    const FileEntry& file_;
    const Words& words_;
    bool has_ebcdic_signs_;
};

// Whether a document can be meant by a file.
bool can_be_document(const GeneratedCode& code, const std::string& program,
                     const std::string& file) {
    const std::vector<GeneratedFile> files = code.files();
    return std::none_of(files.begin(), files.end(), [&](const GeneratedFile& each) {
        return each.name == file && each.program == program &&
               (!each.is_sequential || each.is_special);
    });
}

}  // namespace

DescribedSource describe_source(const std::string& file, const Words& words) {
    const WorkFolder folder;
    const std::string expanded = folder.file("expanded");
    translate(words, {"-E", "-o", expanded, file});
    const Source source = read_expanded(file, text_of(expanded), is_free_format(words));
    DescribedSource result{file, source.programs, {}, {}};
    const bool has_files =
        std::any_of(source.programs.begin(), source.programs.end(),
                    [](const Program& program) { return !program.files.empty(); });
    if (!has_files) return result;
    translate(words, {"-w", "-C", "-m", "-o", folder.file("unit.c"), file});
    const GeneratedCode code(folder.file("unit.c"));
    result.records = code.names();
    for (std::size_t i = 0; i < source.programs.size(); ++i) {
        const Program& program = source.programs[i];
        for (const FileEntry& entry : program.files) {
            const bool is_wanted = !words.left_out.contains(entry.name) && !entry.has_reports &&
                                   can_be_document(code, program.name, entry.name);
            if (is_wanted) {
                const bool has_ebcdic_signs = code.has_ebcdic_signs();
                result.files.push_back(
                    FileDescriber(source, i, entry, words, has_ebcdic_signs).describe());
            } else {
                result.files.push_back(
                    {program.name, entry.name, "", "", "", "", entry.has_reports});
            }
        }
    }
    return result;
}

}  // namespace command::cob
