#include "fsi/xml/handlers/xml_parser.h"

#include <initializer_list>

#include "fsi/xml/handlers/declarations/entity_limit.h"
#include "fsi/xml/handlers/early_events.h"
#include "fsi/xml/handlers/expat_memory.h"
#include "fsi/xml/handlers/handlers.h"
#include "host/arrays.h"
#include "host/errors.h"
#include "host/memory.h"
#include "host/strings.h"
#include "host/trace.h"
#include "sxml/xml_api.h"

// Only newer versions of Expat have it, so it may be missing when the module is built and again
// when it is loaded: a weak reference is null then.
#if defined(__ELF__)
extern "C" __attribute__((weak)) XML_Bool XML_SetReparseDeferralEnabled(XML_Parser parser,
                                                                        XML_Bool enabled);
#endif

namespace {

// With deferral, Expat would hold a complete tag back until more input arrives, and the end of a
// record would be reported together with the next one.
void turn_off_reparse_deferral(XML_Parser expat) {
#if defined(__ELF__)
    if (XML_SetReparseDeferralEnabled) XML_SetReparseDeferralEnabled(expat, XML_FALSE);
#elif defined(SXML_HAS_XML_SetReparseDeferralEnabled)
    XML_SetReparseDeferralEnabled(expat, XML_FALSE);
#else
    static_cast<void>(expat);
#endif
}

void install_content_handlers(XML_Parser expat, std::uint32_t options) {
    if (options & XMLOPT_ELEMENTS) XML_SetElementHandler(expat, start_element, end_element);
    if (options & XMLOPT_CHARACTER_DATA) XML_SetCharacterDataHandler(expat, char_data);
    if (options & XMLOPT_PROCESSING_INSTRUCTIONS)
        XML_SetProcessingInstructionHandler(expat, processing_instruction);
    if (options & XMLOPT_COMMENTS) XML_SetCommentHandler(expat, comment_handler);
    if (options & XMLOPT_CDATA) XML_SetCdataSectionHandler(expat, start_cdata, end_cdata);
    if (options & XMLOPT_DEFAULT) XML_SetDefaultHandler(expat, default_handler);
}

void install_declaration_handlers(XML_Parser expat, std::uint32_t options) {
    if (options & XMLOPT_EXTERNAL_ENTITIES)
        XML_SetExternalEntityRefHandler(expat, external_entity_ref);
    if (options & XMLOPT_UNKNOWN_ENCODING)
        XML_SetUnknownEncodingHandler(expat, unknown_encoding, nullptr);
    if (options & XMLOPT_DOCTYPE) XML_SetDoctypeDeclHandler(expat, start_doctype, end_doctype);
    if (options & XMLOPT_ELEMENT_DECLS) XML_SetElementDeclHandler(expat, element_decl);
    if (options & XMLOPT_ATTLIST_DECLS) XML_SetAttlistDeclHandler(expat, attlist_decl);
    if (options & XMLOPT_ENTITY_DECLS) XML_SetEntityDeclHandler(expat, entity_decl);
    if (options & XMLOPT_UNPARSED_ENTITY_DECLS)
        XML_SetUnparsedEntityDeclHandler(expat, unparsed_entity_decl);
    if (options & XMLOPT_NOTATION_DECLS) XML_SetNotationDeclHandler(expat, notation_decl);
    if (options & XMLOPT_XML_DECL) XML_SetXmlDeclHandler(expat, xml_decl);
}

// Ends a creation that ran out of memory.
XmlParser* creation_failed(XmlParser* parser, const char* why) {
    *host_file_error() = HOST_FILE_NO_MEMORY;
    if (host_trace_on) host_trace(-1, HOST_TRACE_PARSER, "%s", why);
    free_parser(parser);
    return nullptr;
}

void free_text(char*& text) {
    if (!text) return;
    host_free(text, HANDLERS_SOURCE, __LINE__, 0);
    text = nullptr;
}

void free_string(std::uint32_t& string) {
    if (!string) return;
    host_string_free(string, HANDLERS_SOURCE, __LINE__);
    string = 0;
}

void free_instructions(XmlParser& parser) {
    const std::uint32_t count = host_array_count(parser.pis);
    for (std::uint32_t i = 0; i < count; ++i) {
        free_string(parser.pis[i].target);
        free_string(parser.pis[i].data);
    }
    host_array_free(parser.pis, HANDLERS_SOURCE, __LINE__);
    parser.pis = nullptr;
}

}  // namespace

std::int64_t current_byte_index(const XmlParser& parser) {
#ifdef SXML_HAS_XML_GetCurrentByteIndex64
    return XML_GetCurrentByteIndex64(parser.expat);
#else
    return XML_GetCurrentByteIndex(parser.expat);
#endif
}

std::int64_t current_byte_count(const XmlParser& parser) {
#ifdef SXML_HAS_XML_GetCurrentByteCount64
    return static_cast<std::int64_t>(XML_GetCurrentByteCount64(parser.expat));
#else
    return XML_GetCurrentByteCount(parser.expat);
#endif
}

XmlParser* create_empty_parser() {
    return static_cast<XmlParser*>(host_alloc(sizeof(XmlParser), HOST_BLOCK_ZEROED, HANDLERS_SOURCE,
                                              __LINE__, "XML Parser information", 0));
}

XmlParser* create_parser(std::uint32_t options) {
    if (host_trace_on) host_trace(1, HOST_TRACE_PARSER, "Create parser");
    XmlParser* parser = create_empty_parser();
    if (!parser) return creation_failed(nullptr, "Leaving, out of memory");
    set_input_encoding(*parser, HOST_ENCODING_UNKNOWN);

    parser->expat = XML_ParserCreate_MM(nullptr, &expat_memory, nullptr);
    if (!parser->expat) return creation_failed(parser, "No memory for parser");

    parser->buffer = static_cast<char*>(host_alloc(
        XML_READ_SIZE + 1, HOST_BLOCK_ZEROED, HANDLERS_SOURCE, __LINE__, "XML parser buffer", 0));
    if (!parser->buffer) return creation_failed(parser, "No memory for parse buffer");
    parser->end = parser->position;
    parser->flags = options;

    if (options & XMLOPT_ELEMENT_HASH) {
        parser->element_hash = create_element_hash();
        if (!parser->element_hash) return creation_failed(parser, "No memory for hash");
    }
    parser->state |= XMLPS_READ;
    XML_SetUserData(parser->expat, parser);
    XML_UseParserAsHandlerArg(parser->expat);
    turn_off_reparse_deferral(parser->expat);
    install_content_handlers(parser->expat, options);
    install_declaration_handlers(parser->expat, options);
    limit_entities(*parser);
    if (host_trace_on) host_trace(-1, HOST_TRACE_PARSER, "Leaving, parser created");
    return parser;
}

void end_parsing(XmlParser& parser) {
    if (parser.expat) XML_ParserFree(parser.expat);
    parser.expat = nullptr;
    free_text(parser.buffer);
}

void free_parser(XmlParser* parser) {
    if (!parser) return;
    free_text(parser->version);
    free_text(parser->encoding_name);
    // Expat goes before the models, which are memory that it handed over.
    end_parsing(*parser);
    for (std::uint32_t* string :
         {&parser->doctype_name, &parser->doctype_internal, &parser->doctype_pubid,
          &parser->doctype_sysid, &parser->top_comments, &parser->pending_comments})
        free_string(*string);
    if (parser->element_hash) host_hash_free(parser->element_hash, HANDLERS_SOURCE, __LINE__, 0);
    if (parser->models) host_table_free(parser->models, HANDLERS_SOURCE, __LINE__);
    if (parser->tree.root) xml_free_element(parser->tree.root->handle);
    if (parser->pis) free_instructions(*parser);
    free_early_events(*parser);
    free_entities(*parser);
    host_free(parser, HANDLERS_SOURCE, __LINE__, 0);
}
