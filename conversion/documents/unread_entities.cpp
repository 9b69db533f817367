#include "conversion/documents/unread_entities.h"

#include <new>
#include <string_view>

#include "conversion/documents/checked_parser.h"

namespace conversion {

namespace {

constexpr std::uint64_t NAMED_AT_MOST = 10;

// ---- The beginning: whether there may be such references ----

bool& may_refer(void* parser) {
    return *static_cast<bool*>(CheckedParser::owner(parser));
}

void XMLCALL note_doctype(void* parser, const XML_Char*, const XML_Char* system_id, const XML_Char*,
                          int) {
    if (system_id != nullptr) may_refer(parser) = true;
}

void XMLCALL note_parameter_entity(void* parser, const XML_Char*, int) {
    may_refer(parser) = true;
}

void XMLCALL stop_at_element(void* parser, const XML_Char*, const XML_Char**) {
    CheckedParser& checked = CheckedParser::of(parser);
    if (checked.has_external_entities()) may_refer(parser) = true;
    checked.stop();
}

// ---- The references ----

void note(void* parser, std::string_view name) {
    CheckedParser& checked = CheckedParser::of(parser);
    auto& found = *static_cast<UnreadEntities*>(CheckedParser::owner(parser));
    if (++found.count > NAMED_AT_MOST) return;
    try {
        found.first.push_back({Cause::document,
                               checked.place(),
                               "the entity " + std::string(name) +
                                   " is outside of the document and is not read; its text is "
                                   "missing",
                               {}});
    } catch (const std::bad_alloc&) {
        checked.stop_without_memory();
    }
}

int XMLCALL note_external(XML_Parser parser, const XML_Char* context, const XML_Char*,
                          const XML_Char*, const XML_Char*) {
    // The context is the name, and more after a form feed.
    const std::string_view text = context != nullptr ? context : "";
    note(parser, text.substr(0, text.find('\f')));
    return 1;
}

void XMLCALL note_skipped(void* parser, const XML_Char* name, int is_parameter) {
    if (is_parameter == 0) note(parser, name);
}

}  // namespace

Result<UnreadEntities> find_unread_entities(const std::string& file,
                                            const std::string& shown_name) {
    UnreadEntities found;
    bool may_have = false;
    CheckedParser beginning(&may_have);
    XML_SetStartDoctypeDeclHandler(beginning.expat(), note_doctype);
    XML_SetSkippedEntityHandler(beginning.expat(), note_parameter_entity);
    XML_SetStartElementHandler(beginning.expat(), stop_at_element);
    Done problem = beginning.parse(file, shown_name);
    if (!problem && may_have) {
        CheckedParser whole(&found);
        XML_SetExternalEntityRefHandler(whole.expat(), note_external);
        XML_SetSkippedEntityHandler(whole.expat(), note_skipped);
        problem = whole.parse(file, shown_name);
    }
    if (problem && problem->cause != Cause::document) return *problem;
    return found;
}

}  // namespace conversion
