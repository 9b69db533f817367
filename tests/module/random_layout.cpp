#include "tests/module/random_layout.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string_view>

#include "records/field_types.h"
#include "records/numbers.h"

namespace {

constexpr int MOST_DIMENSIONS = 3;
constexpr const char* KINDS = "ABC";
constexpr std::string_view WHITE_SPACE = " \t\r\n";

// The letter stands first in every layout.
bool is_kind(const XfdItem& item) {
    return item.offset == 0;
}

bool is_binary(int type) {
    return type >= records::BINARY_SIGNED && type <= records::NATIVE_UNSIGNED;
}

// Calls `use` for each field that the record has, those that every record has first.
void for_each_field(Xfd& xfd, const std::string& record, const std::function<void(XfdItem&)>& use) {
    for (int condition = 0; condition <= xfd.condition_count; ++condition) {
        if (condition > 0) {
            Q4TestCOBOLCond(&xfd, condition, record.data());
            if ((xfd.conditions[condition - 1].is_true & 1) == 0) continue;
        }
        for (int i = 0; i < xfd.item_count; ++i) {
            if (xfd.items[i].condition == condition) use(xfd.items[i]);
        }
    }
}

std::string hexadecimal(std::string_view bytes) {
    std::string text;
    char digits[3];
    for (const char byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(byte));
        text += digits;
    }
    return text;
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(WHITE_SPACE);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(WHITE_SPACE) + 1 - first);
}

}  // namespace

LayoutChoices RandomLayout::choices() {
    records::LayoutOptions& options = choices_.options;
    options.name_case = static_cast<records::NameCase>(below(3));
    options.binary_size =
        one_in(3) ? records::BinarySize::by_digits_248 : records::BinarySize::by_digits_1248;
    options.binary_truncate = !one_in(3);
    options.filler = one_in(4);
    options.ebcdic_sign = one_in(3);
    choices_.decimal_comma = one_in(4);
    choices_.latin1 = one_in(4);
    return choices_;
}

void RandomLayout::line(int level, const std::string& text) {
    text_ += "       " + std::string(static_cast<std::size_t>(std::min(level, 9)), ' ') +
             (level < 10 ? "0" : "") + std::to_string(level) + " " + text + ".\n";
}

std::string RandomLayout::occurs(int dimensions) {
    return " OCCURS " + std::to_string(2 + below(dimensions > 0 ? 2 : 5));
}

std::string RandomLayout::display() {
    switch (below(8)) {
        case 0:
            return "PIC S9(" + number(1, 38) + ")";
        case 1:
            return "PIC S9(" + number(1, 9) + ")V9(" + number(1, 9) + ") SIGN LEADING";
        case 2:
            return "PIC S9(" + number(1, 9) + ") SIGN TRAILING SEPARATE";
        case 3:
            return "PIC SV9(" + number(1, 9) + ") SIGN LEADING SEPARATE";
        case 4:
            return "PIC 9(" + number(1, 9) + ")PPP";
        case 5:
            return "PIC VPP9(" + number(1, 9) + ")";
        case 6:
            return "PIC 9(" + number(1, 9) + ")V99 BLANK WHEN ZERO";
        default:
            return "PIC 9(" + number(1, 38) + ")";
    }
}

std::string RandomLayout::binary() {
    constexpr const char* SIZED[] = {"BINARY-CHAR", "BINARY-SHORT", "BINARY-LONG", "BINARY-DOUBLE"};
    constexpr const char* SIGNS[] = {"", " SIGNED", " UNSIGNED"};
    constexpr const char* PICTURED[] = {"COMP", "BINARY", "COMP-5", "COMP-X"};
    switch (below(6)) {
        case 0:
            return std::string(SIZED[below(4)]) + SIGNS[below(3)];
        case 1:
            return "INDEX";
        case 2:
            return "PIC X(" + number(1, 8) + ") COMP-X";
        default:
            break;
    }
    std::string picture = one_in(2) ? "PIC S9(" : "PIC 9(";
    switch (below(4)) {
        case 0:
            picture += number(1, 9) + ")V9(" + number(1, 9) + ")";
            break;
        case 1:
            picture += number(1, 9) + ")P(" + number(1, 5) + ")";
            break;
        default:
            picture += number(1, 18) + ")";
    }
    return picture + " " + PICTURED[below(4)] + (one_in(4) ? " SYNC" : "");
}

std::string RandomLayout::characters() {
    constexpr const char* EDITED[] = {"ZZ9.99-",    "$$,$$9.99CR", "X(3)/X(2)",
                                      "9(4)/99/99", "+(5)9",       "*(4)9,9DB"};
    switch (below(10)) {
        case 0:
            return std::string("PIC ") + EDITED[below(6)];
        case 1:
            return "PIC A(" + number(1, 9) + ")";
        case 2:
            return "PIC X(" + number(2, 20) + ") JUSTIFIED RIGHT";
        case 3:
            return "PIC N(" + number(1, 9) + ")";
        case 4:
            return one_in(4) ? "PIC X(600)" : "PIC 9(" + number(1, 9) + ") NATIONAL";
        default:
            return "PIC X(" + number(1, 12) + ")";
    }
}

std::string RandomLayout::usage() {
    switch (below(16)) {
        case 0:
            return "PIC S9(" + number(1, 38) + ") COMP-3";
        case 1:
            return "PIC 9(" + number(1, 9) + ")V9(" + number(1, 9) + ") COMP-3";
        case 2:
            return "PIC S9(" + number(1, 9) + ")PP PACKED-DECIMAL";
        case 3:
            return "PIC 9(" + number(1, 17) + ") COMP-6";
        case 4:
            return one_in(2) ? "COMP-1" : "FLOAT-SHORT SYNC";
        case 5:
            return one_in(2) ? "COMP-2" : "FLOAT-LONG";
        case 6:
            return one_in(2) ? "POINTER" : "POINTER SYNC";
        default:
            break;
    }
    switch (below(3)) {
        case 0:
            return display();
        case 1:
            return binary();
        default:
            return characters();
    }
}

// A group and a redefinition of it; each counts while the letter at the record's start is its own.
void RandomLayout::variants(int level) {
    const std::string first = "V-" + std::to_string(++groups_);
    const std::string second = "V-" + std::to_string(++groups_);
    text_ += "      *> sxml: when KIND = \"A\"\n";
    line(level, first);
    line(level + 1, "F-1 PIC X(12)");
    line(level + 1, "F-2 PIC 9(4)");
    text_ += "      *> sxml: when KIND = \"B\"\n";
    line(level, second + " REDEFINES " + first);
    line(level + 1, "F-1 PIC S9(5) COMP-3");
    line(level + 1, "F-3 PIC X(2)" + occurs(0));
}

void RandomLayout::item(int level, int dimensions, const std::string& name) {
    --items_left_;
    const bool nests = level < 6 && items_left_ > 0 && one_in(3);
    const bool repeats = dimensions < MOST_DIMENSIONS && one_in(3);
    const std::string clause = repeats ? occurs(dimensions) : "";
    if (!nests) {
        if (one_in(25)) text_ += "      *> sxml: hex\n";
        line(level, name + " " + usage() + clause);
        return;
    }
    line(level, "G-" + std::to_string(++groups_) + clause);
    group_items(level + 1, dimensions + (repeats ? 1 : 0), 1 + below(4));
}

void RandomLayout::group_items(int level, int dimensions, int names) {
    for (int i = 1; i <= names; ++i) item(level, dimensions, "F-" + std::to_string(i));
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

void RandomLayout::fill_text(const XfdItem& field, std::string& record) {
    constexpr std::string_view UTF8[] = {
        "a",  "Z",   "0",    " ",        "\t",           "\n",
        "\r", "<",   ">",    "&",        "\"",           "'",
        ".",  "]]>", "\x7F", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"};
    constexpr std::string_view LATIN1[] = {"a",  "Z",   "0",    " ",    "\t",   "\n",
                                           "\r", "<",   ">",    "&",    "\"",   "'",
                                           ".",  "]]>", "\x7F", "\xE9", "\xA0", "\xFF"};
    const auto length = static_cast<std::size_t>(field.data.length);
    const auto used = static_cast<std::size_t>(below(field.data.length + 1));
    std::string text;
    while (text.size() < used) {
        const int choice = below(static_cast<int>(std::size(UTF8)));
        const std::string_view character = choices_.latin1 ? LATIN1[choice] : UTF8[choice];
        text += text.size() + character.size() <= length ? character : "e";
    }
    const std::string blanks(length - text.size(), ' ');
    const bool right = field.data.type == records::JUSTIFIED || one_in(16);
    record.replace(static_cast<std::size_t>(field.offset), length,
                   right ? blanks + text : text + blanks);
}

// Bytes of any value, often those of the smallest and the largest numbers.
void RandomLayout::fill_bytes(const XfdItem& field, std::string& record) {
    const int edge = below(8);
    std::string bytes(static_cast<std::size_t>(field.data.length), '\0');
    for (char& byte : bytes) {
        if (edge > 0) byte = static_cast<char>(edge == 1 ? 0xFF : below(256));
    }
    if (edge < 2 && one_in(2)) (one_in(2) ? bytes.front() : bytes.back()) ^= '\x80';
    record.replace(static_cast<std::size_t>(field.offset), bytes.size(), bytes);
}

template <typename Float>
void RandomLayout::fill_float(const XfdItem& field) {
    Float value;
    do {
        const std::uint64_t bits = random_();
        std::memcpy(&value, &bits, sizeof value);
    } while (!std::isfinite(value) ||
             (sizeof value == 8 && (std::abs(value) < 1e-100 || std::abs(value) > 1e100)));
    if (one_in(3)) value = static_cast<Float>(below(2'000'001) - 1'000'000) * Float(0.37);
    if (one_in(10)) value = std::copysign(Float(0), value);
    std::memcpy(field.data.address, &value, sizeof value);
}

void RandomLayout::fill_number(const XfdItem& field) {
    const records::FieldExtra extra = records::field_extra(field.data);
    records::Decimal number;
    number.count = extra.digits != 0 ? extra.digits : field.data.digits;
    number.scale = extra.digits != 0 ? extra.scale : field.data.scale;
    const int edge = below(12);
    for (int i = 0; i < number.count; ++i) {
        const int digit = edge < 2 ? 0 : edge == 2 ? 9 : below(10);
        number.digits[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(digit);
    }
    number.negative = one_in(2);
    records::encode_field(number, field.data);
}

void RandomLayout::fill(XfdItem& field, std::string& record) {
    field.data.address = record.data() + field.offset;
    const bool truncated = (records::field_extra(field.data).flags & records::FIELD_TRUNCATE) != 0;
    if (field.format == XFD_FORMAT_BINARY || (is_binary(field.data.type) && !truncated)) {
        fill_bytes(field, record);
    } else if (!is_numeric_type(field.data.type)) {
        fill_text(field, record);
    } else if (field.data.type != records::FLOAT_NATIVE) {
        fill_number(field);
    } else if (field.data.length == sizeof(float)) {
        fill_float<float>(field);
    } else {
        fill_float<double>(field);
    }
}

std::string RandomLayout::record(records::Description& description) {
    std::string record(static_cast<std::size_t>(description.record_length()), ' ');
    // The letter first: it decides which layout the record is of.
    record[0] = KINDS[below(3)];
    for_each_field(description.xfd(), record, [&](XfdItem& field) {
        if (!is_kind(field)) fill(field, record);
    });
    return record;
}

std::string RandomLayout::returned(records::Description& description, const std::string& record) {
    std::string result = record;
    for_each_field(description.xfd(), record, [&](const XfdItem& field) {
        const bool hex = field.format == XFD_FORMAT_BINARY;
        if (!hex && is_numeric_type(field.data.type)) return;
        const auto offset = static_cast<std::size_t>(field.offset);
        const auto length = static_cast<std::size_t>(field.data.length);
        std::string text = record.substr(offset, length);
        text = hex ? hexadecimal(text) : trimmed(text);
        text.resize(length, ' ');
        result.replace(offset, length, text);
    });
    return result;
}
