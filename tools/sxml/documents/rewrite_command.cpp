// sxml rewrite: reads a document and writes it in the module's own form.

#include <cerrno>
#include <filesystem>
#include <memory>

#include "host/encoding.h"
#include "host/runtime/streams.h"
#include "host/utf8.h"
#include "platform/paths.h"
#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/documents/parsed_document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/run_files.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/reports/run_report.h"

namespace command {

namespace {

// Everything that the document writer can write.
constexpr std::uint32_t WRITABLE = XMLOPT_ELEMENTS | XMLOPT_CHARACTER_DATA |
                                   XMLOPT_PROCESSING_INSTRUCTIONS | XMLOPT_COMMENTS |
                                   XMLOPT_DOCTYPE | XMLOPT_XML_DECL;

struct RewriteOptions {
    std::string in;
    std::string out;
};

// The last part of a file's name, with underscores for what no comment of a document may hold (two
// hyphens in a row) or not every encoding has.
std::string name_in_comment(const std::string& file) {
    std::string name = platform::file_name_of(file);
    char previous = '\0';
    for (char& c : name) {
        const bool is_printable = c >= ' ' && c <= '~';
        if (!is_printable || (c == '-' && previous == '-')) c = '_';
        previous = c;
    }
    return name;
}

bool is_latin1(const ParsedDocument& document) {
    const char* const encoding = document.api().xml_parser_encoding(document.parser());
    return encoding != nullptr && host_encoding_code(encoding) == HOST_ENCODING_LATIN1;
}

std::string latin1_of(std::string_view utf8) {
    std::string text;
    while (!utf8.empty()) {
        const utf8::Character next = utf8::first_character(utf8);
        text += static_cast<char>(next.code);  // the document had no others
        utf8.remove_prefix(next.length);
    }
    return text;
}

// The module keeps comments in UTF-8, and writes those inside elements as they are.
void convert_comments(const ParsedDocument& document) {
    const XmlApi& api = document.api();
    document.for_each_element([&api](std::uint32_t element) {
        std::uint64_t length = 0;
        const char* const text = api.xml_element_comments(element, &length);
        if (text == nullptr) return;
        const std::string converted = latin1_of({text, length});
        api.xml_clear_comments(element);
        if (api.xml_add_comment(element, converted.c_str()) == 0) throw std::bad_alloc();
    });
}

void write_document(const ParsedDocument& document, const std::string& name,
                    const std::string& shown_name) {
    if (document.api().xml_write_document(document.parser(), name.c_str()) == 0) {
        const int error = errno;
        std::int32_t code = 0;
        document.api().xml_last_error(&code);
        if (code == XMLERR_NO_MEMORY) throw std::bad_alloc();
        fail_file(shown_name, error);
    }
    if (const auto failure = host::take_write_failure()) fail_file(shown_name, failure->error);
}

// Warns of what the document written will lack.
void warn_of_losses(const ParsedDocument& document, const conversion::DocumentSource& input) {
    ReportOptions all;
    RunReport(all, input.name()).warn_of_losses(input);
    const XmlApi& api = document.api();
    std::uint64_t mixed = 0;
    std::string first;
    document.for_each_element([&](std::uint32_t element) {
        std::uint64_t length = 0;
        const char* const text = api.xml_element_value(element, &length);
        if (text == nullptr || api.xml_first_child(element) == 0) return;
        if (std::string_view(text, length).find_first_not_of(" \t\r\n") == std::string::npos)
            return;
        if (mixed++ == 0) first = api.xml_element_name(element);
    });
    if (mixed == 0) return;
    warn(input.name() + ": " + std::to_string(mixed) +
         (mixed == 1 ? " element has" : " elements have") + " text beside elements, such as " +
         first + "; the text is written first, and its order among the elements is lost");
}

void rewrite(const RewriteOptions& options) {
    RunFiles files;
    const host::Module& module = load_module();
    const XmlApi api = xml_api(module);
    files.writes(options.out);  // over the document that was read, if need be
    files.check();
    const auto input = value_of(conversion::DocumentSource::open(options.in));
    AtomicOutput output(options.out);
    const ParsedDocument document(api, input, WRITABLE);
    warn_of_losses(document, input);
    if (is_latin1(document)) convert_comments(document);
    if (output.write_name() == "-") return write_document(document, "-", output.shown_name());
    const host::OutputName name(name_in_comment(output.file()), output.write_name());
    write_document(document, name.name(), options.out);
    output.commit();
}

}  // namespace

void add_rewrite_command(Command application) {
    const Command command =
        application.add_subcommand("rewrite", "read a document and write it in sxml's own form");
    auto options = std::make_shared<RewriteOptions>();
    add_document_argument(command, "IN", options->in);
    command.add_argument("OUT", options->out, "the document to write, - for standard output");
    command.footer(
        "Example:\n  sxml rewrite orders.xml tidy.xml\n"
        "  sxml rewrite http://localhost/orders.xml - | less");
    command.run([options] { rewrite(*options); });
}

}  // namespace command
