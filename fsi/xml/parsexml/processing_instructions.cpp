// The processing instructions of a document.
#include "fsi/xml/handlers/instructions.h"
#include "fsi/xml/parsexml/parser_handle.h"
#include "host/strings.h"
#include "sxml/xml_api.h"

namespace {

// An instruction of a parser; null with the reason recorded.
XmlPi* find_instruction(const XmlParser* parser, std::uint32_t index) {
    if (!parser) return nullptr;
    if (!parser->pis) {
        set_parser_error(XMLERR_NO_PI);
        return nullptr;
    }
    if (index >= host_array_count(parser->pis)) {
        set_parser_error(XMLERR_BAD_PI);
        return nullptr;
    }
    return &parser->pis[index];
}

}  // namespace

const char* xml_pi_target(std::uint32_t handle, std::uint32_t index) {
    const XmlPi* entry = find_instruction(lookup_parser(handle), index);
    return entry ? host_string_text(entry->target) : nullptr;
}

const char* xml_pi_data(std::uint32_t handle, std::uint32_t index) {
    const XmlPi* entry = find_instruction(lookup_parser(handle), index);
    return entry ? host_string_text(entry->data) : nullptr;
}

std::int32_t xml_delete_pi(std::uint32_t handle, std::uint32_t index) {
    XmlParser* parser = lookup_parser(handle);
    const XmlPi* entry = find_instruction(parser, index);
    if (!entry) return 0;
    host_string_free(entry->target, PARSEXML_SOURCE, __LINE__);
    host_string_free(entry->data, PARSEXML_SOURCE, __LINE__);
    host_array_delete(parser->pis, index, 1);
    return 1;
}

std::int32_t xml_insert_pi(std::uint32_t handle, std::uint32_t index, const char* target,
                           const char* data) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser) return 0;
    if (insert_instruction(*parser, index, target ? target : "", data ? data : "", PARSEXML_SOURCE))
        return 1;
    set_parser_error(XMLERR_NO_MEMORY);
    return 0;
}

std::uint32_t xml_pi_count(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    if (!parser) return 0;
    if (!parser->pis) set_parser_error(XMLERR_NO_PI);
    return host_array_count(parser->pis);
}
