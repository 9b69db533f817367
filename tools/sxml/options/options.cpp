#include "tools/sxml/options/options.h"

#include <functional>
#include <utility>

#include "records/option_names.h"
#include "tools/sxml/command.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

// The options that say how a source becomes a layout.
class SourceOptions {
  public:
    SourceOptions(Command command, LayoutOptions& options) : command_(command), options_(options) {}

    // The value is one of the names of `values`.
    template <typename Value>
    void add_choice(const std::string& name, Value& variable, const records::Choices<Value>& values,
                    const std::string& help) const {
        std::vector<std::string> names;
        for (const auto& entry : values) names.push_back(entry.first);
        add(
            name, [&variable, &values](const std::string& text) { variable = values.at(text); },
            help)
            .one_of(names);
    }
    Option add_text(const std::string& name, std::string& variable, const std::string& help) const {
        return add(
            name, [&variable](const std::string& text) { variable = text; }, help);
    }
    // `value`: what the variable becomes.
    void add_flag(const std::string& name, bool& variable, bool value,
                  const std::string& help) const {
        command_.add_flag(
            name,
            [&options = options_, name, &variable, value] {
                variable = value;
                options.copybook.for_sources.push_back(name);
            },
            help);
    }

  private:
    Option add(const std::string& name, const std::function<void(const std::string&)>& take,
               const std::string& help) const {
        return command_.add_option(
            name,
            [&options = options_, name, take](const std::string& text) {
                take(text);
                options.copybook.for_sources.push_back(name);
            },
            help);
    }

    Command command_;
    LayoutOptions& options_;
};

void add_source_options(Command command, LayoutOptions& options) {
    const SourceOptions of_sources(command, options);
    of_sources
        .add_text("--fd", options.copybook.fd, "the FD, file or 01 record to take from a program")
        .value("NAME");
    command
        .add_option("-I,--copy-path", options.copybook.copy_path,
                    "a folder to search for COPY texts (may be repeated)")
        .repeated()
        .value("FOLDER");
    of_sources.add_choice("--format", options.copybook.format, records::SOURCE_FORMATS,
                          "source format of the layout (default: detected from its text)");
    of_sources.add_flag("--debugging-lines", options.copybook.debugging_lines, true,
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
    const SourceOptions of_sources(command, options);
    of_sources.add_choice(
        "--machine", layout.machine, records::MACHINES,
        "where the records come from: sizes, byte order and floating point of binary items "
        "(default: native; mainframe for records in EBCDIC)");
    of_sources.add_choice(
        "--binary-size", layout.binary_size, records::BINARY_SIZES,
        "bytes that binary items may take (default: 1-2-4-8; 2-4-8 for a mainframe)");
    of_sources.add_choice(
        "--byte-order", layout.byte_order, records::BYTE_ORDERS,
        "of COMP, COMP-4 and BINARY items; native: as COMP-5 (default: big-endian)");
    of_sources.add_choice("--national-size", layout.national_size, records::NATIONAL_SIZES,
                          "bytes of a NATIONAL character, or the rule of a cobc (default: 2)");
    of_sources.add_flag("--no-truncate", layout.binary_truncate, false,
                        "binary items hold all that fits their bytes, whatever their picture says");
    of_sources.add_choice(
        "--odo", layout.moving_data, records::MOVING_DATA,
        "tables with DEPENDING ON that do not end the record: refuse them (default), take their "
        "full size in every record (fixed), or let the items after them slide (sliding; default "
        "for a mainframe)");
    command.add_flag("--ebcdic-sign", layout.ebcdic_sign,
                     "signs overpunched in DISPLAY numbers follow EBCDIC");
    of_sources.add_flag("--filler", layout.filler, true, "give FILLER items elements, too");
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
