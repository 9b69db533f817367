#include "records/source/picture.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "records/source/text/text_case.h"

namespace records {

namespace {

constexpr std::int64_t MAX_LENGTH = 268'435'456;
constexpr int MAX_DIGITS = 38;

// Symbols of two letters are kept under one.
constexpr char CREDIT = 'c';
constexpr char DEBIT = 'd';
constexpr char CURRENCY = '$';  // whatever the source's currency sign is

struct Run {  // of one symbol
    char symbol;
    std::int64_t count;
    std::size_t offset;
};

class PictureAnalyser {
  public:
    PictureAnalyser(std::string_view text, const PictureOptions& options)
        : text_(text), options_(options) {}

    PictureResult analyse() {
        result_.picture.text = text_;
        if (split() && check_length()) classify();
        return std::move(result_);
    }

  private:
    bool fail(std::size_t offset, std::string message) {
        if (!result_.error.empty()) return false;
        result_.error = std::move(message);
        result_.error_at = offset;
        return false;
    }

    bool has(char symbol) const { return counts_[static_cast<unsigned char>(symbol)] > 0; }
    bool has_any(std::string_view symbols) const {
        return std::any_of(symbols.begin(), symbols.end(), [this](char c) { return has(c); });
    }
    std::int64_t count(char symbol) const { return counts_[static_cast<unsigned char>(symbol)]; }
    std::size_t first(std::string_view symbols) const {
        for (const Run& run : runs_) {
            if (symbols.find(run.symbol) != std::string_view::npos) return run.offset;
        }
        return 0;
    }

    // Where the symbols stand that may stand only once: the last of them is one too many.
    std::size_t last(std::string_view symbols) const {
        std::size_t offset = 0;
        for (const Run& run : runs_) {
            if (symbols.find(run.symbol) != std::string_view::npos) offset = run.offset;
        }
        return offset;
    }

    bool split();
    bool take_symbol(Run& run);
    bool take_count(Run& run);
    bool check_length();
    bool classify();
    bool is_signed_with_point() const;
    bool numeric();
    bool scale_with_p();
    bool numeric_edited();
    bool check_edited_signs();
    bool check_edited_order();
    bool is_floating(char symbol) const;
    bool characters(Category category, std::string_view allowed, const char* what);

    std::string_view text_;
    PictureOptions options_;
    std::size_t at_ = 0;
    std::vector<Run> runs_;
    std::array<std::int64_t, 256> counts_{};
    PictureResult result_{{}, {}, 0};
};

bool PictureAnalyser::split() {
    if (text_.empty()) return fail(0, "expected a picture");
    while (at_ < text_.size()) {
        Run run{' ', 1, at_};
        if (!take_symbol(run) || !take_count(run)) return false;
        std::int64_t& total = counts_[static_cast<unsigned char>(run.symbol)];
        total += run.count;
        if (total > MAX_LENGTH) {
            return fail(run.offset, "the picture has more than 268435456 positions");
        }
        if (!runs_.empty() && runs_.back().symbol == run.symbol) {
            runs_.back().count += run.count;
        } else {
            runs_.push_back(run);
        }
    }
    return true;
}

bool PictureAnalyser::take_symbol(Run& run) {
    const char c = text_[at_];
    const std::string_view rest = text_.substr(at_);
    if (rest.starts_with("CR") || rest.starts_with("DB")) {
        run.symbol = c == 'C' ? CREDIT : DEBIT;
        at_ += 2;
        return true;
    }
    ++at_;
    run.symbol = c;
    if (c == options_.currency) {
        run.symbol = CURRENCY;
        return true;
    }
    if (options_.decimal_point_is_comma && (c == '.' || c == ',')) {
        run.symbol = c == '.' ? ',' : '.';
        return true;
    }
    if (std::string_view("9XANGSVPZ*+-,./0BE").find(c) != std::string_view::npos) return true;
    return fail(run.offset,
                std::string("'") + c +
                    "' is not a picture symbol; expected 9 X A N G S V P or an editing symbol");
}

bool PictureAnalyser::take_count(Run& run) {
    if (at_ >= text_.size() || text_[at_] != '(') return true;
    const std::size_t close = text_.find(')', at_);
    if (close == std::string_view::npos) return fail(at_, "expected a closing parenthesis");
    std::int64_t count = 0;
    for (const char c : text_.substr(at_ + 1, close - at_ - 1)) {
        if (!is_digit(c)) return fail(at_ + 1, "expected a number between the parentheses");
        count = std::min(count * 10 + (c - '0'), MAX_LENGTH + 1);
    }
    if (close == at_ + 1) return fail(close, "expected a number between the parentheses");
    if (count == 0) return fail(at_ + 1, "a symbol must be repeated at least once");
    run.count = count;
    at_ = close + 1;
    return true;
}

bool PictureAnalyser::check_length() {
    std::int64_t length = 0;
    for (const Run& run : runs_) {
        const bool no_position = run.symbol == 'S' || run.symbol == 'V' || run.symbol == 'P';
        const bool two = run.symbol == CREDIT || run.symbol == DEBIT;
        length += no_position ? 0 : run.count * (two ? 2 : 1);
    }
    if (length > MAX_LENGTH) return fail(0, "the picture has more than 268435456 positions");
    if (length == 0) return fail(0, "the picture has no character position");
    result_.picture.length = static_cast<int>(length);
    result_.picture.national = static_cast<int>(counts_['N']);
    return true;
}

bool PictureAnalyser::classify() {
    if (has('N')) {
        if (has_any("B0/")) return characters(Category::national_edited, "NB0/", "N");
        return characters(Category::national, "N", "N");
    }
    if (has('G')) return characters(Category::double_byte, "GB", "G");
    if (has_any("XA")) {
        if (has_any("B0/")) return characters(Category::edited, "XA9B0/", "X or A");
        if (has_any("X9")) return characters(Category::alphanumeric, "XA9", "X or A");
        return characters(Category::alphabetic, "A", "A");
    }
    if (is_signed_with_point()) return numeric();
    for (const Run& run : runs_) {
        if (std::string_view("9SVP").find(run.symbol) == std::string_view::npos) {
            return numeric_edited();
        }
    }
    return numeric();
}

bool PictureAnalyser::characters(Category category, std::string_view allowed, const char* what) {
    result_.picture.category = category;
    for (const Run& run : runs_) {
        if (allowed.find(run.symbol) == std::string_view::npos) {
            return fail(run.offset,
                        std::string("this symbol cannot stand in one picture with ") + what);
        }
    }
    return true;
}

// S9(3).99: a number with a sign, as some compilers take it, with the point stored in its place.
bool PictureAnalyser::is_signed_with_point() const {
    return has('S') && count('.') == 1 &&
           std::all_of(runs_.begin(), runs_.end(), [](const Run& run) {
               return std::string_view("S9.").find(run.symbol) != std::string_view::npos;
           });
}

bool PictureAnalyser::numeric() {
    Picture& picture = result_.picture;
    picture.category = Category::numeric;
    if (has('.')) picture.stored_point = options_.decimal_point_is_comma ? ',' : '.';
    picture.is_signed = has('S');
    if (count('S') > 1 || (has('S') && runs_.front().symbol != 'S')) {
        return fail(last("S"), "S may occur only once, as the first symbol");
    }
    if (count('V') > 1) return fail(last("V"), "V may occur only once");
    if (count('9') + count('P') > MAX_DIGITS) {
        return fail(first("9P"), "a number has at most 38 digits");
    }
    picture.digits = static_cast<int>(count('9'));
    if (has('P')) return scale_with_p();
    bool after_point = false;
    for (const Run& run : runs_) {
        if (run.symbol == 'V' || run.symbol == '.') after_point = true;
        if (run.symbol == '9' && after_point) picture.scale -= static_cast<int>(run.count);
    }
    return true;
}

// P stands in one run: before the digits (the point is before it) or after them (the point is
// after it), with or without V on its outer side.
bool PictureAnalyser::scale_with_p() {
    Picture& picture = result_.picture;
    std::string order;
    for (const Run& run : runs_) {
        if (run.symbol != 'S') order += run.symbol;
    }
    const int p = static_cast<int>(count('P'));
    if (order == "P9" || order == "VP9") {
        picture.leading_p = p;
        picture.scale = -(p + picture.digits);
        return true;
    }
    if (order == "9P" || order == "9PV") {
        picture.scale = p;
        return true;
    }
    return fail(first("P"), "P must be before all digits or after all digits");
}

// A sign or currency symbol that stands more than once floats: all but one are digit places.
bool PictureAnalyser::is_floating(char symbol) const {
    return (symbol == '+' || symbol == '-' || symbol == CURRENCY) && count(symbol) > 1 && !has('E');
}

bool PictureAnalyser::numeric_edited() {
    Picture& picture = result_.picture;
    picture.category = Category::edited;
    picture.is_signed = has_any("+-") || has(CREDIT) || has(DEBIT);
    if (has('S')) return fail(first("S"), "S cannot stand with editing symbols");
    if (count('.') + count('V') > 1) return fail(last(".V"), "only one decimal point is allowed");
    if (!check_edited_signs() || !check_edited_order()) return false;
    std::int64_t digits = 0;
    std::int64_t decimals = 0;
    bool after_point = false;
    for (const Run& run : runs_) {
        if (run.symbol == '.' || run.symbol == 'V') after_point = true;
        if (run.symbol == 'E') break;
        const bool digit = std::string_view("9Z*").find(run.symbol) != std::string_view::npos ||
                           is_floating(run.symbol);
        if (!digit) continue;
        digits += run.count;
        if (after_point) decimals += run.count;
    }
    if (is_floating('+') || is_floating('-') || is_floating(CURRENCY)) --digits;
    if (digits < 1) return fail(0, "the picture has no digit position");
    if (digits + count('P') > MAX_DIGITS) return fail(0, "a number has at most 38 digits");
    picture.digits = static_cast<int>(digits);
    picture.scale = static_cast<int>(has('P') ? count('P') : -decimals);
    return true;
}

bool PictureAnalyser::check_edited_signs() {
    if (count(CREDIT) + count(DEBIT) > 1) {
        return fail(last("cd"), "CR or DB may occur only once");
    }
    const bool credit = has(CREDIT) || has(DEBIT);
    if (credit && runs_.back().symbol != CREDIT && runs_.back().symbol != DEBIT) {
        return fail(first("cd"), "CR and DB stand at the end");
    }
    if (credit && has_any("+-")) return fail(first("+-"), "a sign cannot stand with CR or DB");
    if (has('E')) return true;
    if (has('+') && has('-')) return fail(first("+-"), "+ and - cannot stand together");
    for (const char sign : {'+', '-'}) {
        if (count(sign) != 1 || runs_.front().symbol == sign || runs_.back().symbol == sign)
            continue;
        if (runs_.size() > 1 && runs_.front().symbol == CURRENCY && runs_[1].symbol == sign)
            continue;
        return fail(first(std::string_view(&sign, 1)),
                    "a sign must be at the beginning or the end");
    }
    return true;
}

bool PictureAnalyser::check_edited_order() {
    if (has('Z') && has('*')) return fail(first("Z*"), "Z and * cannot stand together");
    const int floating = int{is_floating('+')} + int{is_floating('-')} + int{is_floating(CURRENCY)};
    if (floating > 1) return fail(first("+-$"), "only one symbol can float");
    if (floating > 0 && has_any("Z*")) {
        return fail(first("Z*"), "Z and * cannot stand with a floating symbol");
    }
    bool digit_seen = false;
    for (const Run& run : runs_) {
        if (run.symbol == '9') digit_seen = true;
        const bool suppresses = run.symbol == 'Z' || run.symbol == '*';
        if (digit_seen && suppresses) return fail(run.offset, "Z and * stand before all 9");
    }
    return true;
}

}  // namespace

PictureResult analyse_picture(std::string_view text, const PictureOptions& options) {
    return PictureAnalyser(text, options).analyse();
}

}  // namespace records
