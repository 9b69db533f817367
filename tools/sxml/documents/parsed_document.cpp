#include "tools/sxml/documents/parsed_document.h"

#include <new>

#include "conversion/documents/document_check.h"
#include "host/errors.h"
#include "host/runtime/streams.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

constexpr std::int32_t EXPAT_NO_MEMORY = 1;  // Expat's code

[[noreturn]] void fail_open(const XmlApi& api, const conversion::DocumentSource& input) {
    std::int32_t code = 0;
    const std::string message = api.xml_last_error(&code);
    if (code == XMLERR_OPEN_FILE) fail_file(input.name(), host::take_open_failure());
    const bool is_memory = *host_error_subcode() == EXPAT_NO_MEMORY;
    if (code == XMLERR_PARSE && *host_file_error() == HOST_FILE_XML && !is_memory) {
        // The module says what is wrong, Expat alone where.
        const std::string text = *host_error_text();
        conversion::Done problem = conversion::check_document(input.file(), input.name());
        if (!problem) fail(input.name() + ": " + text);
        problem->what = text;
        fail(*problem);
    }
    if (code == XMLERR_NO_MEMORY || code == XMLERR_PARSE) throw std::bad_alloc();
    fail(input.name() + ": " + message);
}

}  // namespace

XmlApi xml_api(const host::Module& module) {
    XmlApi api{};
    const auto find = [&module](int number, auto& function) {
        const std::string name = "ordinal_" + std::to_string(number);
        void* symbol = module.ordinal(number);
        if (symbol == nullptr) fail("the module has no entry " + name);
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(symbol);
    };
#define XML_ORDINAL(number, name, result, parameters) find(number, api.name);
#include "sxml/ordinals.def"
#undef XML_ORDINAL
    return api;
}

ParsedDocument::ParsedDocument(const XmlApi& api, const conversion::DocumentSource& input,
                               std::uint32_t options)
    : api_(api), parser_(api.xml_open_file(input.file().c_str(), options | XMLOPT_PARSE_WHOLE, 0)) {
    if (parser_ == 0) fail_open(api, input);
    // For the module the end of the input is never an error; the subcode shows what is missing.
    if (*host_error_subcode() == 0) return;
    api_.xml_free_parser(parser_);
    conversion::Done problem = conversion::check_document(input.file(), input.name());
    if (!problem) fail(input.name() + ": the document is not complete");
    problem->what = "the document is not complete: " + problem->what;
    fail(*problem);
}

void ParsedDocument::for_each_element(const std::function<void(std::uint32_t)>& visit) const {
    const std::uint32_t root = api_.xml_parser_root(parser_);
    for (std::uint32_t element = root; element != 0;) {
        visit(element);
        std::uint32_t next = api_.xml_first_child(element);
        while (next == 0 && element != root) {
            next = api_.xml_next_sibling(element);
            if (next == 0) element = api_.xml_parent(element);
        }
        element = next;
    }
}

}  // namespace command
