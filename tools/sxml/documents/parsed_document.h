// A whole document, read by the module.
#pragma once

#include <cstdint>
#include <functional>

#include "conversion/documents/document_source.h"
#include "host/runtime/module.h"
#include "sxml/xml_api.h"

namespace command {

// The module's XML API, found by ordinal number. Throws Failure when an entry is missing.
XmlApi xml_api(const host::Module& module);

// The document in memory, which goes with this object.
class ParsedDocument {
  public:
    // `options` is the option word of xml_open_file. Throws Failure, with line and column, for a
    // document that is not well-formed or not complete.
    ParsedDocument(const XmlApi& api, const conversion::DocumentSource& input,
                   std::uint32_t options);
    ~ParsedDocument() { api_.xml_free_parser(parser_); }
    ParsedDocument(const ParsedDocument&) = delete;
    ParsedDocument& operator=(const ParsedDocument&) = delete;

    const XmlApi& api() const { return api_; }
    std::uint32_t parser() const { return parser_; }

    // Calls `visit` with each element, in document order, which may change but not release it.
    void for_each_element(const std::function<void(std::uint32_t)>& visit) const;

  private:
    const XmlApi& api_;
    std::uint32_t parser_;
};

}  // namespace command
