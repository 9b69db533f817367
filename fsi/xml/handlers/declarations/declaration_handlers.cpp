// The XML declaration, the DOCTYPE declaration and the declarations in it. A text that cannot be
// stored because memory is exhausted is left out; nothing is reported.

#include <array>
#include <cstring>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/handlers/declarations/content_model.h"
#include "fsi/xml/handlers/declarations/entity_limit.h"
#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/records/plain_records.h"
#include "fsi/xml/handlers/trace_message.h"
#include "host/memory.h"
#include "host/strings.h"

namespace {

constexpr std::size_t MODEL_NAME_SIZE = 256;  // with the NUL

struct NamedEncoding {
    const char* name;
    std::int32_t code;
};
constexpr std::array<NamedEncoding, 5> NAMED_ENCODINGS = {{{"utf-8", HOST_ENCODING_UTF8},
                                                           {"utf-16le", HOST_ENCODING_UTF16LE},
                                                           {"utf-16be", HOST_ENCODING_UTF16BE},
                                                           {"utf-16", HOST_ENCODING_UTF16LE},
                                                           {"iso-8859-1", HOST_ENCODING_LATIN1}}};

// The encoding of a document that was detected as `detected` and declares `name` (or none). The
// first bytes tell the width and the order of the code units beyond doubt, so for a document of
// wider units a declaration without an order, or without a name, changes nothing.
std::int32_t declared_encoding(std::int32_t detected, const char* name) {
    const bool wide = host_unit_width(detected) > 1;
    if (name && !(wide && equal_ignoring_case(name, "utf-16"))) {
        for (const NamedEncoding& entry : NAMED_ENCODINGS)
            if (equal_ignoring_case(name, entry.name)) return entry.code;
    }
    return wide ? detected : std::int32_t{HOST_ENCODING_NONE};
}

// Puts a text into the string at `string`, unless there is no text.
void keep_text(std::uint32_t& string, const char* text, const char* description) {
    if (!text) return;
    if (!string)
        string = host_string_new(description, std::strlen(text) + 1, HANDLERS_SOURCE, __LINE__, 0);
    else
        host_string_clear(string);
    if (string) host_string_append(string, text, HANDLERS_SOURCE, __LINE__, 0);
}

// Replaces a tracked text by a copy of another one.
void keep_copy(char*& stored, const char* text) {
    if (!text) return;
    host_free(stored, HANDLERS_SOURCE, __LINE__, 0);
    stored = host_strdup(text, HANDLERS_SOURCE, __LINE__);
}

}  // namespace

void xml_decl(void* expat, const char* version, const char* encoding, int standalone) {
    XmlParser& parser = parser_of(expat);
    if (host_trace_on) {
        host_trace(1, HOST_TRACE_DECLARATIONS, "XML Declaration");
        trace_given(HOST_TRACE_DECLARATIONS, "version: %s", version);
        trace_given(HOST_TRACE_DECLARATIONS, "encoding: %s", encoding);
        trace_message(0, HOST_TRACE_DECLARATIONS, "standalone: %d", standalone);
    }
    keep_copy(parser.version, version);
    keep_copy(parser.encoding_name, encoding);
    parser.standalone = standalone;
    set_input_encoding(parser, declared_encoding(parser.input_encoding, encoding));
    if (host_trace_on) host_trace(-1, HOST_TRACE_DECLARATIONS, "Leaving");
}

// Setting a default handler the ordinary way would leave references to internal entities unexpanded
// for the rest of the document, even after the handler is gone; the other setter does not.
void start_doctype(void* expat, const char* name, const char* sysid, const char* pubid,
                   int has_internal_subset) {
    XmlParser& parser = parser_of(expat);
    if (host_trace_on) {
        trace_message(1, HOST_TRACE_PARSER, "start doctype (%d)", has_internal_subset);
        trace_given(HOST_TRACE_PARSER, "doctype: %s", name);
        trace_given(HOST_TRACE_PARSER, "sysId: %s", sysid);
        trace_given(HOST_TRACE_PARSER, "pubId: %s", pubid);
    }
    if (!(parser.flags & XMLOPT_DEFAULT))
        XML_SetDefaultHandlerExpand(parser.expat, default_handler);
    parser.state |= XMLPS_IN_DOCTYPE;
    parser.declaration.place = DeclarationPlace::BETWEEN;
    keep_text(parser.doctype_name, name, "XML DOCTYPE string");
    keep_text(parser.doctype_pubid, pubid, "XML PubId string");
    keep_text(parser.doctype_sysid, sysid, "XML SysId string");
    if (host_trace_on) host_trace(-1, HOST_TRACE_PARSER, "Leaving");
}

void end_doctype(void* expat) {
    XmlParser& parser = parser_of(expat);
    if (host_trace_on) host_trace(1, HOST_TRACE_PARSER, "end doctype");
    parser.state |= XMLPS_DOCTYPE_DONE;
    end_entities(parser);
    if (!(parser.flags & XMLOPT_DEFAULT)) XML_SetDefaultHandlerExpand(parser.expat, nullptr);
    if (host_trace_on) host_trace(-1, HOST_TRACE_PARSER, "Leaving");
}

void element_decl(void* expat, const char* name, XML_Content* model) {
    XmlParser& parser = parser_of(expat);
    if (host_trace_on) {
        trace_message(1, HOST_TRACE_PARSER, "element declaration %s", name);
        dump_content_model(model);
    }
    char key[MODEL_NAME_SIZE];
    const std::size_t length = std::strlen(name);
    const std::size_t kept = length < MODEL_NAME_SIZE ? length : MODEL_NAME_SIZE - 1;
    std::memcpy(key, name, kept);
    key[kept] = '\0';
    host_convert_case(key, MODEL_NAME_SIZE - 1, HOST_NAME_LOWER_CASE);

    HostTable* table =
        host_table_put(parser.models, key, model, HANDLERS_SOURCE, __LINE__, "XML Models", 0);
    if (table)
        parser.models = table;
    else
        XML_FreeContentModel(parser.expat, model);
    if (host_trace_on) host_trace(-1, HOST_TRACE_PARSER, "Leaving");
}

void attlist_decl(void* expat, const char* element, const char* attribute, const char* type,
                  const char* value, int required) {
    forbid_plain_records(parser_of(expat));
    if (!host_trace_on || !(parser_of(expat).flags & XMLOPT_ATTLIST_DECLS)) return;
    trace_message(1, HOST_TRACE_ELEMENTS, "attribute list declaration (%d)", required);
    trace_given(HOST_TRACE_ELEMENTS, "element: %s", element);
    trace_given(HOST_TRACE_ELEMENTS, "attribute: %s", attribute);
    trace_given(HOST_TRACE_ELEMENTS, "attribute type: %s", type);
    trace_given(HOST_TRACE_ELEMENTS, "default: %s", value);
    host_trace(-1, HOST_TRACE_ELEMENTS, "Leaving");
}

void entity_decl(void* expat, const char* name, int is_parameter, const char* value, int length,
                 const char* base, const char* sysid, const char* pubid, const char* notation) {
    forbid_plain_records(parser_of(expat));
    if (!is_parameter) limit_entity(parser_of(expat), name, value, length);
    if (!host_trace_on) return;
    trace_message(1, HOST_TRACE_DECLARATIONS, "entity declaration: %s (%d)", name, is_parameter);
    trace_given(HOST_TRACE_DECLARATIONS, "base: %s", base);
    trace_given(HOST_TRACE_DECLARATIONS, "sysId: %s", sysid);
    trace_given(HOST_TRACE_DECLARATIONS, "pubId: %s", pubid);
    trace_given(HOST_TRACE_DECLARATIONS, "notation: %s", notation);
    host_trace(-1, HOST_TRACE_DECLARATIONS, "Leaving");
}

void unparsed_entity_decl(void*, const char* name, const char* base, const char* sysid,
                          const char* pubid, const char* notation) {
    if (!host_trace_on) return;
    host_trace(1, HOST_TRACE_DECLARATIONS, "Unparsed entity");
    trace_given(HOST_TRACE_DECLARATIONS, "name: %s", name);
    trace_given(HOST_TRACE_DECLARATIONS, "base: %s", base);
    trace_given(HOST_TRACE_DECLARATIONS, "sysId: %s", sysid);
    trace_given(HOST_TRACE_DECLARATIONS, "pubId: %s", pubid);
    trace_given(HOST_TRACE_DECLARATIONS, "notation: %s", notation);
    host_trace(-1, HOST_TRACE_DECLARATIONS, "Leaving");
}

void notation_decl(void*, const char* name, const char* base, const char* sysid,
                   const char* pubid) {
    if (!host_trace_on) return;
    host_trace(1, HOST_TRACE_DECLARATIONS, "Notation");
    trace_given(HOST_TRACE_DECLARATIONS, "name: %s", name);
    trace_given(HOST_TRACE_DECLARATIONS, "base: %s", base);
    trace_given(HOST_TRACE_DECLARATIONS, "sysId: %s", sysid);
    trace_given(HOST_TRACE_DECLARATIONS, "pubId: %s", pubid);
    host_trace(-1, HOST_TRACE_DECLARATIONS, "Leaving");
}

// The entity is skipped: its text is absent from the document.
int external_entity_ref(XML_Parser, const char* context, const char* base, const char* sysid,
                        const char* pubid) {
    if (host_trace_on) {
        host_trace(1, HOST_TRACE_ELEMENTS, "external entity reference");
        trace_given(HOST_TRACE_ELEMENTS, "context: %s", context);
        trace_given(HOST_TRACE_ELEMENTS, "base: %s", base);
        trace_given(HOST_TRACE_ELEMENTS, "sysId: %s", sysid);
        trace_given(HOST_TRACE_ELEMENTS, "pubId: %s", pubid);
        host_trace(-1, HOST_TRACE_ELEMENTS, "Leaving");
    }
    return XML_STATUS_OK;
}

// Expat then rejects the document.
int unknown_encoding(void*, const char* name, XML_Encoding*) {
    if (host_trace_on) {
        trace_message(1, HOST_TRACE_CONTENT, "unknown encoding: '%s'", name);
        host_trace(-1, HOST_TRACE_CONTENT, "Leaving");
    }
    return XML_STATUS_ERROR;
}
