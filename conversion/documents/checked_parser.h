// Expat as all of conversion/ uses it: documents whose entities nest too deep are refused.
#pragma once

#include <expat.h>

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "conversion/documents/expat_position.h"
#include "conversion/problem.h"
#include "host/entities/entity_depth.h"

namespace conversion {

// Whether an encoding that a document declares is ISO-8859-1; letter case does not count.
bool names_latin_1(std::string_view encoding);

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

    // For handlers: they end parse() before the end of the document, without a problem, with one,
    // or with std::bad_alloc. Expat may still call the handler of the end tag of an element without
    // content: see is_stopped().
    void stop();
    void stop(Problem problem);
    void stop_without_memory();
    bool is_stopped() const { return is_stopped_; }
    // For handlers: does the work, unless the parser of their first argument was stopped; when that
    // throws std::bad_alloc, parse() ends with it. Nothing may be thrown through Expat.
    template <class Work>
    static void guarded(void* parser, const Work& work) {
        CheckedParser& self = of(parser);
        if (self.is_stopped_) return;
        try {
            work();
        } catch (const std::bad_alloc&) {
            self.stop_without_memory();
        }
    }
    // Whether general entities have been declared whose text is outside of the document.
    bool has_external_entities() const { return has_external_entities_; }
    // To be called before parse(), for entity_text().
    void keep_entity_texts() { keeps_entity_texts_ = true; }
    // The text of a general entity that the document itself declares; null: there is none of this
    // name, or its text is outside of the document.
    const std::string* entity_text(std::string_view name) const {
        const auto found = entity_texts_.find(name);
        return found == entity_texts_.end() ? nullptr : &found->second;
    }
    // Where the present event stands: the document's name as shown, line and column.
    Place place() const;

    // Parses the document in a file to its end. A problem of Cause::document, with line and column,
    // when it is not well-formed, not complete, or refused for entities that nest too deep; another
    // when it cannot be read, or when a handler stopped with one. `shown_name` is what problems
    // call the document. Throws std::bad_alloc.
    Done parse(const std::string& file, const std::string& shown_name);

  private:
    static void XMLCALL end_entities(void* parser);
    static void XMLCALL count_entity(void* parser, const XML_Char* name, int is_parameter,
                                     const XML_Char* value, int length, const XML_Char*,
                                     const XML_Char*, const XML_Char*, const XML_Char*);
    void judge(EntityDepth depth);

    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    void* owner_;
    std::string shown_name_;
    EntityReferences entities_{};
    bool is_stopped_ = false;  // by a handler, its own or the caller's
    bool has_no_memory_ = false;
    bool has_external_entities_ = false;
    bool keeps_entity_texts_ = false;
    std::map<std::string, std::string, std::less<>> entity_texts_{};
    Done problem_;  // of the handler that stopped
};

}  // namespace conversion
