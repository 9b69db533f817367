#include "records/source/directives.h"

#include <utility>

#include "records/source/condition_parser.h"
#include "records/source/text/text_case.h"

namespace records {

namespace {

// Names of elements are made of these; what else XML allows has no use in a record.
bool is_xml_name(std::string_view text) {
    if (text.empty()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool letter = is_letter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
        if (!letter && (i == 0 || (!is_digit(c) && c != '-' && c != '.'))) return false;
    }
    return true;
}

class DirectiveParser {
  public:
    DirectiveParser(TokenCursor& cursor, ParseContext& context)
        : cursor_(cursor), context_(context) {}

    Directives parse() {
        while (cursor_.at(WordKind::directive_begin)) {
            if (!result_.first) result_.first = cursor_.peek();
            cursor_.advance();
            parse_line();
            finish_line();
        }
        return std::move(result_);
    }

  private:
    void parse_line() {
        const Token start = cursor_.peek();
        cursor_.advance();
        if (start.kind == WordKind::word && start.text == "WHEN") {
            parse_when(start);
        } else if (start.kind == WordKind::word && start.text == "NAME") {
            parse_name(start);
        } else if (start.kind == WordKind::word && start.text == "HEX") {
            result_.hex = true;
        } else if (start.kind == WordKind::word && start.text == "HIDE") {
            result_.hide = true;
        } else {
            failed_ = true;
            if (start.kind == WordKind::directive_end) cursor_.move_to(cursor_.index() - 1);
            context_.error(
                start, "expected the directive when, name, hex or hide, found " + quoted(start));
        }
    }

    void parse_when(const Token& start) {
        auto condition = parse_condition(cursor_, context_);
        failed_ = !condition;
        if (!condition) return;
        if (result_.when) context_.error(start, "the item already has a condition");
        result_.when = std::move(condition);
    }

    void parse_name(const Token& start) {
        const Token name = cursor_.peek();
        if (name.kind == WordKind::directive_end || !is_xml_name(name.raw)) {
            failed_ = true;
            context_.error(name, "expected a name for XML, found " + quoted(name));
            return;
        }
        cursor_.advance();
        if (!result_.xml_name.empty()) context_.error(start, "the item already has a name");
        result_.xml_name = name.raw;
        take_local_name();
    }

    // What comes after a prefix, as in "a:price".
    void take_local_name() {
        const auto touches = [this](std::size_t ahead) {
            return !cursor_.peek(ahead).space_before && !cursor_.peek(ahead).first_on_line;
        };
        if (!cursor_.at(WordKind::colon) || !touches(0)) return;
        const Token local = cursor_.peek(1);
        if (local.kind == WordKind::directive_end || !touches(1) || !is_xml_name(local.raw)) {
            failed_ = true;
            context_.error(local, "expected a name after the prefix, found " + quoted(local));
            return;
        }
        cursor_.advance();
        cursor_.advance();
        result_.xml_name += ":" + std::string(local.raw);
    }

    // The cursor goes after the line, which should be at its end.
    void finish_line() {
        cursor_.take(WordKind::period);
        if (!failed_ && !cursor_.at_end() && !cursor_.at(WordKind::directive_end)) {
            context_.error(cursor_.peek(),
                           "expected the end of the directive, found " + quoted(cursor_.peek()));
        }
        failed_ = false;
        while (!cursor_.at_end() && !cursor_.take(WordKind::directive_end)) cursor_.advance();
    }

    TokenCursor& cursor_;
    ParseContext& context_;
    Directives result_;
    bool failed_ = false;
};

}  // namespace

Directives parse_directives(TokenCursor& cursor, ParseContext& context) {
    return DirectiveParser(cursor, context).parse();
}

void skip_directives(TokenCursor& cursor) {
    while (cursor.at(WordKind::directive_begin)) {
        while (!cursor.at_end() && !cursor.take(WordKind::directive_end)) cursor.advance();
    }
}

}  // namespace records
