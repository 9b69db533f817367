// What a parser has collected of elements: the tree, the element hash, the content models.
#include "fsi/xml/elements/element.h"
#include "fsi/xml/parsexml/parser_handle.h"
#include "sxml/xml_api.h"

std::uint32_t xml_parser_root(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser ? handle_of(parser->tree.root) : 0;
}

std::uint32_t xml_parser_current(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser ? handle_of(parser->tree.current) : 0;
}

HostTable* xml_parser_models(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser ? parser->models : nullptr;
}

HostNameIndex* xml_parser_element_hash(std::uint32_t handle) {
    const XmlParser* parser = lookup_parser(handle);
    return parser ? parser->element_hash : nullptr;
}

std::uint32_t xml_parser_new_root(std::uint32_t handle, const char* name) {
    XmlParser* parser = lookup_parser(handle);
    if (!parser) return 0;
    if (parser->tree.root) {
        set_parser_error(XMLERR_HAS_TOP_LEVEL);
        return 0;
    }
    parser->tree.root = create_element(lookup_element(0), name, 0);
    if (parser->tree.root) parser->tree.root->holder = &parser->tree;
    return handle_of(parser->tree.root);
}

std::uint32_t xml_element_parser(std::uint32_t element) {
    if (!element || !next_parser_handle(0) || !xml_is_element(element)) return 0;
    const XmlElement* top = lookup_element(element);
    while (top->parent) top = top->parent;
    for (std::uint32_t handle = next_parser_handle(0); handle;
         handle = next_parser_handle(handle)) {
        const XmlParser* parser = lookup_parser(handle);
        if (parser && parser->tree.root == top) return handle;
    }
    return 0;
}
