#include "conversion/samples/document_profile.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "conversion/documents/attribute_elements.h"
#include "conversion/documents/checked_parser.h"
#include "host/utf8.h"

namespace conversion {

namespace {

constexpr int MOST_DIGITS = 18;  // in one number; every COBOL takes as many

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_white(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool begins_with_date(std::string_view text) {
    constexpr std::string_view FORM = "dddd-dd-dd";
    if (text.size() < FORM.size()) return false;
    for (std::size_t i = 0; i < FORM.size(); ++i) {
        if (FORM[i] == 'd' ? !is_digit(text[i]) : text[i] != FORM[i]) return false;
    }
    return text.size() == FORM.size() || !is_digit(text[FORM.size()]);
}

}  // namespace

void TextProfile::add(std::string_view head, std::uint64_t bytes, std::uint64_t characters) {
    if (bytes == 0) return;
    const bool is_whole = bytes == head.size();
    are_dates_ = are_dates_ && is_whole && begins_with_date(head);
    are_numbers_ = are_numbers_ && is_whole && add_number(head);
    ++texts_;
    most_bytes_ = std::max(most_bytes_, bytes);
    most_characters_ = std::max(most_characters_, characters);
}

// False when the text is not a number that a field gives back.
bool TextProfile::add_number(std::string_view text) {
    const bool is_below_zero = text.starts_with('-');
    if (is_below_zero) text.remove_prefix(1);
    const std::size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    const std::string_view part = point == text.npos ? "" : text.substr(point + 1);
    const auto are_digits = [](std::string_view digits) {
        return std::all_of(digits.begin(), digits.end(), is_digit);
    };
    const bool is_padded = whole.size() > 1 && whole.starts_with('0');
    const bool is_cut = whole.empty() || (point != text.npos && part.empty());
    if (!are_digits(whole) || !are_digits(part) || is_padded || is_cut) return false;
    const bool is_zero = text.find_first_not_of("0.") == text.npos;
    if (is_below_zero && is_zero) return false;
    const auto decimals = static_cast<int>(part.size());
    has_minus_ = has_minus_ || is_below_zero;
    has_zero_ = has_zero_ || is_zero;
    whole_digits_ = std::max(whole_digits_, static_cast<int>(whole.size()));
    least_decimals_ = texts_ == 0 ? decimals : std::min(least_decimals_, decimals);
    most_decimals_ = std::max(most_decimals_, decimals);
    return true;
}

bool TextProfile::is_number() const {
    return texts_ > 0 && are_numbers_ && whole_digits_ + most_decimals_ <= MOST_DIGITS;
}

std::string path_of(const ElementProfile& element) {
    std::string path = element.name;
    for (const ElementProfile* at = element.parent; at != nullptr && at->parent != nullptr;
         at = at->parent) {
        path.insert(0, at->name + "/");
    }
    return path;
}

// One document, as Expat tells of it.
class ProfileReader {
  public:
    explicit ProfileReader(DocumentProfile& profile) : profile_(profile), parser_(this) {
        XML_SetElementHandler(parser_.expat(), &start, &finish);
        XML_SetCharacterDataHandler(parser_.expat(), &text);
    }

    Done read(const std::string& file, const std::string& shown_name) {
        return parser_.parse(file, shown_name);
    }

  private:
    // An element that is open, and the text in it so far.
    struct Open {
        ElementProfile* element;
        std::list<ElementProfile>::iterator next;  // where a new path among its children goes
        bool has_children = false;
        std::string head{};  // the text's first bytes, without white space in front
        std::uint64_t bytes = 0;
        std::uint64_t characters = 0;
        std::uint64_t trimmed_bytes = 0;  // without white space at the end
        std::uint64_t trimmed_characters = 0;
    };

    static ProfileReader& of(void* parser) {
        return *static_cast<ProfileReader*>(CheckedParser::owner(parser));
    }
    static void XMLCALL start(void* user, const XML_Char* name, const XML_Char** attributes);
    static void XMLCALL finish(void* user, const XML_Char*);
    static void XMLCALL text(void* user, const XML_Char* text, int length);
    void open(const std::string& name);
    void open_root(const std::string& name);
    void note_prefixes(const XML_Char** attributes);
    void note_attribute(const std::string& name, std::string_view value);
    bool is_stopped_by_paths(const ElementProfile* found);
    ElementProfile* child(Open& around, const std::string& name);
    void close();
    void add_text(Open& open, std::string_view text) const;
    void stop(std::string what, std::string remedy) {
        parser_.stop({Cause::document, parser_.place(), std::move(what), std::move(remedy)});
    }

    DocumentProfile& profile_;
    CheckedParser parser_;
    std::vector<Open> open_;
};

void XMLCALL ProfileReader::start(void* user, const XML_Char* name, const XML_Char** attributes) {
    CheckedParser::guarded(user, [=] {
        ProfileReader& self = of(user);
        self.open(name);
        if (self.parser_.is_stopped()) return;
        if (self.open_.size() == 1) self.note_prefixes(attributes);
        for (const XML_Char** at = attributes; *at != nullptr; at += 2) {
            if (is_data_attribute(*at)) self.note_attribute(at[0], at[1]);
        }
    });
}

void XMLCALL ProfileReader::finish(void* user, const XML_Char*) {
    CheckedParser::guarded(user, [user] { of(user).close(); });
}

void XMLCALL ProfileReader::text(void* user, const XML_Char* text, int length) {
    CheckedParser::guarded(user, [=] {
        ProfileReader& self = of(user);
        self.add_text(self.open_.back(), {text, static_cast<std::size_t>(length)});
    });
}

void ProfileReader::open_root(const std::string& name) {
    ElementProfile& root = profile_.root_;
    if (root.count > 0 && root.name != name) {
        return stop("the document element is " + name + ", and that of another sample " + root.name,
                    "give samples of one kind of document");
    }
    root.name = name;
    ++root.count;
    open_.push_back({&root, root.children.begin()});
}

void ProfileReader::note_prefixes(const XML_Char** attributes) {
    for (; *attributes != nullptr; attributes += 2) {
        const std::string_view name = attributes[0];
        if (name == "xmlns") profile_.prefixes_.emplace_back("", attributes[1]);
        if (name.starts_with("xmlns:")) {
            profile_.prefixes_.emplace_back(name.substr(name.find(':') + 1), attributes[1]);
        }
    }
}

void ProfileReader::open(const std::string& name) {
    if (open_.empty()) return open_root(name);
    if (open_.size() >= DocumentProfile::MOST_DEPTH) {
        return stop("elements nest deeper than " + std::to_string(DocumentProfile::MOST_DEPTH),
                    "records have no such depth");
    }
    Open& around = open_.back();
    around.has_children = true;
    ElementProfile* const element = child(around, name);
    if (element == nullptr) return;
    if (element->opened_in != around.element->count) {
        element->opened_in = around.element->count;
        element->here = 0;
        ++element->parents;
    }
    ++element->count;
    element->most = std::max(element->most, ++element->here);
    open_.push_back({element, element->children.begin()});
}

ElementProfile* DocumentProfile::child(ElementProfile& parent, const std::string& name,
                                       std::list<ElementProfile>::iterator& next) {
    const auto found = parent.by_name.find(name);
    if (found != parent.by_name.end()) {
        next = std::next(found->second->self);
        return found->second;
    }
    if (paths_ >= MOST_PATHS) return nullptr;
    ++paths_;
    const auto made = parent.children.insert(next, ElementProfile{name, &parent});
    made->self = made;
    parent.by_name.emplace(name, &*made);
    return &*made;
}

void DocumentProfile::remove(ElementProfile& parent, ElementProfile& child) {
    parent.by_name.erase(child.name);
    parent.children.erase(child.self);
}

bool DocumentProfile::has_attribute(const ElementProfile& of, const std::string& name) {
    const std::string element = attribute_element_name(of.name, name);
    return std::any_of(of.attribute_values.begin(), of.attribute_values.end(),
                       [&element](const ElementProfile& one) { return one.name == element; });
}

ElementProfile* DocumentProfile::attribute(ElementProfile& of, const std::string& name) {
    const std::string element = attribute_element_name(of.name, name);
    for (ElementProfile& known : of.attribute_values) {
        if (known.name == element) return &known;
    }
    if (paths_ >= MOST_PATHS || of.attribute_values.size() >= MOST_ATTRIBUTES) return nullptr;
    ++paths_;
    of.attribute_values.push_back(ElementProfile{element, &of});
    of.attribute_values.back().self = std::prev(of.attribute_values.end());
    return &of.attribute_values.back();
}

bool ProfileReader::is_stopped_by_paths(const ElementProfile* found) {
    if (found != nullptr) return false;
    stop("there are more than " + std::to_string(DocumentProfile::MOST_PATHS) +
             " different elements, or more than " +
             std::to_string(DocumentProfile::MOST_ATTRIBUTES) + " attributes of one",
         "no record has so many fields");
    return true;
}

// A path that is new comes after that of the element before.
ElementProfile* ProfileReader::child(Open& around, const std::string& name) {
    ElementProfile* const child = profile_.child(*around.element, name, around.next);
    return is_stopped_by_paths(child) ? nullptr : child;
}

void ProfileReader::note_attribute(const std::string& name, std::string_view value) {
    if (parser_.is_stopped()) return;
    ElementProfile& element = *open_.back().element;
    if (element.attributes.line == 0) element.attributes = parser_.place();
    if (open_.size() < 2 || !profile_.wants_attributes_) return;
    ElementProfile* const attribute = profile_.attribute(element, name);
    if (is_stopped_by_paths(attribute)) return;
    if (attribute->attributes.line == 0) attribute->attributes = parser_.place();
    const std::uint64_t around = element.parent->count;
    if (attribute->opened_in != around) ++attribute->parents;
    attribute->opened_in = around;
    attribute->most = std::max(attribute->most, element.here);
    ++attribute->count;
    Open text{attribute, {}};
    add_text(text, value);
    attribute->text.add(std::string_view(text.head).substr(0, text.trimmed_bytes),
                        text.trimmed_bytes, text.trimmed_characters);
}

void ProfileReader::add_text(Open& open, std::string_view text) const {
    for (const char c : text) {
        if (open.bytes == 0 && is_white(c)) continue;
        ++open.bytes;
        if (!utf8::continues(c)) ++open.characters;
        if (open.head.size() < TextProfile::HEAD) open.head += c;
        if (is_white(c)) continue;
        open.trimmed_bytes = open.bytes;
        open.trimmed_characters = open.characters;
    }
}

void ProfileReader::close() {
    Open& open = open_.back();
    if (open.has_children && open.trimmed_bytes > 0) {
        if (open.element->mixed.line == 0) open.element->mixed = parser_.place();
    } else {
        const std::string_view head(open.head);
        open.element->text.add(head.substr(0, open.trimmed_bytes), open.trimmed_bytes,
                               open.trimmed_characters);
    }
    open_.pop_back();
}

Done DocumentProfile::add(const std::string& file, const std::string& shown_name) {
    return ProfileReader(*this).read(file, shown_name);
}

}  // namespace conversion
