#include "conversion/documents/document_losses.h"

#include <set>
#include <string_view>
#include <utility>

#include "conversion/documents/checked_parser.h"
#include "conversion/formats/byte_source.h"
#include "conversion/texts/utf8.h"

namespace conversion {

namespace {

constexpr std::uint64_t NAMED_AT_MOST = 10;

// ---- The beginning: what there may be ----

struct Beginning {
    bool may_refer = false;  // to entities that are not read
    bool is_latin_1 = false;
};

Beginning& beginning_of(void* parser) {
    return *static_cast<Beginning*>(CheckedParser::owner(parser));
}

void XMLCALL note_declaration(void* parser, const XML_Char*, const XML_Char* encoding, int) {
    beginning_of(parser).is_latin_1 = encoding != nullptr && names_latin_1(encoding);
}

void XMLCALL note_doctype(void* parser, const XML_Char*, const XML_Char* system_id, const XML_Char*,
                          int) {
    if (system_id != nullptr) beginning_of(parser).may_refer = true;
}

void XMLCALL note_parameter_entity(void* parser, const XML_Char*, int) {
    beginning_of(parser).may_refer = true;
}

void XMLCALL stop_at_element(void* parser, const XML_Char*, const XML_Char**) {
    CheckedParser& checked = CheckedParser::of(parser);
    if (checked.has_external_entities()) beginning_of(parser).may_refer = true;
    checked.stop();
}

// Whether the bytes of a file have what begins a reference to a character.
Result<bool> has_character_references(const std::string& file) {
    constexpr std::size_t PIECE = std::size_t{1} << 16;
    Result<ByteSource> source = ByteSource::open(file);
    if (!source) return source.problem();
    std::vector<std::uint8_t> bytes(1 + PIECE);  // after the last byte of the piece before
    for (;;) {
        const Result<std::size_t> count = source->read(bytes.data() + 1, PIECE);
        if (!count) return count.problem();
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), 1 + *count);
        if (text.find("&#") != std::string_view::npos) return true;
        if (*count < PIECE) return false;
        bytes[0] = bytes[PIECE];
    }
}

// ---- The whole document ----

// Raw text of a document as UTF-8. Of wide characters, those of two units are not put together: no
// name has them.
std::string in_utf8(std::string_view raw, bool is_latin_1) {
    const bool is_wide = raw.size() > 1 && (raw[0] == '\0' || raw[1] == '\0');
    if (!is_wide && !is_latin_1) return std::string(raw);
    const auto byte = [raw](std::size_t at) { return static_cast<unsigned char>(raw[at]); };
    const std::size_t low = is_wide && raw[0] == '\0' ? 1 : 0;
    std::string text;
    if (is_latin_1) {
        for (std::size_t at = 0; at < raw.size(); ++at) append_utf8(byte(at), text);
        return text;
    }
    for (std::size_t at = 0; at + 1 < raw.size(); at += 2) {
        const unsigned unit = byte(at + low) | static_cast<unsigned>(byte(at + 1 - low)) << 8U;
        append_utf8(unit, text);
    }
    return text;
}

// Calls take(name) for each general entity that a text refers to, other than those of XML itself.
template <class Take>
void each_entity(std::string_view text, const Take& take) {
    static const std::set<std::string_view> OF_XML = {"amp", "apos", "gt", "lt", "quot"};
    for (std::size_t at = text.find('&'); at != text.npos; at = text.find('&', at + 1)) {
        const std::size_t end = text.find(';', at);
        if (end == text.npos) return;
        const std::string_view name = text.substr(at + 1, end - at - 1);
        if (!name.starts_with('#') && OF_XML.count(name) == 0) take(name);
    }
}

// One run over a document.
class LossSearch {
  public:
    LossSearch(const Beginning& beginning, bool looks_at_characters)
        : is_latin_1_(beginning.is_latin_1),
          looks_at_characters_(looks_at_characters),
          looks_at_entities_(beginning.may_refer),
          parser_(this) {
        parser_.keep_entity_texts();
        XML_SetExternalEntityRefHandler(parser_.expat(), &note_external);
        XML_SetSkippedEntityHandler(parser_.expat(), &note_skipped);
        XML_SetStartElementHandler(parser_.expat(), &look_at_element);
        if (looks_at_characters) XML_SetCharacterDataHandler(parser_.expat(), &look_at_text);
    }

    Done run(const std::string& file, const std::string& shown_name) {
        return parser_.parse(file, shown_name);
    }
    DocumentLosses& found() { return found_; }

  private:
    static LossSearch& of(void* parser) {
        return *static_cast<LossSearch*>(CheckedParser::owner(parser));
    }

    static int XMLCALL note_external(XML_Parser parser, const XML_Char* context, const XML_Char*,
                                     const XML_Char*, const XML_Char*) {
        // The context is the name, and more after a form feed.
        const std::string_view text = context != nullptr ? context : "";
        CheckedParser::guarded(parser,
                               [=] { of(parser).note_entity(text.substr(0, text.find('\f'))); });
        return 1;
    }
    static void XMLCALL note_skipped(void* parser, const XML_Char* name, int is_parameter) {
        if (is_parameter != 0) return;
        CheckedParser::guarded(parser, [=] { of(parser).note_entity(name); });
    }
    static void XMLCALL look_at_element(void* parser, const XML_Char*,
                                        const XML_Char** attributes) {
        CheckedParser::guarded(parser, [=] {
            LossSearch& self = of(parser);
            if (self.looks_at_entities_) self.look_at_tag();
            if (!self.looks_at_characters_) return;
            for (const XML_Char** at = attributes; *at != nullptr; at += 2) {
                self.look_at_characters(at[1]);
            }
        });
    }
    static void XMLCALL look_at_text(void* parser, const XML_Char* text, int length) {
        CheckedParser::guarded(parser, [=] {
            of(parser).look_at_characters({text, static_cast<std::size_t>(length)});
        });
    }

    // Expat does not report the entities that it skips in attributes. Their text may refer to
    // others.
    void look_at_tag() {
        const ByteRange range = bytes_of_event(parser_.expat());
        const std::string_view raw = input_at_event(parser_.expat());
        const std::string tag = in_utf8(raw.substr(0, range.end - range.begin), is_latin_1_);
        if (!tag.starts_with('<')) return;  // the element is in the text of an entity
        std::set<std::string_view> followed;
        std::vector<std::string_view> texts = {tag};
        while (!texts.empty()) {
            const std::string_view text = texts.back();
            texts.pop_back();
            each_entity(text, [&](std::string_view name) {
                const std::string* inner = parser_.entity_text(name);
                if (inner == nullptr) return note_entity(name);
                if (followed.insert(name).second) texts.emplace_back(*inner);
            });
        }
    }

    void look_at_characters(std::string_view text) {
        constexpr unsigned char FIRST_LEAD = 0xC4;  // of U+0100
        for (std::size_t at = 0; at < text.size(); ++at) {
            if (static_cast<unsigned char>(text[at]) < FIRST_LEAD) continue;
            note_character(utf8::first_character(text.substr(at)).code);
        }
    }

    void note_entity(std::string_view name) {
        note(found_.entities,
             "the entity " + std::string(name) +
                 " is outside of the document and is not read; its text is missing",
             {});
    }
    void note_character(char32_t code) {
        note(found_.characters,
             "the character " + character_name(code) +
                 " is lost, because the document declares ISO-8859-1 and its texts are kept in it",
             "convert the document to UTF-8 first, as `xmllint --encode UTF-8` does");
    }
    void note(DocumentLoss& loss, std::string what, std::string remedy) {
        if (++loss.count > NAMED_AT_MOST) return;
        loss.first.push_back(
            {Cause::document, parser_.place(), std::move(what), std::move(remedy)});
    }

    bool is_latin_1_;
    bool looks_at_characters_;
    bool looks_at_entities_;
    CheckedParser parser_;
    DocumentLosses found_;
};

}  // namespace

Result<DocumentLosses> find_document_losses(const std::string& file,
                                            const std::string& shown_name) {
    Beginning beginning;
    CheckedParser parser(&beginning);
    XML_SetXmlDeclHandler(parser.expat(), note_declaration);
    XML_SetStartDoctypeDeclHandler(parser.expat(), note_doctype);
    XML_SetSkippedEntityHandler(parser.expat(), note_parameter_entity);
    XML_SetStartElementHandler(parser.expat(), stop_at_element);
    Done problem = parser.parse(file, shown_name);
    if (problem && problem->cause != Cause::document) return *problem;
    if (problem) return DocumentLosses{};
    bool looks_at_characters = false;
    if (beginning.is_latin_1) {
        const Result<bool> has_references = has_character_references(file);
        if (!has_references) return has_references.problem();
        looks_at_characters = *has_references;
    }
    if (!beginning.may_refer && !looks_at_characters) return DocumentLosses{};
    LossSearch search(beginning, looks_at_characters);
    problem = search.run(file, shown_name);
    if (problem && problem->cause != Cause::document) return *problem;
    return std::move(search.found());
}

}  // namespace conversion
