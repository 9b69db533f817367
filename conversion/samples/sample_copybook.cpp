#include "conversion/samples/sample_copybook.h"

#include <algorithm>
#include <cstdint>
#include <map>

#include "conversion/samples/cobol_names.h"

namespace conversion {

namespace {

constexpr int DEEPEST_LEVEL = 49;
constexpr std::size_t MARGIN = 72;                          // the last column of a line
constexpr std::size_t LONGEST_NAME = 52;                    // what a directive's line holds
constexpr std::uint64_t MOST_OCCURS = 32767;                // of a table
constexpr std::uint64_t MOST_FIELDS = 1'000'000;            // with every occurrence counted
constexpr std::uint64_t MOST_BYTES = 256U * 1024U * 1024U;  // of a record

bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool is_part_name(std::string_view name) {
    if (name.empty() || !is_letter(name[0])) return false;
    return std::all_of(name.begin(), name.end(), [](char c) {
        return is_letter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

// Whether an item can be given this name in XML.
bool can_be_given(std::string_view name) {
    if (name.size() > LONGEST_NAME) return false;
    std::string start(name.substr(0, 3));
    for (char& c : start) c = static_cast<char>(c | 0x20);
    if (start == "xml") return false;
    const std::size_t colon = name.find(':');
    if (colon == name.npos) return is_part_name(name);
    return is_part_name(name.substr(0, colon)) && is_part_name(name.substr(colon + 1));
}

// The element name that an item without a directive has.
std::string plain_name(std::string cobol_name, bool is_exact) {
    if (is_exact) return cobol_name;
    for (char& c : cobol_name) {
        if (c == '-') c = '_';
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return cobol_name;
}

std::string level_text(int level) {
    return (level < 10 ? "0" : "") + std::to_string(level);
}

std::string counted(std::uint64_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

class CopybookMaker {
  public:
    CopybookMaker(const DocumentProfile& profile, const CopybookWishes& wishes)
        : root_(profile.root()), wishes_(wishes) {}

    Result<SampleCopybook> make();

  private:
    using Kinds = std::vector<const ElementProfile*>;
    struct Size {
        std::uint64_t bytes = 0;
        std::uint64_t fields = 0;
    };

    Kinds kinds();
    bool is_usable(const ElementProfile& element, int level);
    bool has_fields(const ElementProfile& element, int level);
    void collect_names(const ElementProfile& element, int level);
    void say_losses(const ElementProfile& element);
    void say_ambiguous();
    void lose(const ElementProfile& element, Place place, std::string what, std::string remedy);

    void begin_text();
    void add_kind(const ElementProfile& kind, bool is_one_of_several);
    void add_selector(const std::string& name, const std::string& record);
    Size add_item(const ElementProfile& element, int level, const std::string& around);
    Size add_items(const ElementProfile& element, int level, const std::string& name);
    void add_seen(const ElementProfile& element);
    void add_name(const std::string& cobol_name, const std::string& element);
    void add_entry(int indent, const std::string& entry, const std::vector<std::string>& clauses);
    void add_line(int indent, const std::string& text);
    std::string picture(const TextProfile& text, Size& size) const;
    std::uint64_t grown(std::uint64_t seen) const;

    const ElementProfile& root_;
    const CopybookWishes& wishes_;
    SampleCopybook result_;
    CobolNames names_;
    // Where each name stands: fields and groups.
    struct Use {
        const ElementProfile* first;
        std::size_t fields = 0;
        std::size_t groups = 0;
        bool is_optional = false;  // one of the fields is missing somewhere
    };
    std::map<std::string, Use> uses_;
    std::size_t selector_length_ = 0;
    Size largest_;
};

// Levels 1, 5, 10 ... 45, then one by one.
int level_below(int level) {
    if (level == 1) return 5;
    return level < 45 ? level + 5 : level + 1;
}

int indent_of(int level) {
    const int steps = level == 1 ? 0 : level <= 45 ? level / 5 : 9 + level - 45;
    return 7 + std::min(steps, 6) * 4;
}

std::uint64_t CopybookMaker::grown(std::uint64_t seen) const {
    const auto percent = static_cast<std::uint64_t>(100 + wishes_.grow);
    return (seen * percent + 99) / 100;
}

void CopybookMaker::lose(const ElementProfile& element, Place place, std::string what,
                         std::string remedy) {
    result_.losses.push_back({Cause::document, std::move(place),
                              path_of(element) + ": " + std::move(what), std::move(remedy)});
}

// What can have a place in a record; what cannot is said once.
bool CopybookMaker::is_usable(const ElementProfile& element, int level) {
    return can_be_given(element.name) && level <= DEEPEST_LEVEL;
}

bool CopybookMaker::has_fields(const ElementProfile& element, int level) {
    if (!is_usable(element, level)) return false;
    if (element.children.empty()) return level > 1;
    return std::any_of(element.children.begin(), element.children.end(),
                       [&](const auto& child) { return has_fields(child, level_below(level)); });
}

void CopybookMaker::collect_names(const ElementProfile& element, int level) {
    say_losses(element);
    if (!can_be_given(element.name)) {
        return lose(element, {}, "cannot be read: copybooks cannot give this name to a field",
                    "give elements names of letters, digits, _ - . and at most 52 characters");
    }
    if (level > DEEPEST_LEVEL) {
        return lose(element, {}, "cannot be read: it lies deeper than COBOL's levels go",
                    "make records of elements further down");
    }
    if (element.name.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ-") != std::string::npos) {
        result_.needs_exact_names = true;
    }
    Use& use = uses_.try_emplace(element.name, Use{&element}).first->second;
    ++(element.children.empty() ? use.fields : use.groups);
    if (element.parent != nullptr && element.parents < element.parent->count) {
        use.is_optional = true;
    }
    for (const ElementProfile& child : element.children) {
        collect_names(child, level_below(level));
    }
}

void CopybookMaker::say_losses(const ElementProfile& element) {
    if (element.attributes.line > 0) {
        lose(element, element.attributes, "attributes cannot be read into fields", "");
    }
    if (element.mixed.line > 0) {
        lose(element, element.mixed, "the text beside elements cannot be read into a field", "");
    }
    if (element.text.texts() > 0 && !element.children.empty() && element.mixed.line == 0) {
        lose(element, {}, "some hold a text, others elements; the texts cannot be read", "");
    }
}

// The module takes the only element of a name for the first field of that name.
void CopybookMaker::say_ambiguous() {
    for (const auto& [name, use] : uses_) {
        if (use.fields < 2 || !use.is_optional) continue;
        lose(*use.first, {},
             "elements called " + name +
                 " stand in several places, and some records lack one; "
                 "where only one is there, it is taken for the first",
             "check these fields in such records");
    }
}

CopybookMaker::Kinds CopybookMaker::kinds() {
    Kinds result;
    if (root_.attributes.line > 0) {
        lose(root_, root_.attributes, "attributes of the document element cannot be read", "");
    }
    for (const ElementProfile& kind : root_.children) {
        if (!has_fields(kind, 1)) {
            say_losses(kind);
            const bool is_text = kind.text.texts() > 0;
            if (is_text || !kind.children.empty()) {
                lose(kind, {},
                     is_text ? "cannot be read: its text is not in an element below it"
                             : "cannot be read: nothing in it can be a field",
                     "");
            }
            continue;
        }
        collect_names(kind, 1);
        selector_length_ = std::max(selector_length_, kind.name.size());
        result.push_back(&kind);
    }
    say_ambiguous();
    return result;
}

void CopybookMaker::add_line(int indent, const std::string& text) {
    result_.text += std::string(static_cast<std::size_t>(indent), ' ') + text + "\n";
}

// An entry, on as many lines as it takes.
void CopybookMaker::add_entry(int indent, const std::string& entry,
                              const std::vector<std::string>& clauses) {
    std::string line = entry;
    for (const std::string& clause : clauses) {
        if (static_cast<std::size_t>(indent) + line.size() + clause.size() + 2 > MARGIN) {
            add_line(indent, line);
            line = "   ";
        }
        line += " " + clause;
    }
    add_line(indent, line + ".");
}

void CopybookMaker::begin_text() {
    add_line(6, "*> Made by sxml copybook from " + wishes_.made_from + ".");
    if (result_.needs_exact_names) {
        add_line(6, "*> Read with --set 4GL_COLUMN_CASE=2 (names have capitals or");
        add_line(6, "*> hyphens).");
    }
}

void CopybookMaker::add_name(const std::string& cobol_name, const std::string& element) {
    const auto found = uses_.find(element);
    const bool is_shared = found != uses_.end() && found->second.groups > 0 &&
                           found->second.groups + found->second.fields > 1;
    if (!is_shared && plain_name(cobol_name, result_.needs_exact_names) == element) return;
    add_line(6, "*> sxml: name " + element);
}

// What was seen, as a comment.
void CopybookMaker::add_seen(const ElementProfile& element) {
    std::string seen;
    const TextProfile& text = element.text;
    if (element.children.empty()) {
        seen = text.texts() == 0 ? "always empty"
                                 : "longest " + counted(text.most_characters(), "character");
        if (text.most_bytes() != text.most_characters()) {
            seen += ", " + counted(text.most_bytes(), "byte");
        }
        if (text.is_number() && text.has_mixed_decimals()) seen += ", decimals vary";
        if (text.is_date()) seen += ", dates";
        if (text.texts() > 0 && text.texts() < element.count) {
            seen += ", " + counted(element.count - text.texts(), "time") + " empty";
        }
    }
    const auto add = [&seen](const std::string& more) {
        seen += (seen.empty() ? "" : "; ") + more;
    };
    if (element.most > 1) add("up to " + std::to_string(element.most) + " times");
    if (element.parents < element.parent->count) {
        add("in " + std::to_string(element.parents) + " of " +
            std::to_string(element.parent->count));
    }
    if (!seen.empty()) add_line(6, "*>   " + seen);
}

std::string CopybookMaker::picture(const TextProfile& text, Size& size) const {
    size.fields = 1;
    if (!text.is_number()) {
        size.bytes = text.is_date() ? text.most_bytes() : grown(text.most_bytes());
        size.bytes = std::max<std::uint64_t>(size.bytes, 1);
        return "PIC X(" + std::to_string(size.bytes) + ")";
    }
    const auto decimals = static_cast<std::uint64_t>(text.decimals());
    const std::uint64_t seen = static_cast<std::uint64_t>(text.whole_digits());
    const std::uint64_t whole = std::min(grown(seen), 18 - decimals);
    size.bytes = whole + decimals;
    std::string result = text.is_negative() ? "PIC S9(" : "PIC 9(";
    result += std::to_string(whole) + ")";
    if (decimals > 0) result += "V9(" + std::to_string(decimals) + ")";
    return result;
}

CopybookMaker::Size CopybookMaker::add_item(const ElementProfile& element, int level,
                                            const std::string& around) {
    if (!has_fields(element, level)) return {};
    const std::string name = names_.add(element.name, around);
    const int indent = indent_of(level);
    add_seen(element);
    add_name(name, element.name);
    std::vector<std::string> clauses;
    Size size;
    if (element.children.empty()) {
        clauses.push_back(picture(element.text, size));
        if (wishes_.is_packed && element.text.is_number()) clauses.emplace_back("COMP-3");
    }
    std::uint64_t occurs = 1;
    if (element.most > 1) {
        occurs = grown(element.most);
        clauses.push_back("OCCURS " + std::to_string(occurs));
    }
    add_entry(indent, level_text(level) + "  " + name, clauses);
    if (!element.children.empty()) size = add_items(element, level, name);
    largest_.fields = std::max(largest_.fields, occurs > MOST_OCCURS ? MOST_FIELDS + 1 : 0);
    occurs = std::min(occurs, MOST_OCCURS);
    return {std::min(size.bytes * occurs, MOST_BYTES + 1),
            std::min(size.fields * occurs, MOST_FIELDS + 1)};
}

CopybookMaker::Size CopybookMaker::add_items(const ElementProfile& element, int level,
                                             const std::string& name) {
    Size all;
    for (const ElementProfile& child : element.children) {
        const Size size = add_item(child, level_below(level), name);
        all = {all.bytes + size.bytes, all.fields + size.fields};
    }
    return all;
}

// The field that says which layout a record is of; reading fills it from the element's name.
void CopybookMaker::add_selector(const std::string& name, const std::string& record) {
    add_line(6, "*> sxml: when " + name + " =");
    add_line(6, "*> sxml:   \"" + record + "\"");
}

void CopybookMaker::add_kind(const ElementProfile& kind, bool is_one_of_several) {
    const std::string name = names_.add(kind.name, "");
    const std::string selector = is_one_of_several ? names_.add(name + "-KIND", "") : "";
    result_.text += "\n";
    add_line(6, "*>   " + counted(kind.count, "record"));
    if (is_one_of_several) add_selector(selector, kind.name);
    add_name(name, kind.name);
    add_entry(indent_of(1), "01  " + name, {});
    if (is_one_of_several) {
        add_line(6, "*> sxml: hide");
        add_entry(indent_of(5), "05  " + selector,
                  {"PIC X(" + std::to_string(selector_length_) + ")"});
    }
    const Size size = add_items(kind, 1, name);
    largest_.bytes = std::max(largest_.bytes, size.bytes);
    largest_.fields = std::max(largest_.fields, size.fields);
}

Result<SampleCopybook> CopybookMaker::make() {
    const Kinds all = kinds();
    if (all.empty()) {
        return Problem{Cause::document,
                       {.file = wishes_.made_from},
                       "no child of the document element holds elements that can be fields",
                       "each child of the document element is taken for a record"};
    }
    begin_text();
    for (const ElementProfile* kind : all) add_kind(*kind, all.size() > 1);
    if (largest_.bytes <= MOST_BYTES && largest_.fields <= MOST_FIELDS) return std::move(result_);
    return Problem{Cause::document,
                   {.file = wishes_.made_from},
                   "a record would have more than " + std::to_string(MOST_FIELDS) +
                       " fields, a table more than " + std::to_string(MOST_OCCURS) +
                       " entries, or be larger than 256 MiB",
                   "each child of the document element is taken for a record; give documents whose "
                   "records are smaller"};
}

}  // namespace

Result<SampleCopybook> copybook_of(const DocumentProfile& profile, const CopybookWishes& wishes) {
    return CopybookMaker(profile, wishes).make();
}

}  // namespace conversion
