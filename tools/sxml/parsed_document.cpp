#include "tools/sxml/parsed_document.h"

#include <cerrno>
#include <new>

#include "host/errors.h"
#include "tools/sxml/document_check.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

// The module says what is wrong, Expat alone where.
std::string place(const std::string& name, const DocumentProblem& problem) {
    return name + ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column) + ": ";
}

[[noreturn]] void fail_open(const XmlApi& api, const DocumentInput& input, int error) {
    std::int32_t code = 0;
    const std::string message = api.xml_last_error(&code);
    if (code == XMLERR_OPEN_FILE) fail_file(input.name(), error);
    if (code == XMLERR_PARSE && *host_file_error() == HOST_FILE_XML) {
        const std::string text = *host_error_text();
        const std::optional<DocumentProblem> problem = check_document(input.file());
        fail((problem ? place(input.name(), *problem) : input.name() + ": ") + text);
    }
    if (code == XMLERR_NO_MEMORY || code == XMLERR_PARSE) throw std::bad_alloc();
    fail(input.name() + ": " + message);
}

}  // namespace

XmlApi xml_api(const host::Module& module) {
    XmlApi api{};
    const auto find = [&module](int number, auto& function) {
        const std::string name = "ordinal_" + std::to_string(number);
        void* symbol = module.symbol(name.c_str());
        if (symbol == nullptr) fail("the module has no entry " + name);
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(symbol);
    };
#define XML_ORDINAL(number, name, result, parameters) find(number, api.name);
#include "sxml/ordinals.def"
#undef XML_ORDINAL
    return api;
}

ParsedDocument::ParsedDocument(const XmlApi& api, const DocumentInput& input, std::uint32_t options)
    : api_(api), parser_(api.xml_open_file(input.file().c_str(), options | XMLOPT_PARSE_WHOLE, 0)) {
    if (parser_ == 0) fail_open(api, input, errno);
    // For the module the end of the input is no error, wherever it comes.
    const std::optional<DocumentProblem> problem = check_document(input.file());
    if (!problem) return;
    api_.xml_free_parser(parser_);
    fail(place(input.name(), *problem) + "the document is not complete: " + problem->text);
}

}  // namespace command
