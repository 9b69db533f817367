#include "conversion/schemas/schema_node.h"

#include <algorithm>

#include "conversion/documents/checked_parser.h"

namespace conversion {

const std::string_view SCHEMA_NAMESPACE = "http://www.w3.org/2001/XMLSchema";
const std::string_view XML_NAMESPACE = "http://www.w3.org/XML/1998/namespace";

namespace {

constexpr std::size_t MOST_DEPTH = 256;
constexpr std::size_t MOST_NODES = 1'000'000;

// A name's prefix and the rest.
std::pair<std::string_view, std::string_view> parts_of(std::string_view written) {
    const std::size_t colon = written.find(':');
    if (colon == written.npos) return {"", written};
    return {written.substr(0, colon), written.substr(colon + 1)};
}

const std::string* uri_of(const SchemaNode& node, std::string_view prefix) {
    for (const SchemaNode* at = &node; at != nullptr; at = at->parent) {
        for (const auto& [name, uri] : at->prefixes) {
            if (name == prefix) return &uri;
        }
    }
    return nullptr;
}

// The attributes and namespace declarations of an element.
void take_attributes(SchemaNode& node, const XML_Char** attributes) {
    for (; *attributes != nullptr; attributes += 2) {
        const std::string_view name = attributes[0];
        if (name == "xmlns" || name.starts_with("xmlns:")) {
            node.prefixes.emplace_back(name.size() > 5 ? name.substr(6) : "", attributes[1]);
        } else if (name.find(':') == name.npos) {
            node.attributes.emplace_back(name, attributes[1]);
        }
    }
}

// Builds the tree while Expat reads.
class SchemaReader {
  public:
    SchemaReader(const SchemaFile& file, std::size_t& nodes)
        : file_(file), nodes_(nodes), parser_(this) {
        XML_SetElementHandler(parser_.expat(), &start, &finish);
    }

    Result<std::unique_ptr<SchemaNode>> read() {
        if (Done problem = parser_.parse(file_.file, file_.shown_name)) return *std::move(problem);
        return std::move(root_);
    }

  private:
    static SchemaReader& of(void* parser) {
        return *static_cast<SchemaReader*>(CheckedParser::owner(parser));
    }
    static void XMLCALL start(void* user, const XML_Char* name, const XML_Char** attributes) {
        CheckedParser::guarded(user, [=] { of(user).open(name, attributes); });
    }
    static void XMLCALL finish(void* user, const XML_Char*) {
        SchemaReader& self = of(user);
        if (self.parser_.is_stopped()) return;
        if (self.passed_over_ > 0) {
            --self.passed_over_;
        } else {
            self.open_ = self.open_->parent;
            --self.depth_;
        }
    }

    void open(std::string_view written, const XML_Char** attributes) {
        if (passed_over_ > 0) {
            ++passed_over_;
            return;
        }
        auto node = std::make_unique<SchemaNode>();
        node->parent = open_;
        take_attributes(*node, attributes);
        const auto [prefix, local] = parts_of(written);
        const std::string* const uri = uri_of(*node, prefix);
        const bool is_known = uri != nullptr && *uri == SCHEMA_NAMESPACE;
        if (open_ == nullptr && (!is_known || local != "schema")) {
            return stop("the document is not an XML Schema",
                        "its document element must be schema, of the namespace " +
                            std::string(SCHEMA_NAMESPACE));
        }
        if (!is_known || local == "annotation") {
            passed_over_ = 1;
            return;
        }
        if (++depth_ > MOST_DEPTH) {
            return stop("the schema nests deeper than " + std::to_string(MOST_DEPTH) + " elements",
                        "");
        }
        if (++nodes_ > MOST_NODES) {
            return stop("the schema has more than " + std::to_string(MOST_NODES) + " elements", "");
        }
        add(std::move(node), local);
    }

    void add(std::unique_ptr<SchemaNode> node, std::string_view local) {
        node->name = local;
        node->file = &file_;
        const Place place = parser_.place();
        node->line = place.line;
        node->column = place.column;
        SchemaNode* const added = node.get();
        if (open_ == nullptr) {
            root_ = std::move(node);
        } else {
            open_->children.push_back(std::move(node));
        }
        open_ = added;
    }

    void stop(std::string what, std::string remedy) {
        parser_.stop({Cause::document, parser_.place(), std::move(what), std::move(remedy)});
    }

    const SchemaFile& file_;
    std::size_t& nodes_;
    CheckedParser parser_;
    std::unique_ptr<SchemaNode> root_;
    SchemaNode* open_ = nullptr;
    std::size_t depth_ = 0;
    std::size_t passed_over_ = 0;  // elements open within one that is left out, and that
};

// Looks at the document element only.
struct RootLook {
    bool is_schema = false;

    static void XMLCALL start(void* user, const XML_Char* name, const XML_Char** attributes) {
        auto& self = *static_cast<RootLook*>(CheckedParser::owner(user));
        const auto [prefix, local] = parts_of(name);
        for (; *attributes != nullptr && local == "schema"; attributes += 2) {
            const auto [xmlns, declared] = parts_of(attributes[0]);
            const bool is_declaration = xmlns == "xmlns" ? declared == prefix && !prefix.empty()
                                                         : declared == "xmlns" && prefix.empty();
            if (is_declaration && attributes[1] == SCHEMA_NAMESPACE) self.is_schema = true;
        }
        CheckedParser::of(user).stop();
    }
};

}  // namespace

std::string SchemaNode::attribute(std::string_view wanted) const {
    for (const auto& [attribute, value] : attributes) {
        if (attribute != wanted) continue;
        const char* const white = " \t\r\n";
        const std::size_t begin = value.find_first_not_of(white);
        if (begin == value.npos) return {};
        return value.substr(begin, value.find_last_not_of(white) + 1 - begin);
    }
    return {};
}

bool SchemaNode::has(std::string_view wanted) const {
    return std::any_of(attributes.begin(), attributes.end(),
                       [wanted](const auto& attribute) { return attribute.first == wanted; });
}

bool SchemaNode::is_true(std::string_view wanted) const {
    const std::string value = attribute(wanted);
    return value == "true" || value == "1";
}

const SchemaNode* SchemaNode::child(std::string_view wanted) const {
    for (const auto& child : children) {
        if (child->name == wanted) return child.get();
    }
    return nullptr;
}

Place SchemaNode::place() const {
    Place place;
    place.file = file->shown_name;
    place.line = line;
    place.column = column;
    return place;
}

std::string component_key(std::string_view uri, std::string_view local) {
    std::string key = "{";
    key += uri;
    key += "}";
    key += local;
    return key;
}

std::string component_key_of(const SchemaNode& node, std::string_view written) {
    const auto [prefix, local] = parts_of(written);
    const std::string* const uri = uri_of(node, prefix);
    if (uri != nullptr) return component_key(*uri, local);
    if (!prefix.empty()) {
        return component_key(prefix == "xml" ? XML_NAMESPACE : prefix, local);
    }
    return component_key(node.file->takes_namespace ? node.file->target_namespace : "", local);
}

bool is_built_in(const std::string& key) {
    return key.starts_with(component_key(SCHEMA_NAMESPACE, ""));
}

Result<bool> is_schema(const std::string& file) {
    RootLook look;
    CheckedParser parser(&look);
    XML_SetStartElementHandler(parser.expat(), &RootLook::start);
    Done problem = parser.parse(file, file);
    if (problem && problem->cause != Cause::document) return *std::move(problem);
    return !problem && look.is_schema;
}

Result<std::unique_ptr<SchemaNode>> read_schema(const SchemaFile& file, std::size_t& nodes) {
    return SchemaReader(file, nodes).read();
}

}  // namespace conversion
