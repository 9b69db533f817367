#include "records/layout/record_test.h"

#include <iconv.h>

#include <algorithm>
#include <cstring>

namespace records {
namespace {

using Relation = Expression::Relation;

struct CodePage {
    std::array<std::uint8_t, 256> to_ebcdic{};
    std::array<std::uint8_t, 256> to_ascii{};
};

// The translation between ISO-8859-1 and EBCDIC code page 037.
CodePage make_code_page() {
    CodePage page;
    const iconv_t converter = iconv_open("IBM037", "ISO-8859-1");
    const bool is_open = reinterpret_cast<std::intptr_t>(converter) != -1;
    for (int i = 0; i < 256; ++i) {
        const auto code = static_cast<std::uint8_t>(i);
        char from = static_cast<char>(code);
        char to = from;
        char* in = &from;
        char* out = &to;
        std::size_t in_left = 1;
        std::size_t out_left = 1;
        if (is_open) {
            iconv(converter, &in, &in_left, &out, &out_left);
        }
        page.to_ebcdic[code] = static_cast<std::uint8_t>(to);
        page.to_ascii[static_cast<std::uint8_t>(to)] = code;
    }
    if (is_open) iconv_close(converter);
    return page;
}

const CodePage& code_page() {
    static const CodePage page = make_code_page();
    return page;
}

// Texts of a source in UTF-8 as ISO-8859-1, which the code page is told from; a text that is no
// UTF-8 or has other characters is taken as ISO-8859-1 already.
std::string latin_1(const std::string& text) {
    std::string latin;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        if (byte < 0x80) {
            latin += text[i];
            continue;
        }
        const int next = i + 1 < text.size() ? static_cast<std::uint8_t>(text[i + 1]) : 0;
        if ((byte != 0xC2 && byte != 0xC3) || (next & 0xC0) != 0x80) return text;
        latin += static_cast<char>((byte << 6 | (next & 0x3F)) & 0xFF);
        ++i;
    }
    return latin;
}

std::string in_encoding(std::string text, bool ebcdic) {
    if (!ebcdic) return text;
    text = latin_1(text);
    for (char& c : text) {
        c = static_cast<char>(code_page().to_ebcdic[static_cast<std::uint8_t>(c)]);
    }
    return text;
}

int hex_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string bytes_of_hex(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(hex_value(digits[i]) * 16 + hex_value(digits[i + 1]));
    }
    return bytes;
}

// The byte that a figurative constant consists of; -1 for a name that is none.
int figurative_byte(const std::string& name, bool ebcdic) {
    const auto character = [ebcdic](char c) {
        return static_cast<int>(static_cast<std::uint8_t>(in_encoding({c}, ebcdic)[0]));
    };
    if (name == "SPACE") return character(' ');
    if (name == "ZERO") return character('0');
    if (name == "QUOTE") return character('"');
    if (name == "HIGH-VALUE") return 0xFF;
    return name == "LOW-VALUE" || name == "NULL" ? 0 : -1;
}

bool is_number(const std::string& text) {
    const std::size_t start = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    bool digit = false;
    bool point = false;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (text[i] == '.' && !point) {
            point = true;
        } else if (text[i] >= '0' && text[i] <= '9') {
            digit = true;
        } else {
            return false;
        }
    }
    return digit;
}

bool is_numeric(const Operand& item) {
    return is_numeric_type(item.form.type);
}

bool is_display(const Operand& item) {
    return item.form.type >= DISPLAY_UNSIGNED && item.form.type <= DISPLAY_SIGN_LEADING_SEPARATE;
}

std::string digits_only(const std::string& number) {
    std::string digits;
    std::copy_if(number.begin(), number.end(), std::back_inserter(digits),
                 [](char c) { return c >= '0' && c <= '9'; });
    return digits;
}

// True when both sides are compared as numbers; otherwise their characters are compared.
bool compares_numbers(const Test& test) {
    if (!is_numeric(test.left)) return false;
    switch (test.right.kind) {
        case Operand::Kind::item:
            return is_numeric(test.right);
        case Operand::Kind::number:
            return true;
        case Operand::Kind::figurative:
            return test.right.value == "ZERO";
        case Operand::Kind::text:
            return !is_display(test.left);
        default:
            return false;
    }
}

// What an operand's place must fit: the record, in every table that the condition lies in.
struct Bounds {
    std::int64_t record_length;
    std::vector<std::int64_t> last_shift;  // of the last occurrence, by number of tables
};

std::string item_problem(const Operand& item, const Bounds& bounds) {
    if (item.kind != Operand::Kind::item) return "the left side must be an item";
    if (item.tables < 0 || static_cast<std::size_t>(item.tables) >= bounds.last_shift.size()) {
        return item.value + " lies in more tables than its condition";
    }
    const std::int64_t shift = bounds.last_shift[static_cast<std::size_t>(item.tables)];
    if (item.offset < 0 || item.length <= 0 ||
        item.offset + shift + item.length > bounds.record_length) {
        return item.value + " does not lie in the record";
    }
    return {};
}

std::string comparison_problem(const Test& test, const Bounds& bounds) {
    const Operand& right = test.right;
    switch (right.kind) {
        case Operand::Kind::item:
            return item_problem(right, bounds);
        case Operand::Kind::number:
            return is_number(right.value) ? "" : "\"" + right.value + "\" is no number";
        case Operand::Kind::figurative:
            return figurative_byte(right.value, false) >= 0
                       ? ""
                       : "\"" + right.value + "\" is no figurative constant";
        case Operand::Kind::hex: {
            const bool pairs = right.value.size() % 2 == 0 && !right.value.empty() &&
                               std::all_of(right.value.begin(), right.value.end(),
                                           [](char c) { return hex_value(c) >= 0; });
            return pairs ? "" : "X\"" + right.value + "\" must be pairs of hexadecimal digits";
        }
        case Operand::Kind::all:
            return right.value.empty() ? "ALL needs a text of at least one character" : "";
        case Operand::Kind::text:
            if (compares_numbers(test) && !is_number(right.value)) {
                return "\"" + right.value + "\" cannot be compared with the number " +
                       test.left.value;
            }
            return {};
    }
    return {};
}

std::string problem_of(const Test& test, const Bounds& bounds, int depth, std::size_t& parts) {
    if (depth > MAX_TEST_DEPTH || ++parts > MAX_TEST_PARTS) {
        return "the condition is nested too deep or has too many parts";
    }
    if (test.kind == Test::Kind::comparison || test.kind == Test::Kind::class_test) {
        std::string left = item_problem(test.left, bounds);
        if (!left.empty() || test.kind == Test::Kind::class_test) return left;
        return comparison_problem(test, bounds);
    }
    if (test.operands.empty()) return "the condition has an empty part";
    if (test.kind == Test::Kind::logical_not && test.operands.size() != 1) {
        return "NOT takes one condition";
    }
    for (const Test& each : test.operands) {
        std::string problem = problem_of(each, bounds, depth + 1, parts);
        if (!problem.empty()) return problem;
    }
    return {};
}

bool relation_holds(Relation relation, int order) {
    switch (relation) {
        case Relation::equal:
            return order == 0;
        case Relation::not_equal:
            return order != 0;
        case Relation::less:
            return order < 0;
        case Relation::less_equal:
            return order <= 0;
        case Relation::greater:
            return order > 0;
        case Relation::greater_equal:
            return order >= 0;
    }
    return false;
}

struct Bytes {
    const std::uint8_t* data;
    std::size_t length;
};

// Order of a text's rest against padding.
int compare_rest(Bytes rest, std::uint8_t pad) {
    for (std::size_t i = 0; i < rest.length; ++i) {
        if (rest.data[i] != pad) return rest.data[i] < pad ? -1 : 1;
    }
    return 0;
}

// As COBOL compares texts: the shorter one is taken to end in blanks.
int compare_padded(Bytes first, Bytes second, std::uint8_t pad) {
    const std::size_t common = std::min(first.length, second.length);
    const int order = std::memcmp(first.data, second.data, common);
    if (order != 0) return order;
    if (first.length > common) {
        return compare_rest({first.data + common, first.length - common}, pad);
    }
    return -compare_rest({second.data + common, second.length - common}, pad);
}

// Order against one byte sequence repeated as often as the text is long.
int compare_repeated(Bytes text, const std::string& sequence) {
    for (std::size_t i = 0; i < text.length; ++i) {
        const auto expected = static_cast<std::uint8_t>(sequence[i % sequence.size()]);
        if (text.data[i] != expected) return text.data[i] < expected ? -1 : 1;
    }
    return 0;
}

Bytes bytes_at(const Operand& item, const std::uint8_t* record,
               const std::vector<std::int32_t>& shifts) {
    return {record + item.offset + shifts[static_cast<std::size_t>(item.tables)],
            static_cast<std::size_t>(item.length)};
}

Decimal number_at(const Operand& item, Bytes bytes) {
    XfdDataDesc data{};
    data.address = const_cast<std::uint8_t*>(bytes.data);
    data.length = item.length;
    data.type = item.form.type;
    data.digits = static_cast<std::int8_t>(item.form.digits);
    data.scale = static_cast<std::int8_t>(item.form.scale);
    set_field_extra(data, {static_cast<std::int8_t>(item.form.stored_digits),
                           static_cast<std::int8_t>(item.form.stored_scale),
                           item.form.flags,
                           {}});
    Decimal number;
    decode_field(data, number);
    return number;
}

std::uint8_t ascii(std::uint8_t c, bool ebcdic) {
    return ebcdic ? code_page().to_ascii[c] : c;
}

bool is_ascii_digit(std::uint8_t c) {
    return c >= '0' && c <= '9';
}

// A digit that carries the sign, as cobc writes them or in EBCDIC's convention.
bool is_overpunched(std::uint8_t byte, bool ebcdic_bytes, bool ebcdic_sign) {
    if (ebcdic_bytes) return (byte & 0x0F) <= 9 && byte >= 0xC0;
    if (is_ascii_digit(byte)) return true;
    if (!ebcdic_sign) return byte >= 'p' && byte <= 'y';
    return byte == '{' || byte == '}' || (byte >= 'A' && byte <= 'R');
}

bool is_display_number(const Operand& item, Bytes bytes) {
    const FieldType type = item.form.type;
    const bool ebcdic = (item.form.flags & FIELD_EBCDIC_TEXT) != 0;
    const bool leading = type == DISPLAY_SIGN_LEADING || type == DISPLAY_SIGN_LEADING_SEPARATE;
    const std::size_t sign = leading ? 0 : bytes.length - 1;
    for (std::size_t i = 0; i < bytes.length; ++i) {
        const std::uint8_t c = ascii(bytes.data[i], ebcdic);
        if (i != sign || type == DISPLAY_UNSIGNED) {
            if (!is_ascii_digit(c)) return false;
        } else if (type == DISPLAY_SIGN_TRAILING || type == DISPLAY_SIGN_LEADING) {
            const bool sign_ebcdic = (item.form.flags & FIELD_EBCDIC_SIGN) != 0;
            if (!is_overpunched(bytes.data[i], ebcdic, sign_ebcdic)) return false;
        } else if (c != '+' && c != '-') {
            return false;
        }
    }
    return true;
}

bool is_packed_number(const Operand& item, Bytes bytes) {
    const bool with_sign = item.form.type != PACKED_NO_SIGN;
    for (std::size_t i = 0; i < bytes.length; ++i) {
        const int high = bytes.data[i] >> 4;
        const int low = bytes.data[i] & 0x0F;
        if (high > 9) return false;
        const bool last = with_sign && i + 1 == bytes.length;
        if (last ? low < 10 : low > 9) return false;
    }
    return true;
}

bool is_of_class(Expression::Class tested, const Operand& item, Bytes bytes, bool ebcdic) {
    const Bytes text = bytes;
    if (tested == Expression::Class::numeric && is_numeric(item)) {
        if (is_display(item)) return is_display_number(item, bytes);
        const bool packed = item.form.type >= PACKED_SIGNED && item.form.type <= PACKED_NO_SIGN;
        return !packed || is_packed_number(item, bytes);
    }
    return std::all_of(text.data, text.data + text.length, [&](std::uint8_t byte) {
        const std::uint8_t c = ascii(byte, ebcdic);
        if (tested == Expression::Class::numeric) return is_ascii_digit(c);
        return c == ' ' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

}  // namespace

std::string condition_problem(const Condition& condition, std::int32_t record_length) {
    Bounds bounds{record_length, {0}};
    for (const ConditionTable& table : condition.tables) {
        bounds.last_shift.push_back(bounds.last_shift.back() +
                                    static_cast<std::int64_t>(table.occurs - 1) * table.stride);
    }
    std::size_t parts = 0;
    return problem_of(condition.test, bounds, 1, parts);
}

RecordTest::RecordTest(const Test& test, bool ebcdic) : ebcdic_(ebcdic), root_(build(test)) {}

RecordTest::Part RecordTest::build(const Test& test) const {
    Part part;
    part.relation = test.relation;
    part.class_tested = test.class_tested;
    part.left = test.left;
    switch (test.kind) {
        case Test::Kind::comparison:
            build_comparison(test, part);
            return part;
        case Test::Kind::class_test:
            part.kind = Kind::is_class;
            return part;
        case Test::Kind::logical_and:
            part.kind = Kind::all_of;
            break;
        case Test::Kind::logical_or:
            part.kind = Kind::any_of;
            break;
        case Test::Kind::logical_not:
            part.kind = Kind::none_of;
            break;
    }
    for (const Test& each : test.operands) part.parts.push_back(build(each));
    return part;
}

void RecordTest::build_comparison(const Test& test, Part& part) const {
    const Operand& right = test.right;
    part.right = right;
    part.pad = static_cast<std::uint8_t>(in_encoding(" ", ebcdic_)[0]);
    part.right_is_item = right.kind == Operand::Kind::item;
    if (compares_numbers(test)) {
        part.kind = Kind::numbers;
        if (part.right_is_item) return;
        part.number = std::make_unique<Decimal>();
        if (right.kind != Operand::Kind::figurative) parse_number(right.value, *part.number);
        return;
    }
    switch (right.kind) {
        case Operand::Kind::item:
            return;
        case Operand::Kind::hex:
            part.constant = bytes_of_hex(right.value);
            break;
        case Operand::Kind::figurative:
            part.constant = static_cast<char>(figurative_byte(right.value, ebcdic_));
            break;
        case Operand::Kind::number:
            part.constant = in_encoding(digits_only(right.value), ebcdic_);
            break;
        default:
            part.constant = in_encoding(right.value, ebcdic_);
    }
    const bool equality = test.relation == Relation::equal || test.relation == Relation::not_equal;
    if (part.left.length == 1 && part.constant.size() == 1 && equality) {
        part.kind = Kind::byte_equal;
    }
}

bool RecordTest::holds(const std::uint8_t* record, const std::vector<std::int32_t>& shifts) const {
    return holds(root_, record, shifts, ebcdic_);
}

bool RecordTest::holds(const Part& part, const std::uint8_t* record,
                       const std::vector<std::int32_t>& shifts, bool ebcdic) {
    const auto each = [&](const Part& inner) { return holds(inner, record, shifts, ebcdic); };
    switch (part.kind) {
        case Kind::all_of:
            return std::all_of(part.parts.begin(), part.parts.end(), each);
        case Kind::any_of:
            return std::any_of(part.parts.begin(), part.parts.end(), each);
        case Kind::none_of:
            return std::none_of(part.parts.begin(), part.parts.end(), each);
        default:
            break;
    }
    const Bytes left = bytes_at(part.left, record, shifts);
    if (part.kind == Kind::byte_equal) {
        const bool same = left.data[0] == static_cast<std::uint8_t>(part.constant[0]);
        return same == (part.relation == Relation::equal);
    }
    if (part.kind == Kind::is_class) {
        return is_of_class(part.class_tested, part.left, left, ebcdic);
    }
    if (part.kind == Kind::numbers) {
        const Decimal first = number_at(part.left, left);
        const int order =
            part.number
                ? compare(first, *part.number)
                : compare(first, number_at(part.right, bytes_at(part.right, record, shifts)));
        return relation_holds(part.relation, order);
    }
    if (part.right_is_item) {
        const Bytes right = bytes_at(part.right, record, shifts);
        return relation_holds(part.relation, compare_padded(left, right, part.pad));
    }
    const bool repeated =
        part.right.kind == Operand::Kind::figurative || part.right.kind == Operand::Kind::all;
    const Bytes constant{reinterpret_cast<const std::uint8_t*>(part.constant.data()),
                         part.constant.size()};
    return relation_holds(part.relation, repeated ? compare_repeated(left, part.constant)
                                                  : compare_padded(left, constant, part.pad));
}

}  // namespace records
