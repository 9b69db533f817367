#include "conversion/samples/sample_copybook.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>

#include "conversion/samples/cobol_names.h"
#include "conversion/texts/counted.h"

namespace conversion {

namespace {

constexpr int DEEPEST_LEVEL = 49;
constexpr std::size_t MARGIN = 72;                // the last column of a line
constexpr std::size_t LONGEST_NAME = 52;          // what a directive's line holds
constexpr std::uint64_t MOST_FIELDS = 1'000'000;  // with every occurrence counted
constexpr std::size_t MOST_KINDS = 256;           // of records, which a description can tell apart
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

// Names that descriptions do not tell apart become one.
std::string folded(std::string name) {
    for (char& c : name) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return name;
}

std::string level_text(int level) {
    return (level < 10 ? "0" : "") + std::to_string(level);
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
    void find_twins(const ElementProfile& element);
    void say_twin(const ElementProfile& element);
    void say_name(const ElementProfile& element);
    bool is_usable(const ElementProfile& element, int level) const;
    bool has_fields(const ElementProfile& element, int level) const;
    void collect_names(const ElementProfile& element, int level);
    void say_losses(const ElementProfile& element);
    void say_no_record(const ElementProfile& kind);
    void look_for_records(const ElementProfile& kind);
    void note_tables(const ElementProfile& element);
    std::string path_to(const ElementProfile& element) const;
    Problem problem_of_size() const;
    Problem problem_of_kinds(std::size_t count) const;
    void lose(const ElementProfile& element, Place place, std::string what, std::string remedy);

    void begin_text();
    void add_kind(const ElementProfile& kind, bool is_one_of_several);
    void add_selector(const std::string& name, const std::string& record);
    Size add_item(const ElementProfile& element, int level, const std::string& around);
    Size add_items(const ElementProfile& element, int level, const std::string& name);
    void add_comment(const std::string& text);
    void note_guesses(const ElementProfile& element, const FieldForm& form, const TableForm& table);
    void say_guesses();
    void add_name(const std::string& cobol_name, const std::string& element);
    void add_entry(int indent, const std::string& entry, const std::vector<std::string>& clauses);
    void add_line(int indent, const std::string& text);

    const ElementProfile& root_;
    const CopybookWishes& wishes_;
    SampleCopybook result_;
    CobolNames names_;
    // Where each name stands: fields and groups.
    struct Use {
        std::size_t fields = 0;
        std::size_t groups = 0;
    };
    std::map<std::string, Use> uses_;
    struct Spelling {
        std::string first;
        bool differs = false;  // another one
    };
    std::map<std::string, Spelling> spellings_;  // by folded name
    std::set<const ElementProfile*> twins_;      // left out
    std::size_t selector_length_ = 0;
    Size largest_;
    const ElementProfile* longest_table_ = nullptr;
    std::uint64_t longest_occurs_ = 0;
    std::size_t guesses_ = 0;
    const ElementProfile* first_guess_ = nullptr;
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

void CopybookMaker::lose(const ElementProfile& element, Place place, std::string what,
                         std::string remedy) {
    result_.losses.push_back({Cause::document, std::move(place),
                              path_of(element) + ": " + std::move(what), std::move(remedy)});
}

// What a record can hold; what it cannot is reported once.
bool CopybookMaker::is_usable(const ElementProfile& element, int level) const {
    return can_be_given(element.name) && level <= DEEPEST_LEVEL && twins_.count(&element) == 0;
}

// Elements beside each other of which the names differ in case only: descriptions hold the first.
void CopybookMaker::find_twins(const ElementProfile& element) {
    std::set<std::string> names;
    for (const ElementProfile& child : element.children) {
        if (!names.insert(folded(child.name)).second) twins_.insert(&child);
        find_twins(child);
    }
}

void CopybookMaker::say_twin(const ElementProfile& element) {
    lose(element, {}, "cannot be read: a name beside it differs in case only", "");
}

void CopybookMaker::say_name(const ElementProfile& element) {
    lose(element, {}, "cannot be read: copybooks cannot give this name to a field",
         "give elements names of letters, digits, _ - . and at most 52 characters");
}

bool CopybookMaker::has_fields(const ElementProfile& element, int level) const {
    if (!is_usable(element, level)) return false;
    if (element.children.empty()) return level > 1;
    return std::any_of(element.children.begin(), element.children.end(),
                       [&](const auto& child) { return has_fields(child, level_below(level)); });
}

void CopybookMaker::collect_names(const ElementProfile& element, int level) {
    say_losses(element);
    if (!can_be_given(element.name)) return say_name(element);
    if (twins_.count(&element) > 0) return say_twin(element);
    if (level > DEEPEST_LEVEL) {
        return lose(element, {}, "cannot be read: it is deeper than COBOL's levels allow",
                    "take elements further down for the records, with --record");
    }
    if (element.name.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ-") != std::string::npos) {
        result_.needs_exact_names = true;
    }
    Spelling& spelling = spellings_[folded(element.name)];
    spelling.differs =
        spelling.differs || (!spelling.first.empty() && spelling.first != element.name);
    if (spelling.first.empty()) spelling.first = element.name;
    Use& use = uses_[element.name];
    ++(element.children.empty() ? use.fields : use.groups);
    for (const ElementProfile& child : element.children) {
        collect_names(child, level_below(level));
    }
}

void CopybookMaker::say_losses(const ElementProfile& element) {
    if (element.attributes.line > 0) {
        lose(element, element.attributes, "attributes cannot be read into fields",
             "--attributes reads each as the element NAME_ATTRIBUTE");
    }
    if (element.mixed.line > 0) {
        lose(element, element.mixed, "the text beside elements cannot be read into a field", "");
    }
    if (element.text.texts() > 0 && !element.children.empty() && element.mixed.line == 0) {
        lose(element, {}, "some hold a text, others elements; the texts cannot be read", "");
    }
}

std::string CopybookMaker::path_to(const ElementProfile& element) const {
    return root_.name + "/" + path_of(element);
}

void CopybookMaker::note_tables(const ElementProfile& element) {
    const std::uint64_t own = table_of(element, wishes_.fields).occurs;
    const bool is_table = element.parent != &root_ && own > 1 && !element.children.empty();
    if (is_table && own > longest_occurs_) {
        longest_table_ = &element;
        longest_occurs_ = own;
    }
    for (const ElementProfile& child : element.children) note_tables(child);
}

// Where each document has one record of a kind, and that has a table, its entries may be what is
// wanted.
void CopybookMaker::look_for_records(const ElementProfile& kind) {
    const bool is_single =
        kind.count > 0 ? kind.most == 1 : !kind.declared || kind.declared->most == 1;
    const std::uint64_t before = longest_occurs_;
    note_tables(kind);
    if (is_single && longest_occurs_ > before) {
        result_.possible_records = path_to(*longest_table_);
    }
}

void CopybookMaker::say_no_record(const ElementProfile& kind) {
    if (twins_.count(&kind) > 0) return say_twin(kind);
    say_losses(kind);
    if (!can_be_given(kind.name)) return say_name(kind);
    const bool is_text = kind.children.empty() &&
                         (kind.text.texts() > 0 ||
                          (kind.declared && (kind.declared->text || kind.declared->has_text)));
    if (is_text) {
        lose(kind, {}, "cannot be read: its text is not in an element below it",
             "--attributes reads it as the element NAME_text");
    } else if (!kind.children.empty()) {
        lose(kind, {}, "cannot be read: nothing in it can be a field", "");
    } else if (kind.attributes.line == 0) {
        lose(kind, {}, "is always empty, and becomes a record without data", "");
    }
}

CopybookMaker::Kinds CopybookMaker::kinds() {
    Kinds result;
    find_twins(root_);
    if (root_.attributes.line > 0) {
        lose(root_, root_.attributes, "attributes of the document element cannot be read", "");
    }
    if (root_.mixed.line > 0) {
        lose(root_, root_.mixed, "the text beside the records cannot be read", "");
    }
    for (const ElementProfile& kind : root_.children) {
        if (twins_.count(&kind) > 0 || !has_fields(kind, 1)) {
            say_no_record(kind);
            continue;
        }
        collect_names(kind, 1);
        look_for_records(kind);
        selector_length_ = std::max(selector_length_, kind.name.size());
        result.push_back(&kind);
    }
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
    add_comment("Made by sxml copybook from " + wishes_.made_from + ".");
    if (result_.needs_exact_names) {
        add_line(6, "*> Read with --set 4GL_COLUMN_CASE=2 (names have capitals or");
        add_line(6, "*> hyphens).");
    }
}

void CopybookMaker::add_name(const std::string& cobol_name, const std::string& element) {
    const auto found = uses_.find(element);
    const bool is_shared =
        spellings_[folded(element)].differs || (found != uses_.end() && found->second.groups > 0 &&
                                                found->second.groups + found->second.fields > 1);
    if (!is_shared && plain_name(cobol_name, result_.needs_exact_names) == element) return;
    add_line(6, "*> sxml: name " + element);
}

// A comment, on as many lines as it takes.
void CopybookMaker::add_comment(const std::string& text) {
    constexpr std::size_t WIDTH = MARGIN - 11;
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t end = text.size();
        if (end - begin > WIDTH) {
            const std::size_t blank = text.rfind(' ', begin + WIDTH);
            end = blank != text.npos && blank > begin ? blank : begin + WIDTH;
        }
        add_line(6, "*>   " + text.substr(begin, end - begin));
        begin = end < text.size() && text[end] == ' ' ? end + 1 : end;
    }
}

void CopybookMaker::note_guesses(const ElementProfile& element, const FieldForm& form,
                                 const TableForm& table) {
    if (form.is_guess && guesses_++ == 0) first_guess_ = &element;
    if (!table.is_guess) return;
    lose(element, element.declared->place,
         "may occur any number of times; " + std::to_string(table.occurs) + " is a guess",
         "give samples that have the element, or correct the OCCURS clause");
}

// One message for all fields for which neither a schema nor samples give a limit.
void CopybookMaker::say_guesses() {
    if (guesses_ == 0) return;
    std::string what = "may be of any length; the picture is a guess";
    if (guesses_ > 1) what += " (as are those of " + counted(guesses_ - 1, "more field") + ")";
    lose(*first_guess_, first_guess_->declared->place, std::move(what),
         "give samples that have the element, or correct the pictures with such a comment");
}

CopybookMaker::Size CopybookMaker::add_item(const ElementProfile& element, int level,
                                            const std::string& around) {
    if (!has_fields(element, level)) return {};
    const std::string name = names_.add(element.name, around);
    const int indent = indent_of(level);
    const bool is_field = element.children.empty();
    const FieldForm form = is_field ? field_of(element, wishes_.fields) : FieldForm{};
    const TableForm table = table_of(element, wishes_.fields);
    const bool is_guess = form.is_guess || table.is_guess;
    const std::string comment = comment_on(element);
    add_comment(comment + (is_guess ? comment.empty() ? "a guess" : "; a guess" : ""));
    note_guesses(element, form, table);
    add_name(name, element.name);
    std::vector<std::string> clauses;
    Size size;
    if (is_field) {
        size = {form.bytes, 1};
        clauses.push_back(form.picture);
        if (wishes_.is_packed && form.is_number) clauses.emplace_back("COMP-3");
    }
    std::uint64_t occurs = table.occurs;
    if (occurs > 1) clauses.push_back("OCCURS " + std::to_string(occurs));
    add_entry(indent, level_text(level) + "  " + name, clauses);
    if (!is_field) size = add_items(element, level, name);
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
    if (kind.count > 0) add_comment(counted(kind.count, "record"));
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
        const auto& losses = result_.losses;
        return Problem{
            Cause::document,
            {.file = wishes_.made_from},
            "no child of the document element holds elements that can be fields" +
                (losses.empty() ? "" : " (" + losses.back().what + ")"),
            "each child of the document element is taken for a record, and fields lie at "
            "most 13 elements deep in it; --record takes others"};
    }
    if (all.size() > MOST_KINDS) return problem_of_kinds(all.size());
    begin_text();
    for (const ElementProfile* kind : all) add_kind(*kind, all.size() > 1);
    say_guesses();
    const bool is_small = largest_.bytes <= MOST_BYTES && largest_.fields <= MOST_FIELDS;
    if (is_small) return std::move(result_);
    return problem_of_size();
}

Problem CopybookMaker::problem_of_kinds(std::size_t count) const {
    return {Cause::document,
            {.file = wishes_.made_from},
            "the document element has " + std::to_string(count) +
                " kinds of elements that can be records; there may be " +
                std::to_string(MOST_KINDS),
            "each child of the document element is taken for a record; --record takes others"};
}

Problem CopybookMaker::problem_of_size() const {
    const std::string smaller =
        longest_table_ != nullptr ? ": --record " + path_to(*longest_table_) : ", with --record";
    return {Cause::document,
            {.file = wishes_.made_from},
            "a record would have more than " + std::to_string(MOST_FIELDS) +
                " fields, a table more than " + std::to_string(MOST_OCCURS) +
                " entries, or be larger than 256 MiB",
            "each child of the document element is taken for a record; take smaller elements" +
                smaller};
}

}  // namespace

Result<SampleCopybook> copybook_of(const DocumentProfile& profile, const CopybookWishes& wishes) {
    return CopybookMaker(profile, wishes).make();
}

}  // namespace conversion
