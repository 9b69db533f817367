#include "records/alignment.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

namespace records {
namespace {

constexpr int MAX_BLANKS = std::numeric_limits<std::uint8_t>::max();

// A symbol of a picture and how often it stands there: "Z(5)". CR and DB are one symbol each.
struct Symbol {
    char letter;  // C for CR, D for DB
    int count;
};

// Count in parentheses at the start of `text`, which is cut off; 1 when there is none, and more
// than any field has when it cannot be told.
int take_count(std::string_view& text) {
    if (!text.starts_with('(')) return 1;
    const std::size_t end = text.find(')');
    int count = 0;
    for (const char c : text.substr(1, end == std::string_view::npos ? end : end - 1)) {
        const bool is_digit = c >= '0' && c <= '9';
        count = is_digit && count <= MAX_BLANKS ? count * 10 + (c - '0') : MAX_BLANKS + 1;
    }
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return count;
}

std::vector<Symbol> symbols_of(std::string_view picture) {
    std::vector<Symbol> symbols;
    while (!picture.empty()) {
        const char letter = picture.front();
        const bool is_pair = picture.starts_with("CR") || picture.starts_with("DB");
        picture.remove_prefix(is_pair ? 2 : 1);
        const int count = take_count(picture);
        if (!symbols.empty() && symbols.back().letter == letter) {
            symbols.back().count += count;
        } else {
            symbols.push_back({letter, count});
        }
    }
    return symbols;
}

std::uint8_t blanks_of(const Symbol& symbol) {
    return static_cast<std::uint8_t>(symbol.letter == 'B' ? std::min(symbol.count, MAX_BLANKS) : 0);
}

// A number ends at the right edge, except for blanks and for a sign that only shows when needed. A
// sign that stands alone does not float.
FieldEdges edges_of_number(std::vector<Symbol> symbols) {
    FieldEdges edges{1, 0, 0, 0};
    const auto take_blanks = [&symbols] {
        const std::uint8_t blanks = symbols.empty() ? std::uint8_t{0} : blanks_of(symbols.back());
        if (blanks > 0) symbols.pop_back();
        return blanks;
    };
    edges.blanks = take_blanks();
    if (symbols.empty()) return edges;
    const Symbol last = symbols.back();
    const bool is_letters = last.letter == 'C' || last.letter == 'D';
    if (!is_letters && (last.letter != '-' || last.count > 1)) return edges;
    symbols.pop_back();
    edges.sign_width = is_letters ? 2 : 1;
    edges.sign_gap = take_blanks();
    return edges;
}

bool ends_with_sign(std::string_view text, int width) {
    if (width == 1) return text.ends_with('-');
    return text.ends_with("CR") || text.ends_with("DB");
}

}  // namespace

FieldEdges edges_of(FieldType type, std::string_view picture) {
    if (type == JUSTIFIED) return {1, 0, 0, 0};
    if (type != EDITED || picture.empty()) return {};
    const std::vector<Symbol> symbols = symbols_of(picture);
    if (picture.find_first_of("XA") == std::string_view::npos) return edges_of_number(symbols);
    return {0, blanks_of(symbols.front()), 0, 0};
}

void align_field(const XfdItem& field, std::uint8_t* record) {
    const FieldEdges edges = field_extra(field.data).edges;
    if (edges.is_right == 0 && edges.blanks == 0) return;
    auto* const start = reinterpret_cast<char*>(record + field.offset);
    const std::string_view whole(start, static_cast<std::size_t>(field.data.length));
    const std::size_t first = whole.find_first_not_of(' ');
    if (first == std::string_view::npos) return;
    const std::string_view text = whole.substr(first, whole.find_last_not_of(' ') + 1 - first);
    std::size_t blanks = edges.blanks;
    if (edges.sign_width > 0 && !ends_with_sign(text, edges.sign_width)) {
        blanks += static_cast<std::size_t>(edges.sign_width) + edges.sign_gap;
    }
    if (text.size() + blanks > whole.size()) return;
    const std::size_t at = edges.is_right != 0 ? whole.size() - blanks - text.size() : blanks;
    const std::size_t length = text.size();
    std::memmove(start + at, text.data(), length);
    std::fill(start, start + at, ' ');
    std::fill(start + at + length, start + whole.size(), ' ');
}

}  // namespace records
