#include "conversion/schemas/document_type.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "conversion/documents/attribute_elements.h"
#include "conversion/documents/checked_parser.h"
#include "conversion/formats/byte_source.h"
#include "conversion/samples/declaration.h"
#include "conversion/schemas/local_files.h"
#include "platform/files.h"

namespace conversion {

namespace {

constexpr int MOST_NESTED = 256;         // groups of a content model
constexpr std::size_t MOST_FILES = 100;  // of a document type
constexpr std::size_t MOST_ELEMENTS = 100'000;
constexpr std::size_t MOST_ATTRIBUTES = 1000;  // of an element
constexpr std::size_t PIECE = std::size_t{1} << 16;

bool are_one(const std::string& file, const std::string& other) {
    const auto state = platform::state_of(file);
    const auto other_state = platform::state_of(other);
    return state && other_state && state->identity == other_state->identity;
}

}  // namespace

class DocumentTypeReader {
  public:
    DocumentTypeReader(DocumentType& type, std::string foreign)
        : type_(type), foreign_(std::move(foreign)), parser_(this) {
        XML_SetElementDeclHandler(parser_.expat(), &declare_element);
        XML_SetAttlistDeclHandler(parser_.expat(), &declare_attribute);
        XML_SetStartElementHandler(parser_.expat(), &stop_at_element);
        XML_SetExternalEntityRefHandler(parser_.expat(), &read_external);
        XML_SetParamEntityParsing(parser_.expat(), XML_PARAM_ENTITY_PARSING_ALWAYS);
        if (!foreign_.empty()) XML_UseForeignDTD(parser_.expat(), XML_TRUE);
    }

    Done read(const std::string& file, const std::string& shown_name) {
        folder_of_ = shown_name;
        files_.push_back({file, shown_name});
        Done problem = parser_.parse(file, shown_name);
        // A part that was not well-formed, as its own parser says.
        if (external_problem_) return external_problem_;
        if (!problem && !foreign_.empty() && !counts_foreign_) note_foreign();
        return problem;
    }

  private:
    struct File {
        std::string file;
        std::string shown_name;
    };

    void note_foreign() {
        Place place;
        place.file = files_.back().shown_name;
        type_.not_read_.push_back(
            {Cause::document, std::move(place),
             "the document names another DTD, and " + foreign_ + " does not count for it",
             "give it beside documents that name none"});
    }

    static DocumentTypeReader& of(void* parser) {
        return *static_cast<DocumentTypeReader*>(CheckedParser::owner(parser));
    }

    static void XMLCALL stop_at_element(void* parser, const XML_Char*, const XML_Char**) {
        CheckedParser::of(parser).stop();
    }
    static void XMLCALL declare_element(void* parser, const XML_Char* name, XML_Content* model) {
        CheckedParser::guarded(parser, [=] { of(parser).add(parser, name, *model); });
        XML_FreeContentModel(of(parser).parser_.expat(), model);
    }
    static void XMLCALL declare_attribute(void* parser, const XML_Char* element,
                                          const XML_Char* name, const XML_Char* type,
                                          const XML_Char* value, int is_required) {
        CheckedParser::guarded(parser, [=] {
            if (!is_data_attribute(name)) return;
            DocumentTypeReader& self = of(parser);
            DeclaredElement* const declared = self.element(parser, element);
            if (declared == nullptr || declared->attributes.size() >= MOST_ATTRIBUTES) return;
            const auto is_same = [name](const auto& one) { return one.name == name; };
            // The first declaration binds.
            if (std::any_of(declared->attributes.begin(), declared->attributes.end(), is_same)) {
                return;
            }
            // With a value, #REQUIRED is #FIXED.
            declared->attributes.push_back(
                {name, values_of(type), is_required != 0 || value != nullptr, self.place(parser)});
        });
    }
    static int XMLCALL read_external(XML_Parser parser, const XML_Char* context, const XML_Char*,
                                     const XML_Char* system, const XML_Char*) {
        // Entities of the document's content are left out, as where documents are read.
        if (context != nullptr) return XML_STATUS_OK;
        int status = XML_STATUS_ERROR;
        CheckedParser::guarded(parser, [&] {
            status = of(parser).read_part(parser, system) ? XML_STATUS_OK : XML_STATUS_ERROR;
        });
        return status;
    }

    // "(a|b)" and "NOTATION(a|b)" are enumerations.
    static std::vector<std::string> values_of(const std::string& type) {
        std::vector<std::string> values;
        const std::size_t begin = type.find('(');
        if (begin == type.npos) return values;
        values.emplace_back();
        for (const char c : type.substr(begin + 1)) {
            if (c == '|') {
                values.emplace_back();
            } else if (c != ')') {
                values.back() += c;
            }
        }
        return values;
    }

    Place place(void* parser) const {
        auto* const expat = static_cast<XML_Parser>(parser);
        Place place;
        place.file = files_.back().shown_name;
        place.line = line_of_event(expat);
        place.column = column_of_event(expat);
        return place;
    }

    DeclaredElement* element(void* parser, const std::string& name) {
        if (type_.elements_.size() >= MOST_ELEMENTS && type_.find(name) == nullptr) {
            parser_.stop(Problem{
                Cause::document, place(parser),
                "more than " + std::to_string(MOST_ELEMENTS) + " elements are declared", ""});
            return nullptr;
        }
        return &type_.elements_[name];
    }

    void add(void* parser, const std::string& name, const XML_Content& model) {
        using Kind = DeclaredElement::Kind;
        DeclaredElement* const declared = element(parser, name);
        if (declared == nullptr || declared->kind != Kind::undeclared) return;
        declared->place = place(parser);
        switch (model.type) {
            case XML_CTYPE_EMPTY:
                declared->kind = Kind::empty;
                return;
            case XML_CTYPE_ANY:
                declared->kind = Kind::any;
                return;
            case XML_CTYPE_MIXED:
                declared->kind = model.numchildren == 0 ? Kind::text : Kind::mixed;
                break;
            default:
                declared->kind = Kind::elements;
        }
        if (!collect(model, declared->elements, 0)) {
            parser_.stop(Problem{Cause::document, place(parser),
                                 "the content model of " + name + " nests deeper than " +
                                     std::to_string(MOST_NESTED) + " groups",
                                 ""});
        }
    }

    // False: it nests too deep.
    static bool collect(const XML_Content& model, Particles& particles, int depth) {
        if (depth > MOST_NESTED) return false;
        if (model.type == XML_CTYPE_NAME) {
            particles.add({model.name, nullptr, nullptr, 1, 1}, false);
        }
        const bool is_choice = model.type == XML_CTYPE_CHOICE || model.type == XML_CTYPE_MIXED;
        for (unsigned i = 0; i < model.numchildren; ++i) {
            Particles inner;
            if (!collect(model.children[i], inner, depth + 1)) return false;
            particles.add(inner, is_choice);
        }
        const bool is_certain = !is_choice || model.numchildren < 2;
        const bool may_miss = model.quant == XML_CQUANT_OPT || model.quant == XML_CQUANT_REP;
        const bool may_repeat = model.quant == XML_CQUANT_REP || model.quant == XML_CQUANT_PLUS;
        particles.repeat(is_certain && !may_miss ? 1 : 0, may_repeat ? Declaration::UNBOUNDED : 1);
        return true;
    }

    // The external subset, or a parameter entity. False: it is not well-formed.
    bool read_part(XML_Parser parser, const XML_Char* system) {
        const std::string location = system == nullptr ? foreign_ : system;
        if (system == nullptr) counts_foreign_ = true;
        Result<std::string> found =
            local_file(location, system == nullptr ? std::string() : folder_of_);
        if (found && parts_ >= MOST_FILES) {
            found = Problem{Cause::document, {}, "there are too many parts", ""};
        }
        if (!found) {
            Problem problem = found.problem();
            problem.what =
                "a part of the document type, " + location + ", was not read: " + problem.what;
            problem.place = place(parser);
            type_.not_read_.push_back(std::move(problem));
            return true;
        }
        if (!counts_foreign_) counts_foreign_ = are_one(*found, foreign_);
        ++parts_;
        type_.files_.insert(*found);
        files_.push_back({*found, *found});
        const std::string folder = std::exchange(folder_of_, *found);
        const bool is_read = parse_part(parser);
        folder_of_ = folder;
        files_.pop_back();
        return is_read;
    }

    bool parse_part(XML_Parser around) {
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> part(
            XML_ExternalEntityParserCreate(around, nullptr, nullptr), &XML_ParserFree);
        if (!part) throw std::bad_alloc();
        Result<ByteSource> source = ByteSource::open(files_.back().file);
        if (!source) return note(source.problem());
        std::vector<std::uint8_t> piece(PIECE);
        for (bool is_last = false; !is_last;) {
            const Result<std::size_t> count = source->read(piece.data(), piece.size());
            if (!count) return note(count.problem());
            is_last = *count < piece.size();
            const XML_Status status =
                XML_Parse(part.get(), reinterpret_cast<const char*>(piece.data()),
                          static_cast<int>(*count), is_last ? XML_TRUE : XML_FALSE);
            if (parser_.is_stopped()) return false;
            if (status == XML_STATUS_OK) continue;
            const XML_Error error = XML_GetErrorCode(part.get());
            if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
            return note({Cause::document, place(part.get()), XML_ErrorString(error), ""});
        }
        return true;
    }

    // The innermost problem is the one that counts.
    bool note(Problem problem) {
        if (!external_problem_) external_problem_ = std::move(problem);
        return false;
    }

    DocumentType& type_;
    std::string foreign_;
    CheckedParser parser_;
    std::string folder_of_;    // the file, or address, from which locations are seen
    std::vector<File> files_;  // each named by the one before
    std::size_t parts_ = 0;    // of the document type, that were read
    bool counts_foreign_ = false;
    Done external_problem_;
};

Done DocumentType::add(const std::string& file, const std::string& shown_name,
                       const std::string& foreign) {
    return DocumentTypeReader(*this, foreign).read(file, shown_name);
}

const DeclaredElement* DocumentType::find(const std::string& name) const {
    const auto found = elements_.find(name);
    return found == elements_.end() ? nullptr : &found->second;
}

}  // namespace conversion
