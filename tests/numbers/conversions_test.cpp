// Texts into fields and fields into texts, good and bad ones, through Qconvert.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "records/numbers/fields.h"
#include "records/numbers/number_text.h"
#include "records/numbers/quick_number.h"
#include "records/numbers/quick_text.h"
#include "tests/numbers/number_field.h"

namespace {

using namespace records;
using number_tests::FieldSpec;
using number_tests::NumberField;

std::string to_hex(std::string_view bytes) {
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += "0123456789ABCDEF"[byte >> 4];
        hex += "0123456789ABCDEF"[byte & 15];
    }
    return hex;
}

std::string from_hex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
    }
    return bytes;
}

constexpr FieldSpec DISPLAY_5{DISPLAY_UNSIGNED, 5, 0, 5};
constexpr FieldSpec MONEY{DISPLAY_SIGN_TRAILING, 5, -2, 5};
constexpr FieldSpec TRAILING{DISPLAY_SIGN_TRAILING, 3, 0, 3};
constexpr FieldSpec TRAILING_E{DISPLAY_SIGN_TRAILING, 3, 0, 3, FIELD_EBCDIC_SIGN};
constexpr FieldSpec EBCDIC{DISPLAY_SIGN_TRAILING, 3, 0, 3, FIELD_EBCDIC_TEXT};
constexpr FieldSpec EBCDIC_SEPARATE{DISPLAY_SIGN_LEADING_SEPARATE, 3, 0, 4, FIELD_EBCDIC_TEXT};
constexpr FieldSpec LEADING{DISPLAY_SIGN_LEADING, 3, 0, 3};
constexpr FieldSpec SEPARATE{DISPLAY_SIGN_TRAILING_SEPARATE, 3, 0, 4};
constexpr FieldSpec BLANK_ZERO{DISPLAY_UNSIGNED, 3, 0, 3, FIELD_BLANK_WHEN_ZERO};
constexpr FieldSpec COMMA{DISPLAY_SIGN_TRAILING, 4, -2, 4, FIELD_DECIMAL_COMMA};
constexpr FieldSpec POINT{DISPLAY_SIGN_TRAILING, 3, -2, 4, FIELD_STORED_POINT};
constexpr FieldSpec POINT_SEPARATE{DISPLAY_SIGN_TRAILING_SEPARATE, 3, -1, 5, FIELD_STORED_COMMA};
constexpr FieldSpec POINT_EBCDIC{DISPLAY_SIGN_LEADING, 2, -2, 3,
                                 FIELD_STORED_POINT | FIELD_EBCDIC_TEXT | FIELD_BLANK_WHEN_ZERO};
constexpr FieldSpec FRACTION{PACKED_SIGNED, 2, -2, 2};
constexpr FieldSpec PACKED_7_2{PACKED_SIGNED, 7, -2, 4};
constexpr FieldSpec PACKED_4{PACKED_SIGNED, 4, 0, 3};
constexpr FieldSpec PACKED_U{PACKED_UNSIGNED, 3, 0, 2};
constexpr FieldSpec COMP_6{PACKED_NO_SIGN, 3, 0, 2};
constexpr FieldSpec COMP_4{BINARY_SIGNED, 4, 0, 2, FIELD_TRUNCATE};
constexpr FieldSpec COMP_5{NATIVE_SIGNED, 5, 0, 2};
constexpr FieldSpec COMP_5U{NATIVE_UNSIGNED, 5, 0, 2};
constexpr FieldSpec BINARY_16{BINARY_UNSIGNED, 39, 0, 16};
constexpr FieldSpec SCALED_UP{DISPLAY_UNSIGNED, 2, 3, 2};
constexpr FieldSpec SCALED_DOWN{DISPLAY_SIGN_TRAILING, 2, -4, 2};
constexpr FieldSpec FLOAT_SHORT_TEXT{FLOAT_NATIVE, 5, -3, 4};
constexpr FieldSpec FLOAT{FLOAT_NATIVE, 47, -46, 4};
constexpr FieldSpec DOUBLE{FLOAT_NATIVE, 127, -126, 8};

// In the order in which a row is read. NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct StoreCase {
    FieldSpec field;
    const char* text;
    const char* hex;  // the field's bytes afterwards
    bool ok;          // otherwise one data exception is counted
};

const StoreCase STORE_CASES[] = {
    {DISPLAY_5, "12345", "3132333435", true},
    {DISPLAY_5, " \t\r\n +00007 \n", "3030303037", true},
    {DISPLAY_5, "1e3", "3031303030", true},
    {DISPLAY_5, "12.5E+1", "3030313235", true},
    {DISPLAY_5, "4711e-2", "3030303437", true},
    {DISPLAY_5, "0e99999999999999999999", "3030303030", true},
    {DISPLAY_5, "1e99999999999999999999", "3030303030", false},
    {DISPLAY_5, "1e-99999999999999999999", "3030303030", true},
    {DISPLAY_5, "9876543", "3736353433", false},
    {POINT, "-1.2", "312E3270", true},
    {POINT, "31.239", "312E3233", false},
    {POINT_SEPARATE, "-12.3", "31322C332D", true},
    {POINT_EBCDIC, "0.12", "4BC1F2", true},
    {POINT_EBCDIC, "0", "404040", true},
    {DISPLAY_5, "-12", "3030303132", false},
    {DISPLAY_5, "", "3030303030", false},
    {DISPLAY_5, "   ", "3030303030", false},
    {DISPLAY_5, "+", "3030303030", false},
    {DISPLAY_5, ".", "3030303030", false},
    {DISPLAY_5, "1e", "3030303030", false},
    {DISPLAY_5, "1e+", "3030303030", false},
    {DISPLAY_5, "12 3", "3030303030", false},
    {DISPLAY_5, "1,5", "3030303030", false},
    {DISPLAY_5, "0x10", "3030303030", false},
    {DISPLAY_5, "twelve", "3030303030", false},
    {MONEY, ".5", "3030303530", true},
    {MONEY, "-12.349", "3031323374", true},
    {MONEY, "-.001", "3030303070", true},
    {MONEY, "-0", "3030303070", true},
    {MONEY, "1234", "3233343030", false},
    {TRAILING, "123", "313233", true},
    {TRAILING, "-120", "313270", true},
    {TRAILING_E, "120", "31327B", true},
    {TRAILING_E, "-120", "31327D", true},
    {TRAILING_E, "129", "313249", true},
    {TRAILING_E, "-129", "313252", true},
    {EBCDIC, "129", "F1F2C9", true},
    {EBCDIC, "-120", "F1F2D0", true},
    {EBCDIC_SEPARATE, "-7", "60F0F0F7", true},
    {LEADING, "-123", "713233", true},
    {SEPARATE, "-1", "3030312D", true},
    {BLANK_ZERO, "-0.0", "202020", true},
    {COMMA, "1,25", "30313235", true},
    {COMMA, "-1.25", "30313275", true},
    {PACKED_7_2, "-12345.67", "1234567D", true},
    {PACKED_7_2, "1234567.891", "3456789C", false},
    {PACKED_7_2, "-0.00", "0000000D", true},
    {PACKED_4, "98765", "08765C", false},
    {PACKED_U, "123", "123F", true},
    {PACKED_U, "-123", "123F", false},
    {COMP_6, "9123", "0123", false},
    {COMP_4, "-12345", "F6D7", false},
    {COMP_4, "-9999", "D8F1", true},
    {COMP_5, "-32768", "0080", true},
    {COMP_5, "32768", "0080", false},
    {COMP_5U, "65535", "FFFF", true},
    {COMP_5U, "65537", "0100", false},
    {COMP_5U, "-1", "0100", false},
    {BINARY_16, "340282366920938463463374607431768211455", "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF",
     true},
    {BINARY_16, "340282366920938463463374607431768211457", "00000000000000000000000000000001",
     false},
    {SCALED_UP, "12999", "3132", true},
    {SCALED_DOWN, "-.0012", "3172", true},
    {FLOAT, "1.5", "0000C03F", true},
    {FLOAT, "-0", "00000080", true},
    {FLOAT, "1e-400", "00000000", true},
    {FLOAT, "-1e39", "FFFF7FFF", false},
    {DOUBLE, "0.1", "9A9999999999B93F", true},
};

TEST(Qconvert, StoresTexts) {
    for (const StoreCase& store : STORE_CASES) {
        SCOPED_TRACE(std::string("type ") + std::to_string(store.field.type) + " " + store.text);
        NumberField field(store.field);
        reset_data_exceptions();
        EXPECT_EQ(field.from_text(store.text), store.ok);
        EXPECT_EQ(to_hex(field.bytes()), store.hex);
        EXPECT_EQ(data_exceptions(), store.ok ? 0U : 1U);
    }
}

// In the order in which a row is read. NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct ReadCase {
    FieldSpec field;
    const char* hex;
    const char* text;
    bool ok;
};

const ReadCase READ_CASES[] = {
    {DISPLAY_5, "3030303037", "7", true},
    {DISPLAY_5, "3030303030", "0", true},
    {DISPLAY_5, "2020202037", "7", false},
    {DISPLAY_5, "3132202020", "12000", false},
    {DISPLAY_5, "2020202020", "0", false},
    {DISPLAY_5, "0000000000", "0", false},
    {DISPLAY_5, "3141323F33", "11203", false},
    {DISPLAY_5, "FFFFFFFFFF", "0", false},
    {DISPLAY_5, "3132333474", "12344", false},
    {POINT, "312E3270", "-1.20", true},
    {POINT, "31323334", "1.34", false},
    {POINT_EBCDIC, "4BD1F2", "-.12", true},
    {POINT_EBCDIC, "404040", "0.00", true},
    {BLANK_ZERO, "202020", "0", true},
    {BLANK_ZERO, "202031", "1", false},
    {MONEY, "3030303132", "0.12", true},
    {MONEY, "3939393979", "-999.99", true},
    {MONEY, "3030303070", "-0.00", true},
    {TRAILING, "31327B", "120", true},
    {TRAILING, "313249", "129", true},
    {TRAILING, "31327D", "-120", true},
    {TRAILING, "313252", "-129", true},
    {TRAILING, "313220", "120", false},
    {TRAILING, "704142", "12", false},
    {TRAILING_E, "313279", "-129", true},
    {EBCDIC, "F1F2F3", "123", true},
    {EBCDIC, "F1F2C3", "123", true},
    {EBCDIC, "F1F2D3", "-123", true},
    {EBCDIC, "404040", "0", false},
    {EBCDIC_SEPARATE, "4EF0F0F7", "7", true},
    {EBCDIC_SEPARATE, "60F0F0F7", "-7", true},
    {LEADING, "793233", "-923", true},
    {SEPARATE, "3030312D", "-1", true},
    {SEPARATE, "30303120", "1", false},
    {COMMA, "30313275", "-1,25", true},
    {FRACTION, "012C", "0.12", true},
    {FRACTION, "012D", "-.12", true},
    {PACKED_7_2, "1234567D", "-12345.67", true},
    {PACKED_7_2, "0000012A", "0.12", true},
    {PACKED_7_2, "0000012B", "-0.12", true},
    {PACKED_7_2, "0000012E", "0.12", true},
    {PACKED_7_2, "00000120", "0.12", false},
    {PACKED_7_2, "0A00012C", "0.12", false},
    {PACKED_4, "91234D", "-1234", false},
    {PACKED_4, "202020", "202", false},
    {PACKED_U, "123C", "123", true},
    {PACKED_U, "123D", "123", false},
    {COMP_6, "0123", "123", true},
    {COMP_4, "FFFF", "-1", true},
    {COMP_4, "7FFF", "32767", true},
    {{BINARY_SIGNED, 4, 0, 2}, "8001", "-2767", false},
    {COMP_5, "0080", "-32768", true},
    {{NATIVE_UNSIGNED, 20, 0, 8}, "FFFFFFFFFFFFFFFF", "18446744073709551615", true},
    {BINARY_16, "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF", "340282366920938463463374607431768211455",
     true},
    {{BINARY_SIGNED, 39, 0, 16},
     "80000000000000000000000000000000",
     "-170141183460469231731687303715884105728",
     true},
    {SCALED_UP, "3132", "12000", true},
    {SCALED_DOWN, "3172", "-.0012", true},
    {SCALED_DOWN, "3030", "0.0000", true},
    {FLOAT, "CDCCCC3D", "0.1", true},
    {FLOAT, "00000080", "-0", true},
    {FLOAT, "01000000", "0.000000000000000000000000000000000000000000001", true},
    {FLOAT, "FFFF7F7F", "340282350000000000000000000000000000000", true},
    {FLOAT, "0000807F", "0", false},
    {FLOAT, "0000C07F", "0", false},
    {DOUBLE, "9A9999999999B93F", "0.1", true},
    {FLOAT_SHORT_TEXT, "E00F4940", "3.14159", true},
    {FLOAT_SHORT_TEXT, "E00F49C0", "-3.1416", true},
    {FLOAT_SHORT_TEXT, "FFFF7F47", "65536", true},
    {FLOAT_SHORT_TEXT, "FFFFFFBE", "-0.5", true},
    {FLOAT_SHORT_TEXT, "20BCBE4C", "9999999", false},
};

TEST(Qconvert, WritesTexts) {
    for (const ReadCase& read : READ_CASES) {
        SCOPED_TRACE(std::string("type ") + std::to_string(read.field.type) + " " + read.hex);
        NumberField field(read.field);
        field.set_bytes(from_hex(read.hex));
        reset_data_exceptions();
        bool ok = false;
        EXPECT_EQ(field.to_text(ok), read.text);
        EXPECT_EQ(ok, read.ok);
        EXPECT_EQ(data_exceptions(), read.ok ? 0U : 1U);
    }
}

// A COMP-2 as a copybook describes it.
constexpr FieldSpec DESCRIBED_DOUBLE{FLOAT_NATIVE, 127, -126, 8};

// Gives a COMP-2 an exponent of which all digits fit the longest text: 1e-107 to 1e+118.
void limit_exponent(std::string& bytes, std::mt19937& random) {
    const unsigned exponent = 1023U - 355U + static_cast<unsigned>(random() % 750U);
    bytes[7] = static_cast<char>((bytes[7] & 0x80) | static_cast<int>(exponent >> 4));
    bytes[6] = static_cast<char>((bytes[6] & 0x0F) | static_cast<int>(exponent << 4 & 0xF0));
}

// Fields of every usage with as many digits as the usage takes, for random values.
std::vector<FieldSpec> random_fields(std::mt19937& random) {
    auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    const int digits = 1 + below(38);
    const int scale = below(digits + 3) - digits;
    const int flags = std::array{0, int{FIELD_EBCDIC_SIGN}, int{FIELD_EBCDIC_TEXT},
                                 int{FIELD_DECIMAL_COMMA}}[static_cast<std::size_t>(below(4))];
    std::vector<FieldSpec> fields;
    for (int type = DISPLAY_UNSIGNED; type <= PACKED_NO_SIGN; ++type) {
        const bool separate =
            type == DISPLAY_SIGN_TRAILING_SEPARATE || type == DISPLAY_SIGN_LEADING_SEPARATE;
        const int length = type == PACKED_NO_SIGN  ? (digits + 1) / 2
                           : type >= PACKED_SIGNED ? digits / 2 + 1
                                                   : digits + (separate ? 1 : 0);
        fields.push_back({static_cast<FieldType>(type), digits, scale, length, flags});
    }
    const int binary_digits[] = {3, 5, 8, 10, 13, 15, 17, 20};
    const int bytes = 1 + below(8);
    for (int type = BINARY_SIGNED; type <= NATIVE_UNSIGNED; ++type) {
        fields.push_back({static_cast<FieldType>(type), binary_digits[bytes - 1], 0, bytes});
    }
    fields.push_back(FLOAT);
    fields.push_back(DESCRIBED_DOUBLE);
    return fields;
}

std::string random_bytes(const FieldSpec& spec, std::mt19937& random) {
    std::string bytes(static_cast<std::size_t>(spec.length), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    if (spec.type == FLOAT_NATIVE && spec.length == 8) limit_exponent(bytes, random);
    if (spec.type == FLOAT_NATIVE && spec.length == 4 && (bytes[3] & 0x7F) == 0x7F) {
        bytes[3] = 0;  // no infinities
    }
    if (spec.type >= BINARY_SIGNED) return bytes;

    // Digits come from a text of their own, written by hand, with the preferred sign.
    std::string digits(static_cast<std::size_t>(spec.digits), '0');
    for (char& digit : digits) digit = static_cast<char>('0' + random() % 10);
    const bool negative = random() % 2 == 0;
    if (spec.type >= PACKED_SIGNED) {
        std::string hex = digits;
        if (spec.type == PACKED_SIGNED) hex += negative ? 'D' : 'C';
        if (spec.type == PACKED_UNSIGNED) hex += 'F';
        return from_hex(hex.size() % 2 == 0 ? hex : "0" + hex);
    }
    const bool ebcdic = (spec.flags & FIELD_EBCDIC_TEXT) != 0;
    const bool zoned = (spec.flags & FIELD_EBCDIC_SIGN) != 0;
    auto overpunch = [&](char& digit) {
        const auto value = static_cast<std::size_t>(digit - '0');
        digit = zoned      ? (negative ? "}JKLMNOPQR" : "{ABCDEFGHI")[value]
                : negative ? "pqrstuvwxy"[value]
                           : digit;
        if (ebcdic) digit = static_cast<char>((negative ? 0xD0U : 0xC0U) | value);
    };
    const char sign = ebcdic ? (negative ? '\x60' : '\x4E') : (negative ? '-' : '+');
    std::string characters = digits;
    if (ebcdic) {
        for (char& c : characters) c = static_cast<char>(c | 0xF0);
    }
    auto overpunch_at = [&](std::size_t place) {
        char digit = digits[place];
        overpunch(digit);
        characters[place] = digit;
    };
    if (spec.type == DISPLAY_SIGN_TRAILING) overpunch_at(digits.size() - 1);
    if (spec.type == DISPLAY_SIGN_LEADING) overpunch_at(0);
    if (spec.type == DISPLAY_SIGN_TRAILING_SEPARATE) characters += sign;
    if (spec.type == DISPLAY_SIGN_LEADING_SEPARATE) characters.insert(0, 1, sign);
    return characters;
}

TEST(Qconvert, TextBringsBackEveryByte) {
    std::mt19937 random(20240229);
    for (int round = 0; round < 4000; ++round) {
        for (const FieldSpec& spec : random_fields(random)) {
            NumberField field(spec);
            const std::string bytes = random_bytes(spec, random);
            field.set_bytes(bytes);
            bool ok = false;
            const std::string text = field.to_text(ok);
            NumberField back(spec);
            ASSERT_TRUE(ok && back.from_text(text) && back.bytes() == bytes)
                << "type " << spec.type << " digits " << spec.digits << " scale " << spec.scale
                << " flags " << spec.flags << ": " << to_hex(bytes) << " -> " << text << " -> "
                << to_hex(back.bytes());
        }
    }
}

// Descriptors whose numbers do not agree: nothing outside field and text may be touched (the exact
// blocks let AddressSanitizer see it), and what is written is blanks or a number.
TEST(Qconvert, StaysInsideItsFieldsWhateverTheDescriptorSays) {
    const int lengths[] = {-1, 0, 1, 2, 9, 16, 17, 500};
    const int numbers[] = {-128, -40, -1, 0, 1, 39, 127};
    const std::string long_number = std::string(600, '9') + "." + std::string(600, '9') + "e20";
    for (int type = -1; type < 45; ++type) {
        for (const int length : lengths) {
            for (const int digits : numbers) {
                for (const int scale : numbers) {
                    std::vector<char> memory(static_cast<std::size_t>(std::max(length, 0)), '9');
                    XfdDataDesc field{memory.data(),
                                      length,
                                      static_cast<std::int16_t>(type),
                                      static_cast<std::int8_t>(digits),
                                      static_cast<std::int8_t>(scale),
                                      {}};
                    set_field_extra(
                        field,
                        {static_cast<std::int8_t>(digits), static_cast<std::int8_t>(scale), 0, {}});
                    std::string digits_text = long_number;
                    XfdDataDesc text = field;
                    text.type = TEXT;
                    text.address = digits_text.data();
                    text.length = static_cast<std::int32_t>(digits_text.size());
                    Qconvert(&field, &text, 1);
                    std::vector<char> out(static_cast<std::size_t>(std::max(digits + 1, 0)), '?');
                    text.address = out.data();
                    text.length = digits + 1;
                    Qconvert(&text, &field, 1);
                    const std::string_view written(out.data(), out.size());
                    EXPECT_EQ(written.find_first_not_of(" -.0123456789"), written.npos) << written;
                    const bool empty = written.find_first_of("0123456789") == written.npos;
                    ASSERT_EQ(empty, digits < 0) << written;
                }
            }
        }
    }
}

// Fields of every kind, with digits, half bytes or any bytes in them, into texts of any size.
TEST(Numbers, QuickTextsAreThoseOfTheLongWay) {
    std::mt19937 random(17);
    const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
    int quick = 0;
    for (int i = 0; i < 300'000; ++i) {
        const int flags = below(3) == 0 ? below(128) : below(2) * FIELD_DECIMAL_COMMA;
        const FieldSpec spec{static_cast<FieldType>(1 + below(13)), below(22), below(8) - 5,
                             1 + below(12), flags};
        NumberField field(spec);
        std::string bytes(static_cast<std::size_t>(spec.length), '\0');
        const int kind = below(4);
        for (char& byte : bytes) {
            const int digits = below(10) << 4 | below(10);
            byte = static_cast<char>(kind == 0 ? '0' + below(10) : kind == 1 ? digits : below(256));
        }
        if (kind < 3 && below(2) == 0) bytes.back() = "\x0C\x1D\x9F\x7D\x70\x30"[below(6)];
        if (below(3) == 0) std::fill_n(bytes.begin(), below(unsigned(spec.length)) + 1, bytes[0]);
        field.set_bytes(bytes);
        XfdDataDesc to = field.data();
        std::string text(static_cast<std::size_t>(1 + below(24)), 'x');
        to.address = text.data();
        to.length = static_cast<std::int32_t>(text.size());
        if (!numbers::write_quickly(field.data(), to)) continue;
        ++quick;
        Decimal number;
        std::string expected(text.size(), 'y');
        const char point = (flags & FIELD_DECIMAL_COMMA) != 0 ? ',' : '.';
        EXPECT_TRUE(numbers::read_field(numbers::field_of(field.data()), number));
        EXPECT_TRUE(numbers::write_fixed(number, spec.decimals(), point, expected));
        ASSERT_EQ(text, expected) << spec.type << " " << spec.digits << " " << spec.scale << " "
                                  << to_hex(bytes) << " flags " << flags;
    }
    EXPECT_GT(quick, 29'000);
}

// Texts that are numbers or nearly so into fields of every kind, with any bytes before.
TEST(Numbers, QuickNumbersAreThoseOfTheLongWay) {
    std::mt19937 random(18);
    const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
    int quick = 0;
    for (int i = 0; i < 300'000; ++i) {
        const FieldSpec spec{static_cast<FieldType>(1 + below(13)), below(22), below(8) - 5,
                             1 + below(12), below(3) == 0 ? below(128) : 0};
        std::string text;
        if (below(4) == 0) text = "-+ 0"[below(4)];
        for (int left = below(unsigned(4 + below(18))); left > 0; --left) {
            text += below(40) == 0 ? ".,e x"[below(5)] : static_cast<char>('0' + below(10));
        }
        if (below(2) == 0)
            text.insert(text.size() - static_cast<std::size_t>(below(3)) % (text.size() + 1), ".");
        std::string before(static_cast<std::size_t>(spec.length), '\0');
        for (char& byte : before) byte = static_cast<char>(below(256));
        NumberField field(spec);
        NumberField expected(spec);
        field.set_bytes(before);
        expected.set_bytes(before);
        XfdDataDesc source = field.data();
        source.address = text.data();
        source.length = static_cast<std::int32_t>(text.size());
        if (!numbers::store_quickly(source, field.data())) {
            ASSERT_EQ(field.bytes(), before) << text;
            continue;
        }
        ++quick;
        Decimal number;
        EXPECT_TRUE(numbers::parse_text(text, '.', number)) << text;
        EXPECT_TRUE(numbers::store_field(numbers::field_of(expected.data()), number)) << text;
        ASSERT_EQ(to_hex(field.bytes()), to_hex(expected.bytes()))
            << text << " type " << spec.type << " " << spec.digits << " " << spec.scale << " flags "
            << spec.flags;
    }
    EXPECT_GT(quick, 20'000);
}

TEST(Numbers, CompareExactly) {
    const struct {
        const char* first;
        const char* second;
        int order;
    } cases[] = {{"0", "-0.00", 0},          {"1.50", "1.5", 0},     {"1e3", "1000", 0},
                 {"1e3", "999.9", 1},        {"-2", "1", -1},        {"-2", "-1", -1},
                 {"0.001", "0.0010001", -1}, {"-1e50", "-1e49", -1}, {"0", "1e-90", -1}};
    for (const auto& pair : cases) {
        Decimal first, second;
        ASSERT_TRUE(parse_number(pair.first, first) && parse_number(pair.second, second));
        EXPECT_EQ(compare(first, second), pair.order) << pair.first << " " << pair.second;
        EXPECT_EQ(compare(second, first), -pair.order) << pair.first << " " << pair.second;
    }
}

}  // namespace
