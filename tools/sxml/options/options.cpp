#include "tools/sxml/options/options.h"

#include <utility>

#include "records/option_names.h"
#include "tools/sxml/command.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

// An option whose value is one of the names of `values`.
template <typename Value>
void add_choice(Command command, const std::string& name, Value& variable,
                const records::Choices<Value>& values, const std::string& help) {
    std::vector<std::string> names;
    for (const auto& entry : values) names.push_back(entry.first);
    command
        .add_option(
            name, [&variable, &values](const std::string& text) { variable = values.at(text); },
            help)
        .one_of(names);
}

void add_source_options(Command command, LayoutOptions& options) {
    command
        .add_option("--fd", options.copybook.fd, "the FD, file or 01 record to take from a program")
        .value("NAME");
    command
        .add_option("-I,--copy-path", options.copybook.copy_path,
                    "a folder to search for COPY texts (may be repeated)")
        .repeated()
        .value("FOLDER");
    add_choice(command, "--format", options.copybook.format, records::SOURCE_FORMATS,
               "source format of the layout (default: detected from its text)");
    command.add_flag("--debugging-lines", options.copybook.debugging_lines,
                     "treat D lines as source, not as comments");
}

// Each names an item's element, or the document element.
void take_names(const std::vector<std::string>& names, LayoutOptions& options) {
    for (const std::string& name : names) {
        if (auto directive = records::name_directive(name)) {
            options.copybook.directives.push_back(*std::move(directive));
        } else {
            options.layout.name = name;
        }
    }
}

// Throws Failure (wrong usage).
void take_conditions(const std::vector<std::string>& texts, LayoutOptions& options) {
    for (const std::string& text : texts) {
        auto directive = records::condition_directive(text);
        if (!directive) {
            fail_usage("--when " + text +
                       ": name the record or item and its condition, as in 'HEADER: KIND = \"H\"'");
        }
        options.copybook.directives.push_back(*std::move(directive));
    }
}

void add_item_options(Command command, LayoutOptions& options) {
    command
        .add_list(
            "--when",
            [&options](const std::vector<std::string>& all) { take_conditions(all, options); },
            "the record or item is there when the condition holds, as the directive when says in "
            "a copybook (may be repeated)")
        .repeated()
        .value("'RECORD: CONDITION'");
    command
        .add_list(
            "--hide",
            [&options](const std::vector<std::string>& all) {
                for (const std::string& item : all) {
                    options.copybook.directives.push_back({item, "hide"});
                }
            },
            "the field, record or group gives no element (may be repeated)")
        .repeated()
        .value("FIELD");
}

void add_description_options(Command command, LayoutOptions& options) {
    records::LayoutOptions& layout = options.layout;
    add_choice(command, "--machine", layout.machine, records::MACHINES,
               "where the records come from: sizes, byte order and floating point of binary items "
               "(default: native; mainframe for records in EBCDIC)");
    add_choice(command, "--binary-size", layout.binary_size, records::BINARY_SIZES,
               "bytes that binary items may take (default: 1-2-4-8; 2-4-8 for a mainframe)");
    add_choice(command, "--byte-order", layout.byte_order, records::BYTE_ORDERS,
               "of COMP, COMP-4 and BINARY items; native: as COMP-5 (default: big-endian)");
    add_choice(command, "--national-size", layout.national_size, records::NATIONAL_SIZES,
               "bytes of a NATIONAL character, or the rule of a cobc (default: 2)");
    command.add_flag(
        "--no-truncate", [&layout] { layout.binary_truncate = false; },
        "binary items hold all that fits their bytes, whatever their picture says");
    add_choice(
        command, "--odo", layout.moving_data, records::MOVING_DATA,
        "tables with DEPENDING ON that do not end the record: refuse them (default), take their "
        "full size in every record (fixed), or let the items after them slide (sliding; default "
        "for a mainframe)");
    command.add_flag("--ebcdic-sign", layout.ebcdic_sign,
                     "signs overpunched in DISPLAY numbers follow EBCDIC");
    command.add_flag("--filler", layout.filler, "give FILLER items elements, too");
    command
        .add_list(
            "--name", [&options](const std::vector<std::string>& all) { take_names(all, options); },
            "name of the document element (default: the FD's or the file's name); FIELD=ELEMENT "
            "names the element of a field, record or group (may be repeated)")
        .repeated()
        .value("NAME");
    command
        .add_option("--set", options.settings,
                    "a setting, such as SXML_CREATE_STYLE=NONE (may be repeated)")
        .repeated()
        .value("NAME=VALUE");
}

}  // namespace

void add_layout_options(Command command, LayoutOptions& options, LayoutArgument argument) {
    const bool positional = argument == LayoutArgument::positional;
    const Option layout =
        command
            .add_list(
                positional ? "LAYOUT" : "--layout,-l",
                [&options](const std::vector<std::string>& files) {
                    options.file = files.front();
                    options.copybook.more_files.assign(files.begin() + 1, files.end());
                },
                "a copybook, a program, or a description file (.xfd); several copybooks, one for "
                "each "
                "kind of record (may be repeated)")
            .required()
            .value(positional ? " " : "LAYOUT");
    if (!positional) layout.repeated();
    add_source_options(command, options);
    add_item_options(command, options);
    add_description_options(command, options);
}

void add_document_argument(Command command, const char* name, std::string& document) {
    command.add_argument(name, document,
                         "the document: a file, - for standard input, or a web address");
}

void add_record_path_option(Command command, std::string& path) {
    command
        .add_option("--record", path,
                    "the elements that are the records, by the names from the document element on: "
                    "orders/page/order (default: the document element's children)")
        .value("PATH");
}

}  // namespace command
