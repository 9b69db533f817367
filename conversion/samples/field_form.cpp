#include "conversion/samples/field_form.h"

#include <algorithm>

#include "conversion/texts/counted.h"

namespace conversion {

namespace {

constexpr std::uint64_t GUESSED_TEXT = 80;
constexpr std::uint64_t GUESSED_OCCURS = 10;
constexpr int MOST_DIGITS = 18;  // of numbers without a limit; every COBOL takes as many
constexpr int MOST_DIGITS_OF_A_FIELD = 38;
constexpr int GUESSED_DECIMALS = 5;
constexpr int SIGN_AND_POINT = 2;  // characters

std::uint64_t grown(std::uint64_t seen, int grow) {
    return (seen * static_cast<std::uint64_t>(100 + grow) + 99) / 100;
}

FieldForm text_form(std::uint64_t bytes) {
    FieldForm form;
    form.bytes = std::max<std::uint64_t>(bytes, 1);
    form.picture = "PIC X(" + std::to_string(form.bytes) + ")";
    return form;
}

FieldForm number_form(int whole, int decimals, bool is_negative) {
    FieldForm form;
    form.is_number = true;
    form.bytes = static_cast<std::uint64_t>(whole + decimals);
    form.picture = is_negative ? "PIC S" : "PIC ";
    if (whole > 0) form.picture += "9(" + std::to_string(whole) + ")";
    if (decimals > 0) form.picture += "V9(" + std::to_string(decimals) + ")";
    return form;
}

// Whether zero would stand for empty or missing elements or, when numbers are to be restored
// exactly, would be left out with these.
bool is_field_of_numbers(const ElementProfile& element, bool is_exact) {
    const TextProfile& text = element.text;
    if (!text.is_number()) return false;
    const bool has_empty = text.texts() < element.count;
    const bool is_missing = element.parents < element.parent->count;
    if (has_empty || (is_missing && text.has_zero())) return false;
    return !is_exact || (!text.has_zero() && !text.has_mixed_decimals());
}

FieldForm form_by_samples(const TextProfile& text, int grow, bool is_number) {
    if (!is_number) {
        return text_form(text.is_date() ? text.most_bytes() : grown(text.most_bytes(), grow));
    }
    const auto seen = static_cast<std::uint64_t>(text.whole_digits());
    const auto most = static_cast<std::uint64_t>(MOST_DIGITS - text.decimals());
    const auto whole = static_cast<int>(std::min(grown(seen, grow), most));
    return number_form(whole, text.decimals(), text.is_negative());
}

FieldForm declared_text(const TextProfile& seen, const TextLimits& limits, int grow) {
    if (limits.length) return text_form(std::max(*limits.length, seen.most_bytes()));
    if (seen.texts() > 0) return text_form(grown(seen.most_bytes(), grow));
    FieldForm form = text_form(GUESSED_TEXT);
    form.is_guess = true;
    return form;
}

struct Digits {
    int whole;
    int decimals;
    bool is_guess;

    int count() const { return whole + decimals; }
};

// Room for all that was seen, whatever is declared.
Digits declared_digits(const TextProfile& seen, const TextLimits& limits, int grow) {
    if (!seen.is_number()) {
        const int decimals = limits.decimals.value_or(GUESSED_DECIMALS);
        const int left = std::max(MOST_DIGITS - decimals, 1);
        const bool is_known = limits.whole_digits && limits.decimals;
        return {limits.whole_digits.value_or(left), decimals, !is_known};
    }
    const int decimals = std::max(limits.decimals.value_or(0), seen.decimals());
    const auto sampled =
        static_cast<int>(form_by_samples(seen, grow, true).bytes) - seen.decimals();
    const int whole = limits.whole_digits.value_or(std::min(sampled, MOST_DIGITS - decimals));
    return {std::max(whole, seen.whole_digits()), decimals, false};
}

FieldForm text_of_digits(const TextProfile& seen, const Digits& digits) {
    const auto most = static_cast<std::uint64_t>(digits.count() + SIGN_AND_POINT);
    FieldForm form = text_form(std::max(most, seen.most_bytes()));
    form.is_guess = digits.is_guess;
    return form;
}

FieldForm declared_number(const TextProfile& seen, const TextLimits& limits, int grow) {
    const Digits digits = declared_digits(seen, limits, grow);
    if (digits.count() > MOST_DIGITS_OF_A_FIELD) return text_of_digits(seen, digits);
    const bool is_negative = limits.may_be_negative || (seen.is_number() && seen.is_negative());
    FieldForm form = number_form(digits.whole, digits.decimals, is_negative);
    form.is_guess = digits.is_guess;
    return form;
}

// A number that may be empty, which zero is not.
FieldForm declared_text_of_number(const TextProfile& seen, const TextLimits& limits, int grow) {
    return text_of_digits(seen, declared_digits(seen, limits, grow));
}

void add(std::string& comment, const std::string& more) {
    if (more.empty()) return;
    comment += (comment.empty() ? "" : "; ") + more;
}

std::string comment_on_text(const ElementProfile& element) {
    const TextProfile& text = element.text;
    if (text.texts() == 0) return element.count > 0 ? "always empty" : "";
    std::string seen = "longest " + counted(text.most_characters(), "character");
    if (text.most_bytes() != text.most_characters()) {
        seen += ", " + counted(text.most_bytes(), "byte");
    }
    if (text.is_number() && text.has_mixed_decimals()) seen += ", decimals vary";
    if (text.is_date()) seen += ", dates";
    if (text.texts() < element.count) {
        seen += ", " + counted(element.count - text.texts(), "time") + " empty";
    }
    return seen;
}

std::string comment_on_declaration(const Declaration& declared) {
    std::string said = declared.text ? declared.text->shown : "";
    if (declared.text && declared.text->may_be_empty) said += ", may be empty";
    if (declared.most > 1) {
        const bool is_bounded = declared.most != Declaration::UNBOUNDED;
        add(said, std::to_string(declared.least) + " to " +
                      (is_bounded ? std::to_string(declared.most) : "any number of") + " times");
    } else if (declared.least == 0) {
        add(said, "optional");
    }
    return said;
}

}  // namespace

FieldForm field_of(const ElementProfile& element, const FieldWishes& wishes) {
    const TextProfile& seen = element.text;
    const auto& declared = element.declared;
    if (!declared || (!declared->text && seen.texts() > 0)) {
        const bool is_number = is_field_of_numbers(element, wishes.is_exact);
        return form_by_samples(seen, wishes.grow, is_number);
    }
    const TextLimits limits = declared->text.value_or(TextLimits{});
    if (!limits.is_number) return declared_text(seen, limits, wishes.grow);
    return limits.may_be_empty || wishes.is_exact
               ? declared_text_of_number(seen, limits, wishes.grow)
               : declared_number(seen, limits, wishes.grow);
}

TableForm table_of(const ElementProfile& element, const FieldWishes& wishes) {
    const std::uint64_t seen = element.most;
    const std::uint64_t by_samples = seen > 1 ? grown(seen, wishes.grow) : 1;
    if (!element.declared || element.declared->most <= 1) return {by_samples};
    const std::uint64_t most = element.declared->most;
    if (most <= MOST_OCCURS) return {std::max(most, seen)};
    if (seen > 0) return {std::max<std::uint64_t>(by_samples, 2)};
    return {GUESSED_OCCURS, true};
}

std::string comment_on(const ElementProfile& element) {
    std::string comment;
    if (element.declared) add(comment, comment_on_declaration(*element.declared));
    if (element.children.empty()) add(comment, comment_on_text(element));
    if (element.most > 1) add(comment, "up to " + std::to_string(element.most) + " times");
    if (element.parents < element.parent->count) {
        add(comment, "in " + std::to_string(element.parents) + " of " +
                         std::to_string(element.parent->count));
    }
    return comment;
}

}  // namespace conversion
