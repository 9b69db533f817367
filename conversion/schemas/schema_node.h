// The elements of a schema document as a tree.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conversion/problem.h"

namespace conversion {

extern const std::string_view SCHEMA_NAMESPACE;
extern const std::string_view XML_NAMESPACE;  // of the prefix xml

// One schema document. Names without a prefix, and the components it declares, are in
// `target_namespace`, which for an included one may be that of the document that includes it.
struct SchemaFile {
    std::string file;        // on the disk
    std::string shown_name;  // in messages
    std::string target_namespace{};
    bool takes_namespace = false;  // from the document that includes it
};

// An element of a schema document. Elements of other namespaces, and what is in xs:annotation, are
// left out.
struct SchemaNode {
    std::string name;  // without prefix
    SchemaNode* parent = nullptr;
    const SchemaFile* file = nullptr;
    std::uint64_t line = 0;
    std::uint64_t column = 0;
    std::vector<std::pair<std::string, std::string>> attributes{};  // of no namespace
    std::vector<std::pair<std::string, std::string>> prefixes{};    // declared here, with their URI
    std::vector<std::unique_ptr<SchemaNode>> children{};

    // The value of an attribute; empty when it has none.
    std::string attribute(std::string_view wanted) const;
    bool has(std::string_view wanted) const;
    // Whether an attribute of type xs:boolean is there, and true.
    bool is_true(std::string_view wanted) const;
    // The first child of this name; null when there is none.
    const SchemaNode* child(std::string_view wanted) const;
    Place place() const;
};

// The name of a component with its namespace, as "{URI}local".
std::string component_key(std::string_view uri, std::string_view local);
// The component that a name with or without prefix, as it stands in an attribute of `node`, means.
// An unknown prefix is taken for the URI itself.
std::string component_key_of(const SchemaNode& node, std::string_view written);

// Whether a key is that of a component of XML Schema itself, such as the type xs:int.
bool is_built_in(const std::string& key);

// Whether the document element of a document is xs:schema. False also when it is not well-formed; a
// problem when it cannot be read. Throws std::bad_alloc.
Result<bool> is_schema(const std::string& file);

// Reads a schema document. `nodes` counts them over several documents. A problem when it cannot be
// read, is not a schema, nests deeper than 256 elements, or when there are more than a million
// nodes. Throws std::bad_alloc.
Result<std::unique_ptr<SchemaNode>> read_schema(const SchemaFile& file, std::size_t& nodes);

}  // namespace conversion
