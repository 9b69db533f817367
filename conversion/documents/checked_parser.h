// Expat as everything on the shelf uses it: documents whose entities nest too deep are refused.
#pragma once

#include <expat.h>

#include <memory>
#include <string>

#include "conversion/problem.h"
#include "host/entities/entity_depth.h"

namespace conversion {

// A parser for one document. Handlers of Expat's elements, declarations and so on may be set before
// parse(), but not its user data, nor its handlers of entity declarations and of the end of the
// DOCTYPE declaration.
class CheckedParser {
  public:
    // `owner` is given back by owner(). Throws std::bad_alloc.
    explicit CheckedParser(void* owner = nullptr);
    ~CheckedParser();
    CheckedParser(const CheckedParser&) = delete;
    CheckedParser& operator=(const CheckedParser&) = delete;

    XML_Parser expat() const { return parser_.get(); }
    // Of the parser that a handler has as its first argument.
    static void* owner(void* parser) { return of(parser).owner_; }
    static CheckedParser& of(void* parser);

    // Ends parse() before the end of the document, without a problem. For handlers.
    void stop();
    // Parses the document in a file to its end. A problem of Cause::document, with line and column,
    // when it is not well-formed, not complete, or refused for entities that nest too deep; another
    // when it cannot be read. `shown_name` is what problems call it. Throws std::bad_alloc.
    Done parse(const std::string& file, const std::string& shown_name);

  private:
    static void XMLCALL end_entities(void* parser);
    static void XMLCALL count_entity(void* parser, const XML_Char* name, int is_parameter,
                                     const XML_Char* value, int length, const XML_Char*,
                                     const XML_Char*, const XML_Char*, const XML_Char*);
    void judge(EntityDepth depth);

    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    void* owner_;
    EntityReferences entities_{};
    EntityDepth depth_ = EntityDepth::ALLOWED;
    bool is_stopped_ = false;
};

}  // namespace conversion
