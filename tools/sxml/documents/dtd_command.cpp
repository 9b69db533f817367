// sxml dtd: prints the declarations of the documents that a layout gives.

#include <memory>

#include "tools/sxml/commands.h"
#include "tools/sxml/document.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/options/layout_source.h"
#include "tools/sxml/options/options.h"
#include "tools/sxml/options/setting_options.h"
#include "tools/sxml/output/atomic_output.h"
#include "tools/sxml/output/scratch_output.h"

namespace command {

namespace {

struct DtdOptions {
    LayoutOptions layout;
    bool doctype = false;
};

// The document without records that the module makes of the bound description.
std::string empty_document(const host::Module& module) {
    const ScratchOutput scratch;
    write_empty_document(module, scratch.output());
    check_written({&scratch.output()});
    return scratch.text();
}

// The document type declaration within a document, from "<!DOCTYPE" to the line end after "]>".
std::string document_type(const std::string& document) {
    const std::string end_mark = "]>\r\n";
    const std::size_t start = document.find("<!DOCTYPE ");
    const std::size_t end = document.find(end_mark, start);
    if (start == std::string::npos || end == std::string::npos) {
        fail("the module has written no document type declaration");
    }
    return document.substr(start, end + end_mark.size() - start);
}

// What stands between the brackets, without the rest of the opening line.
std::string declarations(const std::string& type) {
    const std::size_t start = type.find('\n') + 1;
    return type.substr(start, type.rfind("]>") - start);
}

void print_dtd(const DtdOptions& options) {
    RunFiles files;
    const host::Module& module = load_module();
    apply_settings(options.layout.settings);
    force_setting("SXML_CREATE_STYLE", "DTD");
    files.writes("-");
    const records::Description description =
        LayoutSource(options.layout).load(records::RecordEncoding::ascii, files);
    files.check();
    records::bind_description(&description);
    const std::string type = document_type(empty_document(module));
    write_output("-", options.doctype ? type : declarations(type));
}

}  // namespace

void add_dtd_command(Command application) {
    const Command command = application.add_subcommand(
        "dtd", "print the DTD of a layout's documents, as a file of declarations");
    auto options = std::make_shared<DtdOptions>();
    add_layout_options(command, options->layout, LayoutArgument::positional);
    command.add_flag("--doctype", options->doctype,
                     "print the whole document type declaration, <!DOCTYPE and all");
    command.footer(
        "Example:\n  sxml dtd orders.cpy > orders.dtd\n"
        "  xmllint --noout --dtdvalid orders.dtd orders.xml");
    command.run([options] { print_dtd(*options); });
}

}  // namespace command
