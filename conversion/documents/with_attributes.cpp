// A document whose attributes are elements: a private copy, rewritten from what Expat reads.

#include <algorithm>
#include <string_view>
#include <vector>

#include "conversion/documents/attribute_elements.h"
#include "conversion/documents/checked_parser.h"
#include "conversion/documents/document_source.h"
#include "conversion/formats/byte_sink.h"
#include "host/utf8.h"

namespace conversion {

namespace {

// One run over a document.
class AttributesCopy {
  public:
    AttributesCopy(const AttributeRule& rule, ByteSink& to)
        : elements_(rule), to_(to), parser_(this) {
        XML_SetXmlDeclHandler(parser_.expat(), &declare);
        XML_SetElementHandler(parser_.expat(), &start, &finish);
        XML_SetCharacterDataHandler(parser_.expat(), &text);
        XML_SetSkippedEntityHandler(parser_.expat(), &skip_entity);
    }

    const LeftOut& left_out() const { return left_out_; }

    Done run(const DocumentSource& document) {
        if (Done problem = parser_.parse(document.file(), document.name())) return problem;
        return write_out();
    }

  private:
    static constexpr std::size_t PIECE = std::size_t{1} << 16;

    static AttributesCopy& of(void* parser) {
        return *static_cast<AttributesCopy*>(CheckedParser::owner(parser));
    }
    template <class Work>
    static void guarded(void* parser, const Work& work) {
        CheckedParser::guarded(parser, [&] {
            AttributesCopy& self = of(parser);
            work(self);
            if (self.pending_.size() < PIECE) return;
            if (Done problem = self.write_out()) self.parser_.stop(*std::move(problem));
        });
    }

    static void XMLCALL declare(void* parser, const XML_Char*, const XML_Char* encoding, int) {
        guarded(parser, [encoding](AttributesCopy& self) {
            if (encoding == nullptr || !names_latin_1(encoding)) return;
            self.is_latin_1_ = true;
            self.pending_ += "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>";
        });
    }
    static void XMLCALL start(void* parser, const XML_Char* name, const XML_Char** attributes) {
        guarded(parser, [=](AttributesCopy& self) { self.begin(name, attributes); });
    }
    static void XMLCALL finish(void* parser, const XML_Char* name) {
        guarded(parser, [name](AttributesCopy& self) {
            self.end_text();
            self.tag("</", name);
            self.add(self.elements_.end());
        });
    }
    static void XMLCALL text(void* parser, const XML_Char* text, int length) {
        guarded(parser, [=](AttributesCopy& self) {
            const std::string_view piece(text, static_cast<std::size_t>(length));
            if (self.elements_.begins_text(piece)) self.tag("<", self.elements_.text_element());
            self.escape(piece, "<>&\r");
        });
    }
    static void XMLCALL skip_entity(void* parser, const XML_Char* name, int is_parameter) {
        if (is_parameter != 0) return;
        guarded(parser, [name](AttributesCopy& self) {
            self.stop("the entity " + std::string(name) + " is not declared in the document itself",
                      "replace entities first, as `xmllint --noent` does");
        });
    }

    void end_text() {
        if (elements_.ends_text()) tag("</", elements_.text_element());
    }

    void begin(const XML_Char* name, const XML_Char** attributes) {
        end_text();
        const std::vector<AttributeElements::Made>& made = elements_.begin(name, attributes);
        const bool is_document_element = depth_++ == 0;
        pending_ += "<";
        put(name);
        for (const XML_Char** at = attributes; *at != nullptr; at += 2) {
            if (is_data_attribute(at[0])) {
                if (is_document_element) leave_out();
                continue;
            }
            pending_ += " ";
            put(at[0]);
            pending_ += "=\"";
            escape(at[1], "<>&\"\r\n\t");
            pending_ += "\"";
        }
        pending_ += ">";
        add(made);
    }

    void leave_out() {
        if (left_out_.attributes++ == 0) left_out_.first = parser_.place();
    }

    void add(const std::vector<AttributeElements::Made>& made) {
        for (const AttributeElements::Made& element : made) {
            tag("<", element.name);
            escape(element.value, "<>&\r");
            tag("</", element.name);
        }
        if (!elements_.is_too_much()) return;
        stop("too many elements of one name lack an attribute that others have", "");
    }

    void tag(const char* begin, std::string_view name) {
        pending_ += begin;
        put(name);
        pending_ += ">";
    }

    void escape(std::string_view text, std::string_view special) {
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find_first_of(special, at), text.size());
            put(text.substr(at, end - at));
            if (end < text.size()) reference(static_cast<unsigned char>(text[end]));
            at = end + 1;
        }
    }
    void reference(char32_t character) {
        pending_ += "&#" + std::to_string(static_cast<std::uint32_t>(character)) + ";";
    }

    // Whole characters of UTF-8, in the encoding of the copy.
    void put(std::string_view text) {
        if (!is_latin_1_) {
            pending_ += text;
            return;
        }
        while (!text.empty()) {
            const utf8::Character character = utf8::first_character(text);
            text.remove_prefix(character.length);
            if (character.code < 0x100) {
                pending_ += static_cast<char>(static_cast<unsigned char>(character.code));
            } else {
                reference(character.code);
            }
        }
    }

    Done write_out() {
        Done problem = to_.write(pending_.data(), pending_.size());
        pending_.clear();
        return problem;
    }

    void stop(std::string what, std::string remedy) {
        parser_.stop({Cause::document, parser_.place(), std::move(what), std::move(remedy)});
    }

    AttributeElements elements_;
    ByteSink& to_;
    CheckedParser parser_;
    std::string pending_;
    LeftOut left_out_;
    std::size_t depth_ = 0;
    bool is_latin_1_ = false;
};

}  // namespace

Result<DocumentSource> DocumentSource::with_attributes_as_elements(
    const AttributeRule& rule) const {
    Result<DocumentSource> rewritten = empty_copy(name_);
    if (!rewritten) return rewritten;
    Result<ByteSink> sink =
        ByteSink::open(rewritten->file(), "the copy of " + name_ + " for its attributes");
    if (!sink) return sink.problem();
    AttributesCopy copy(rule, *sink);
    if (Done problem = copy.run(*this)) return *problem;
    if (Done problem = sink->close()) return *problem;
    rewritten->counted_ = counted_.value_or(copy.left_out());
    rewritten->original_ = file_;
    rewritten->attributes_ = rule;
    return rewritten;
}

}  // namespace conversion
