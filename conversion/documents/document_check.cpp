#include "conversion/documents/document_check.h"

#include "conversion/documents/checked_parser.h"

namespace conversion {

namespace {

void XMLCALL note_declaration(void* parser, const XML_Char*, const XML_Char* encoding, int) {
    if (encoding != nullptr) *static_cast<std::string*>(CheckedParser::owner(parser)) = encoding;
}

void XMLCALL stop_at_element(void* parser, const XML_Char*, const XML_Char**) {
    CheckedParser::of(parser).stop();
}

}  // namespace

Done check_document(const std::string& file, const std::string& shown_name) {
    CheckedParser parser;
    return parser.parse(file, shown_name);
}

Result<std::string> declared_encoding(const std::string& file) {
    std::string encoding;
    CheckedParser parser(&encoding);
    XML_SetXmlDeclHandler(parser.expat(), note_declaration);
    XML_SetStartElementHandler(parser.expat(), stop_at_element);
    const Done problem = parser.parse(file, file);
    // Errors in the document are not reported here.
    if (problem && problem->cause != Cause::document) return *problem;
    return encoding;
}

}  // namespace conversion
