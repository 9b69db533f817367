#include "tests/module/random_layout.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "host/records/field_types.h"
#include "host/records/numbers.h"

namespace {

constexpr int MOST_DIMENSIONS = 3;
constexpr const char* KINDS = "ABC";

bool is_kind(const XfdItem& item) {
    return std::string_view(item.name) == "kind";
}

}  // namespace

void RandomLayout::line(int level, const std::string& text) {
    text_ += "       " + std::string(static_cast<std::size_t>(std::min(level, 9)), ' ') +
             (level < 10 ? "0" : "") + std::to_string(level) + " " + text + ".\n";
}

std::string RandomLayout::occurs(int dimensions) {
    // A table of one inside or around another one loses its number, and with that its place.
    return " OCCURS " + std::to_string(2 + below(dimensions > 0 ? 2 : 5));
}

std::string RandomLayout::usage() {
    const auto n = [this](int least, int most) {
        return std::to_string(least + below(most - least + 1));
    };
    switch (below(18)) {
        case 0:
            return "PIC 9(" + n(1, 18) + ")";
        case 1:
            return "PIC S9(" + n(1, 18) + ")";
        case 2:
            return "PIC S9(" + n(1, 9) + ")V9(" + n(1, 9) + ") SIGN LEADING";
        case 3:
            return "PIC S9(" + n(1, 9) + ") SIGN TRAILING SEPARATE";
        case 4:
            return "PIC SV9(" + n(1, 9) + ") SIGN LEADING SEPARATE";
        case 5:
            return "PIC S9(" + n(1, 31) + ") COMP-3";
        case 6:
            return "PIC 9(" + n(1, 9) + ")V9(" + n(1, 9) + ") COMP-3";
        case 7:
            return "PIC S9(" + n(1, 18) + ") COMP";
        case 8:
            return "PIC 9(" + n(1, 9) + ")V9(" + n(1, 9) + ") BINARY";
        case 9:
            return "PIC S9(" + n(1, 18) + ") COMP-5";
        case 10:
            return "COMP-1";
        case 11:
            return "COMP-2";
        case 12:
            return "PIC 9(" + n(1, 9) + ")PPP";
        case 13:
            return "PIC VPP9(" + n(1, 9) + ")";
        case 14:
            return "PIC 9(" + n(1, 17) + ") COMP-6";
        default:
            return "PIC X(" + n(1, 12) + ")";
    }
}

// A group and a redefinition of it; each counts while the letter at the record's start is its own.
void RandomLayout::variants(int level) {
    const std::string first = "V" + std::to_string(++groups_);
    const std::string second = "V" + std::to_string(++groups_);
    text_ += "      *> sxml: when KIND = \"A\"\n";
    line(level, first);
    line(level + 1, "F1 PIC X(12)");
    line(level + 1, "F2 PIC 9(4)");
    text_ += "      *> sxml: when KIND = \"B\"\n";
    line(level, second + " REDEFINES " + first);
    line(level + 1, "F1 PIC S9(5) COMP-3");
    line(level + 1, "F3 PIC X(2)" + occurs(0));
}

void RandomLayout::item(int level, int dimensions, const std::string& name) {
    --items_left_;
    const bool nests = level < 6 && items_left_ > 0 && one_in(3);
    const bool repeats = dimensions < MOST_DIMENSIONS && one_in(3);
    const std::string clause = repeats ? occurs(dimensions) : "";
    if (!nests) {
        line(level, name + " " + usage() + clause);
        return;
    }
    line(level, "G" + std::to_string(++groups_) + clause);
    group_items(level + 1, dimensions + (repeats ? 1 : 0), 1 + below(4));
}

void RandomLayout::group_items(int level, int dimensions, int names) {
    for (int i = 1; i <= names; ++i) item(level, dimensions, "F" + std::to_string(i));
    if (one_in(4)) line(level, "FILLER PIC X(3)");
}

void RandomLayout::layout(int number, bool several) {
    if (several) {
        text_ += std::string("      *> sxml: when KIND OF R") + std::to_string(number) + " = \"" +
                 KINDS[number] + "\"\n";
    }
    line(1, "R" + std::to_string(number));
    line(5, "KIND PIC X");
    group_items(5, 0, 1 + below(6));
    if (!several && one_in(3)) variants(5);
}

std::string RandomLayout::copybook() {
    text_.clear();
    groups_ = 0;
    items_left_ = 25;
    const bool several = one_in(3);
    const int layouts = several ? 2 + below(2) : 1;
    for (int i = 0; i < layouts; ++i) layout(i, several);
    return text_;
}

void RandomLayout::fill_text(XfdItem& field, std::string& record) {
    constexpr std::string_view CHARACTERS = "abcXYZ019 <>&\"'.-\xC3\xA9\t";
    const auto length = static_cast<std::size_t>(field.data.length);
    std::string text(length, ' ');
    const auto used = static_cast<std::size_t>(below(field.data.length + 1));
    for (std::size_t i = 0; i < used; ++i) {
        // The two bytes of one character of UTF-8 stay together.
        const auto choice = static_cast<std::size_t>(below(17 + (i > 0 ? 3 : 0)));
        const char c = i == 0 && CHARACTERS[choice] == ' ' ? '!' : CHARACTERS[choice];
        const bool wide = c == '\xC3' || c == '\xA9';
        if (!wide) {
            text[i] = c;
        } else if (i + 1 < used) {
            text.replace(i++, 2, "\xC3\xA9");
        } else {
            text[i] = 'e';
        }
    }
    // White space at the end would be trimmed.
    const std::size_t last = text.find_last_not_of(' ');
    if (last != std::string::npos && text[last] == '\t') text[last] = '_';
    record.replace(static_cast<std::size_t>(field.offset), length, text);
}

void RandomLayout::fill_float(XfdItem& field) {
    const double value = (below(2'000'001) - 1'000'000) * (one_in(2) ? 0.37 : 1e10);
    if (field.data.length == sizeof(float)) {
        const auto narrow = static_cast<float>(value);
        std::memcpy(field.data.address, &narrow, sizeof narrow);
    } else {
        std::memcpy(field.data.address, &value, sizeof value);
    }
}

void RandomLayout::fill(XfdItem& field, std::string& record) {
    if (!is_numeric_type(field.data.type)) return fill_text(field, record);
    field.data.address = record.data() + field.offset;
    if (field.data.type == records::FLOAT_NATIVE) return fill_float(field);
    const records::FieldExtra extra = records::field_extra(field.data);
    records::Decimal number;
    number.count = extra.digits != 0 ? extra.digits : field.data.digits;
    number.scale = extra.digits != 0 ? extra.scale : field.data.scale;
    const bool zero = one_in(6);
    for (int i = 0; i < number.count; ++i) {
        number.digits[static_cast<std::size_t>(i)] =
            static_cast<std::uint8_t>(zero ? 0 : below(10));
    }
    number.negative = one_in(2);
    records::encode_field(number, field.data);
}

std::string RandomLayout::record(records::Description& description) {
    Xfd& xfd = description.xfd();
    std::string record(static_cast<std::size_t>(description.record_length()), ' ');
    // The letter first: it decides which layout the record is of.
    record[0] = KINDS[below(3)];
    for (int condition = 0; condition <= xfd.condition_count; ++condition) {
        if (condition > 0) {
            Q4TestCOBOLCond(&xfd, condition, record.data());
            if ((xfd.conditions[condition - 1].is_true & 1) == 0) continue;
        }
        for (int i = 0; i < xfd.item_count; ++i) {
            XfdItem& field = xfd.items[i];
            if (field.condition == condition && !is_kind(field)) fill(field, record);
        }
    }
    return record;
}
