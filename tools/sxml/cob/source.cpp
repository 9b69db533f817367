#include "tools/sxml/cob/source.h"

#include <algorithm>
#include <map>
#include <optional>
#include <sstream>

#include "records/source/text/text_case.h"
#include "tools/sxml/cob/run.h"

namespace command::cob {

namespace {

using records::to_upper;

constexpr std::size_t INDICATOR = 6;  // column 7 of fixed format
constexpr std::size_t MARGIN = 72;

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.ends_with('\r')) line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

// The source files that lines came from, read when they are first asked for.
class OriginalFiles {
  public:
    explicit OriginalFiles(bool is_free) : is_free_(is_free) {}

    struct File {
        std::vector<std::string> lines;
        bool is_free = false;
        bool has_directives = false;
    };

    const File& get(const std::string& name) {
        const auto [at, is_new] = files_.try_emplace(name);
        if (!is_new) return at->second;
        const std::string text = text_of(name);
        const std::string upper = to_upper(text);
        File& file = at->second;
        file.lines = lines_of(text);
        file.has_directives = upper.find("SXML:") != std::string::npos;
        file.is_free = is_free_ || upper.find("FORMAT IS FREE") != std::string::npos ||
                       upper.find("FORMAT FREE") != std::string::npos ||
                       upper.find("SOURCEFORMAT\"FREE") != std::string::npos;
        return file;
    }

  private:
    bool is_free_;
    std::map<std::string, File> files_;
};

// What a comment line says; nothing when the line is none.
std::optional<std::string_view> comment_of(std::string_view line, bool is_free) {
    if (!is_free && line.size() > INDICATOR && (line[INDICATOR] == '*' || line[INDICATOR] == '/')) {
        line = line.substr(0, MARGIN).substr(INDICATOR + 1);
        return line.starts_with('>') ? line.substr(1) : line;
    }
    const std::string_view text = records::without_leading_blanks(line);
    if (text.starts_with("*>")) return text.substr(2);
    if (is_free && line.starts_with('*')) return line.substr(1);
    return std::nullopt;
}

std::optional<std::string> directive_of(const std::string& line, bool is_free) {
    const auto comment = comment_of(line, is_free);
    if (!comment) return std::nullopt;
    const std::string_view text = records::without_leading_blanks(*comment);
    if (!records::starts_with_word(text, "sxml:")) return std::nullopt;
    return "*> " + std::string(text);
}

bool is_blank(std::string_view line) {
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

// Restores the directives, which the compiler drops with all comments, leaving blank lines.
class Directives {
  public:
    Directives(Source& source, std::vector<std::string>& lines, bool is_free)
        : source_(source), lines_(lines), originals_(is_free) {}

    void put_back() {
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            const Source::Line& at = source_.lines[i];
            const OriginalFiles::File& original = originals_.get(at.file);
            if (!original.has_directives || !is_blank(lines_[i])) continue;
            const auto number = static_cast<std::size_t>(at.number);
            if (number == 0 || number > original.lines.size()) continue;
            auto directive = directive_of(original.lines[number - 1], original.is_free);
            if (directive && is_meant(original, i)) lines_[i] = std::move(*directive);
        }
    }

  private:
    // False when what follows the directive was left out (by conditional compilation).
    bool is_meant(const OriginalFiles::File& original, std::size_t line) const {
        for (std::size_t i = line + 1; i < lines_.size(); ++i) {
            const Source::Line& at = source_.lines[i];
            const auto number = static_cast<std::size_t>(at.number);
            if (at.file != source_.lines[line].file || number > original.lines.size()) return true;
            if (!is_blank(lines_[i])) return true;
            const std::string& text = original.lines[number - 1];
            if (is_blank(text) || comment_of(text, original.is_free)) continue;
            const std::string upper = to_upper(text);
            return upper.find("COPY") != std::string::npos ||
                   upper.find("REPLACE") != std::string::npos;
        }
        return true;
    }

    Source& source_;
    std::vector<std::string>& lines_;
    OriginalFiles originals_;
};

// The words of the text, one after the other. Literals are words that begin with a quotation mark.
class WordReader {
  public:
    WordReader(std::string_view text, std::size_t begin, std::size_t end)
        : text_(text), at_(begin), end_(std::min(end, text.size())) {}

    // False at the end. A period that ends a sentence is a word.
    bool next() {
        skip_blanks();
        if (at_ >= end_) return false;
        begin_ = at_;
        const char c = text_[at_];
        if (records::is_quote(c)) {
            at_ = std::min(text_.find(c, at_ + 1), end_ - 1) + 1;
        } else if (is_word(c)) {
            while (at_ < end_ && is_word(text_[at_])) ++at_;
        } else {
            ++at_;
        }
        word_ = to_upper(text_.substr(begin_, at_ - begin_));
        return true;
    }
    const std::string& word() const { return word_; }
    std::size_t begin() const { return begin_; }
    std::size_t end() const { return at_; }

  private:
    static bool is_word(char c) {
        return records::is_letter(c) || records::is_digit(c) || c == '-' || c == '_' ||
               (c & 0x80) != 0;
    }
    void skip_blanks() {
        while (at_ < end_) {
            if (text_.substr(at_, 2) == "*>") {
                at_ = std::min(text_.find('\n', at_), end_);
            } else if (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\t') {
                ++at_;
            } else {
                return;
            }
        }
    }

    std::string_view text_;
    std::size_t at_;
    std::size_t end_;
    std::size_t begin_ = 0;
    std::string word_;
};

// Finds the programs, their files and their statements.
class Structure {
  public:
    explicit Structure(Source& source)
        : source_(source), words_(source.text, 0, source.text.size()) {}

    void find() {
        while (words_.next()) take(words_.word());
        end_statements(source_.text.size());
    }

  private:
    void take(const std::string& word) {
        if (word == "IDENTIFICATION" || word == "ID") {
            const std::size_t begin = words_.begin();
            if (words_.next() && words_.word() == "DIVISION") end_statements(begin);
        } else if (word == "PROGRAM-ID" || word == "FUNCTION-ID") {
            begin_program();
        } else if (word == "END") {
            end_program();
        } else if (word == "PROCEDURE") {
            begin_statements();
        } else if (word == "FD" && current_ >= 0 && !current().has_statements) {
            add_file();
        }
    }

    Program& current() { return source_.programs[static_cast<std::size_t>(current_)]; }

    static std::string unquoted(const std::string& word) {
        return records::is_quote(word.front()) ? word.substr(1, word.size() - 2) : word;
    }

    void begin_program() {
        end_statements(words_.begin());
        if (!words_.next()) return;
        if (words_.word() == "." && !words_.next()) return;
        Program program;
        program.name = unquoted(words_.word());
        program.container = current_;
        source_.programs.push_back(program);
        current_ = static_cast<int>(source_.programs.size()) - 1;
    }

    void end_program() {
        const std::size_t begin = words_.begin();
        if (!words_.next() || (words_.word() != "PROGRAM" && words_.word() != "FUNCTION")) return;
        end_statements(begin);
        if (current_ >= 0) current_ = current().container;
    }

    void begin_statements() {
        if (!words_.next() || words_.word() != "DIVISION" || current_ < 0) return;
        while (words_.next() && words_.word() != ".") {
        }
        current().has_statements = true;
        current().statements_begin = words_.end();
        open_ = current_;
    }

    void end_statements(std::size_t end) {
        if (open_ < 0) return;
        source_.programs[static_cast<std::size_t>(open_)].statements_end = end;
        open_ = -1;
    }

    void add_file() {
        if (!words_.next()) return;
        FileEntry file;
        file.name = words_.word();
        while (words_.next() && words_.word() != ".") {
            if (words_.word() == "REPORT" || words_.word() == "REPORTS") file.has_reports = true;
        }
        current().files.push_back(file);
    }

    Source& source_;
    WordReader words_;
    int current_ = -1;
    int open_ = -1;  // the program whose statements are being read
};

bool is_in(const Source& source, std::size_t program, std::size_t container) {
    for (int at = static_cast<int>(program); at >= 0;
         at = source.programs[static_cast<std::size_t>(at)].container) {
        if (static_cast<std::size_t>(at) == container) return true;
    }
    return false;
}

// Statements end at a period or at the next of these.
bool begins_statement(const std::string& word) {
    static const std::set<std::string> STATEMENTS = {
        "ACCEPT",     "ADD",     "CALL",   "CLOSE",    "COMPUTE",  "CONTINUE", "DELETE",
        "DISPLAY",    "DIVIDE",  "EXIT",   "EVALUATE", "GO",       "GOBACK",   "IF",
        "INITIALIZE", "INSPECT", "MERGE",  "MOVE",     "MULTIPLY", "OPEN",     "PERFORM",
        "READ",       "RELEASE", "RETURN", "REWRITE",  "SEARCH",   "SET",      "SORT",
        "START",      "STOP",    "STRING", "SUBTRACT", "UNSTRING", "WRITE",    "AT",
        "INVALID",    "NOT",     "ELSE",   "."};
    return STATEMENTS.contains(word) || word.starts_with("END-");
}

}  // namespace

std::string Source::place(int line) const {
    const auto index = static_cast<std::size_t>(line) - 1;
    if (line < 1 || index >= lines.size()) return file;
    return lines[index].file + ":" + std::to_string(lines[index].number);
}

Source read_expanded(const std::string& file, const std::string& expanded, bool is_free) {
    Source source;
    source.file = file;
    std::vector<std::string> lines;
    Source::Line at{file, 1};
    for (std::string& line : lines_of(expanded)) {
        if (line.starts_with("#line ")) {
            std::istringstream words(line.substr(6));
            words >> at.number;
            const std::size_t quote = line.find('"');
            const std::size_t end = line.rfind('"');
            if (end > quote) at.file = line.substr(quote + 1, end - quote - 1);
            continue;
        }
        // Put in by cobc 3.2 where a dialect asks what begins in area A.
        if (line.starts_with("#area_a")) continue;
        lines.push_back(std::move(line));
        source.lines.push_back(at);
        ++at.number;
    }
    Directives(source, lines, is_free).put_back();
    for (const std::string& line : lines) source.text += line + "\n";
    Structure(source).find();
    return source;
}

std::set<std::string> moved_items(const Source& source, std::size_t program,
                                  const std::string& file, const std::set<std::string>& records) {
    std::set<std::string> items;
    for (std::size_t i = program; i < source.programs.size(); ++i) {
        const Program& at = source.programs[i];
        if (!is_in(source, i, program) || !at.has_statements) continue;
        WordReader words(source.text, at.statements_begin, at.statements_end);
        bool is_write = false;
        bool is_read = false;
        while (words.next()) {
            const std::string verb = words.word();
            if ((is_write && verb == "FROM") || (is_read && verb == "INTO")) {
                if (words.next()) items.insert(words.word());
            }
            if (!begins_statement(verb)) continue;
            is_write = is_read = false;
            if (verb == "WRITE" && words.next()) is_write = records.contains(words.word());
            if (verb == "READ" && words.next()) is_read = words.word() == file;
        }
    }
    return items;
}

}  // namespace command::cob
