// The components that schema documents declare, with all that these include and import.
#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "conversion/problem.h"
#include "conversion/schemas/schema_node.h"

namespace conversion {

class SchemaSet {
  public:
    // Reads a schema document and the local files that it includes and imports, each once. A
    // problem when one cannot be read or is not a schema, when there are too many, and for
    // xs:redefine and xs:override. Nothing is fetched from the web. Throws std::bad_alloc.
    Done add(const std::string& file, const std::string& shown_name);

    bool is_empty() const { return documents_.empty(); }
    // All that were read, by their names on the disk.
    std::vector<std::string> files() const;
    // Of one kind ("element", "type", "group", "attributeGroup", "attribute"), by
    // component_key(); null when it is not declared.
    const SchemaNode* find(const std::string& kind, const std::string& key) const;
    // The elements declared at the top of the documents that were given to add().
    const std::vector<const SchemaNode*>& top_elements() const { return top_elements_; }
    // The elements that may stand in the place of the one with this key.
    const std::vector<const SchemaNode*>& substitutes(const std::string& key) const;
    // Whether some element is a reference to the one with this key.
    bool is_referred_to(const std::string& key) const { return referred_to_.count(key) > 0; }
    // "; its schema at WHERE was not read" for a key of a namespace whose schema is not local.
    std::string hint_for(const std::string& key) const;

  private:
    struct Wanted {
        std::string file;
        std::string shown_name;
        std::string target_namespace;  // of who includes it
        const SchemaNode* from;        // null: given by the user
        bool is_included = false;
    };

    Done load(const Wanted& wanted);
    const SchemaNode* known_root(const std::string& name, const std::string& taken_into) const;
    void take_top_elements(const SchemaNode& root);
    Done take_children(const SchemaNode& root, const Wanted& wanted);
    Done want(const SchemaNode& reference, const Wanted& by);
    void declare(const SchemaNode& node);
    void note_references(const SchemaNode& node);

    struct Document {
        std::unique_ptr<SchemaFile> file;
        std::unique_ptr<SchemaNode> root;
    };
    std::vector<Document> documents_;
    std::vector<Wanted> wanted_;
    // The documents' elements, by their files' names, a line end, and the namespace that a document
    // without one was taken into.
    std::unordered_map<std::string, const SchemaNode*> known_;
    std::set<const SchemaNode*> given_;  // of documents that were given to add()
    std::size_t nodes_ = 0;
    std::unordered_map<std::string, std::unordered_map<std::string, const SchemaNode*>> components_;
    std::unordered_map<std::string, std::vector<const SchemaNode*>> substitutes_;
    std::set<std::string> referred_to_;
    std::vector<const SchemaNode*> top_elements_;
    std::unordered_map<std::string, std::string> not_read_;  // by namespace: where
};

}  // namespace conversion
