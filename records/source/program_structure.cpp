#include "records/source/program_structure.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "records/source/directives.h"
#include "records/source/entry_parser.h"
#include "records/source/literals.h"
#include "records/source/text/text_case.h"
#include "records/source/value_clause.h"

namespace records {

namespace {

bool is_division(std::string_view word) {
    return word == "IDENTIFICATION" || word == "ID" || word == "ENVIRONMENT" || word == "DATA";
}

class StructureFinder {
  public:
    StructureFinder(const std::vector<Token>& tokens, ParseContext& context)
        : cursor_(tokens, 0, tokens.size()), tokens_(tokens), context_(context) {}

    ProgramStructure find() {
        open_area(RecordArea::Kind::copybook, {}, 0);
        while (!cursor_.at_end()) read_sentence();
        close_area(tokens_.size());
        return std::move(structure_);
    }

  private:
    enum class Mode { data, other };  // may entries stand here?

    void read_sentence() {
        const std::size_t begin = cursor_.index();
        skip_directives(cursor_);
        if (cursor_.at_end()) return;
        const std::size_t start = cursor_.index();
        if (cursor_.at_word("DIVISION", 1) && is_division(cursor_.peek().text)) {
            enter_division(begin);
        } else if (cursor_.at_word("PROGRAM-ID") && cursor_.at(WordKind::period, 1)) {
            enter_program(begin);
        } else if (at_header() && cursor_.at_word("SECTION", 1)) {
            enter_section(begin);
        } else if (mode_ == Mode::data) {
            read_data_sentence(begin);
        } else {
            read_special_names();
        }
        if (cursor_.index() == start) cursor_.advance();
        skip_sentence();
    }

    // At the header of a section or division? "05 SECTION PIC X." is an entry.
    bool at_header() const {
        if (level_number(cursor_.peek()) != 0) return false;
        return cursor_.at_word("SECTION", 1) || cursor_.at_word("DIVISION", 1);
    }

    void enter_division(std::size_t begin) {
        structure_.is_program = true;
        close_area(begin);
        mode_ = cursor_.at_word("DATA") ? Mode::data : Mode::other;
        cursor_.advance();
        cursor_.advance();
        cursor_.take(WordKind::period);
        went_on_ = true;
        // Records before any section are taken as those of a storage section.
        if (mode_ == Mode::data) open_area(RecordArea::Kind::storage, {}, cursor_.index());
    }

    // PROGRAM-ID. name.
    void enter_program(std::size_t begin) {
        structure_.is_program = true;
        close_area(begin);
        mode_ = Mode::other;
        cursor_.advance();
        cursor_.advance();
        if (cursor_.at_end()) return;
        std::string_view name = cursor_.peek().text;
        if (cursor_.at(WordKind::literal) && name.size() > 2)
            name = name.substr(1, name.size() - 2);
        program_ = name;
    }

    void enter_section(std::size_t begin) {
        structure_.is_program = true;
        close_area(begin);
        const std::string& name = cursor_.peek().text;
        const bool is_storage =
            name == "WORKING-STORAGE" || name == "LINKAGE" || name == "LOCAL-STORAGE";
        mode_ = is_storage || name == "FILE" ? Mode::data : Mode::other;
        cursor_.advance();
        cursor_.advance();
        skip_sentence();
        if (is_storage) open_area(RecordArea::Kind::storage, {}, cursor_.index());
        went_on_ = true;
    }

    void read_data_sentence(std::size_t begin) {
        if ((cursor_.at_word("FD") || cursor_.at_word("SD")) && cursor_.at(WordKind::word, 1)) {
            enter_file(begin);
            return;
        }
        if (define_constant(cursor_, context_)) return;
        const int level = level_number(cursor_.peek());
        if (level == 0 || !area_open_) return;
        RecordArea& area = structure_.areas.back();
        if (level == 1 || level == 77) {
            close_record(begin);
            const Token& name = cursor_.peek(1);
            const bool named = name.kind == WordKind::word && name.text != "FILLER";
            area.records.push_back({named ? name.text : std::string(), {begin, 0}});
        } else if (area.records.empty() && level <= 49) {
            area.records.push_back({{}, {begin, 0}});
        }
        cursor_.advance();
    }

    void enter_file(std::size_t begin) {
        close_area(begin);
        const auto kind =
            cursor_.at_word("FD") ? RecordArea::Kind::file : RecordArea::Kind::sort_file;
        open_area(kind, cursor_.peek(1).text, begin);
        cursor_.advance();
        cursor_.advance();
        structure_.areas.back().record_contains = read_record_clause();
        skip_sentence();
        structure_.areas.back().tokens.begin = cursor_.index();
        went_on_ = true;
    }

    // Looks in an FD for RECORD CONTAINS n [TO m] or RECORD VARYING FROM n TO m.
    int read_record_clause() const {
        int longest = 0;
        for (std::size_t at = 0; !cursor_.at(WordKind::period, at); ++at) {
            const bool is_end = cursor_.index() + at >= tokens_.size();
            if (is_end || (cursor_.peek(at).first_on_line && looks_like_fd(at))) break;
            if (!cursor_.at_word("RECORD", at)) continue;
            std::size_t number = at + 1;
            while (is_filling(cursor_.peek(number))) ++number;
            if (cursor_.at_word("TO", number + 1)) number += 2;
            longest = std::max(longest, record_size(cursor_.peek(number)));
        }
        return longest;
    }

    bool looks_like_fd(std::size_t ahead) const {
        return cursor_.at_word("FD", ahead) || cursor_.at_word("SD", ahead) ||
               cursor_.at_word("01", ahead);
    }

    static bool is_filling(const Token& token) {
        constexpr std::array<std::string_view, 6> WORDS = {"IS",   "VARYING", "IN",
                                                           "SIZE", "FROM",    "CONTAINS"};
        return token.kind == WordKind::word &&
               std::find(WORDS.begin(), WORDS.end(), token.text) != WORDS.end();
    }

    // 0 for what is not a number that a record can have.
    static int record_size(const Token& token) {
        constexpr std::size_t MAX_DIGITS = 9;
        const bool is_size = token.kind == WordKind::word && is_integer(token.text) &&
                             token.text.size() <= MAX_DIGITS;
        return is_size ? std::stoi(token.text) : 0;
    }

    // DECIMAL-POINT IS COMMA and CURRENCY SIGN IS literal, wherever they stand in the sentence.
    void read_special_names() {
        while (!cursor_.at_end() && !cursor_.at(WordKind::period)) {
            if (cursor_.take_word("DECIMAL-POINT")) {
                cursor_.take_word("IS");
                if (cursor_.at_word("COMMA")) context_.decimal_point_is_comma = true;
            } else if (cursor_.take_word("CURRENCY")) {
                read_currency();
            } else if (at_header()) {
                went_on_ = true;
                return;
            } else {
                cursor_.advance();
            }
        }
    }

    void read_currency() {
        cursor_.take_word("SIGN");
        cursor_.take_word("IS");
        if (!cursor_.at(WordKind::literal)) return;
        std::string why;
        Token sign = cursor_.peek();
        for (std::size_t ahead = 1; ahead <= 3; ++ahead) {
            if (cursor_.at_word("SYMBOL", ahead) && cursor_.at(WordKind::literal, ahead + 1)) {
                sign = cursor_.peek(ahead + 1);
            }
        }
        const auto literal = read_quoted_literal(sign.text, why);
        if (literal && literal->value.size() == 1) {
            context_.currency = upper(literal->value.front());
        } else {
            context_.error(sign, "expected one character as the currency sign");
        }
    }

    // To after the period, or to where the next sentence seems to begin without one.
    void skip_sentence() {
        if (std::exchange(went_on_, false)) return;
        while (!cursor_.at_end()) {
            if (cursor_.take(WordKind::period)) return;
            const bool is_new_line = cursor_.peek().first_on_line;
            if (is_new_line && (cursor_.at_word("FD") || cursor_.at_word("SD"))) return;
            if (is_new_line && mode_ == Mode::data && looks_like_entry(cursor_)) return;
            if (at_header()) return;
            cursor_.advance();
        }
    }

    void open_area(RecordArea::Kind kind, std::string name, std::size_t begin) {
        structure_.areas.push_back({kind, std::move(name), program_, {begin, begin}, {}});
        area_open_ = true;
    }

    void close_record(std::size_t end) {
        if (!area_open_ || structure_.areas.back().records.empty()) return;
        structure_.areas.back().records.back().tokens.end = end;
    }

    void close_area(std::size_t end) {
        if (!area_open_) return;
        close_record(end);
        structure_.areas.back().tokens.end = end;
        area_open_ = false;
    }

    TokenCursor cursor_;
    const std::vector<Token>& tokens_;
    ParseContext& context_;
    ProgramStructure structure_;
    std::string program_;
    Mode mode_ = Mode::data;
    bool area_open_ = false;
    bool went_on_ = false;  // the sentence has been passed already
};

}  // namespace

ProgramStructure find_structure(const std::vector<Token>& tokens, ParseContext& context) {
    return StructureFinder(tokens, context).find();
}

}  // namespace records
