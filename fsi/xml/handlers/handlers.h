// The handlers that Expat calls. Each gets the Expat parser as its first argument, except the
// unknown-encoding handler, whose handler data is null. Nothing here reports an error to Expat;
// a handler that runs out of memory stops the parse with stop_out_of_memory.
#pragma once

#include <expat.h>

#include "fsi/xml/handlers/xml_parser.h"

// The parser record behind a handler's first argument.
inline XmlParser& parser_of(void* expat) {
    return *static_cast<XmlParser*>(XML_GetUserData(static_cast<XML_Parser>(expat)));
}

// Ends the parse because a part of the document could not be stored: file error 14, and Expat
// delivers nothing more of the document.
void stop_out_of_memory(XmlParser& parser);

// Lets the caller of the driver go on before Expat delivers more.
void suspend(const XmlParser& parser);

// A child of the document element starts, or has ended: then the caller of the driver goes on.
// Result of end_record: false when Expat delivers more meanwhile.
void start_record(XmlParser& parser);
bool end_record(XmlParser& parser);

// The name under which an element is stored, in a tracked block; null when memory is exhausted.
char* stored_name(const XmlParser& parser, const char* name);

// True once the parse was stopped: Expat may still deliver an event or two, which are ignored.
inline bool stopped(const XmlParser& parser) {
    return (parser.state & XMLPS_OUT_OF_MEMORY) != 0;
}

extern "C" {
// Elements, character data, CDATA sections
void XMLCALL start_element(void* expat, const char* name, const char** attributes);
void XMLCALL end_element(void* expat, const char* name);
void XMLCALL char_data(void* expat, const char* text, int length);
void XMLCALL start_cdata(void* expat);
void XMLCALL end_cdata(void* expat);

// Processing instructions, comments, everything without a handler
void XMLCALL processing_instruction(void* expat, const char* target, const char* data);
void XMLCALL comment_handler(void* expat, const char* text);
void XMLCALL default_handler(void* expat, const char* text, int length);

// Declarations
void XMLCALL xml_decl(void* expat, const char* version, const char* encoding, int standalone);
void XMLCALL start_doctype(void* expat, const char* name, const char* sysid, const char* pubid,
                           int has_internal_subset);
void XMLCALL end_doctype(void* expat);
void XMLCALL element_decl(void* expat, const char* name, XML_Content* model);
void XMLCALL attlist_decl(void* expat, const char* element, const char* attribute, const char* type,
                          const char* value, int required);
void XMLCALL entity_decl(void* expat, const char* name, int is_parameter, const char* value,
                         int length, const char* base, const char* sysid, const char* pubid,
                         const char* notation);
void XMLCALL unparsed_entity_decl(void* expat, const char* name, const char* base,
                                  const char* sysid, const char* pubid, const char* notation);
void XMLCALL notation_decl(void* expat, const char* name, const char* base, const char* sysid,
                           const char* pubid);

// Entities and encodings from outside
int XMLCALL external_entity_ref(XML_Parser expat, const char* context, const char* base,
                                const char* sysid, const char* pubid);
int XMLCALL unknown_encoding(void* data, const char* name, XML_Encoding* info);
}
