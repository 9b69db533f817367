// Hexadecimal floating point. The judges: values known from the format's definition, and the C
// library's long double, which has 8 bits more than the longest fraction.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "tests/numbers/number_field.h"

namespace {

using namespace records;
using number_tests::FieldSpec;
using number_tests::NumberField;

constexpr FieldSpec SHORT{FLOAT_HEX, 88, -87, 4};
constexpr FieldSpec LONG{FLOAT_HEX, 97, -96, 8};

std::string from_hex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
    }
    return bytes;
}

TEST(HexFloat, KnownNumbersGoBothWays) {
    const std::string zeros(78, '0');
    const struct {
        const FieldSpec& field;
        const char* hex;
        std::string text;
    } cases[] = {{SHORT, "00000000", "0"},
                 {SHORT, "80000000", "-0"},
                 {SHORT, "41100000", "1"},
                 {SHORT, "C276A000", "-118.625"},
                 {SHORT, "4019999A", "0.1"},
                 {LONG, "401999999999999A", "0.1"},
                 {LONG, "4110000000000001", "1.0000000000000002"},
                 {SHORT, "7FFFFFFF", "7237005" + std::string(69, '0')},
                 {SHORT, "00100000", "0." + zeros + "53976053"},
                 {LONG, "4E80000000000000", "36028797018963968"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.hex);
        NumberField field(each.field);
        field.set_bytes(from_hex(each.hex));
        bool ok = false;
        EXPECT_EQ(field.to_text(ok), each.text);
        EXPECT_TRUE(ok);
        field.set_bytes(std::string(static_cast<std::size_t>(each.field.length), '\x77'));
        EXPECT_TRUE(field.from_text(each.text));
        EXPECT_EQ(field.bytes(), from_hex(each.hex));
    }
}

TEST(HexFloat, NumbersOutOfRangeAreReported) {
    const struct {
        const FieldSpec& field;
        const char* text;
        const char* hex;
    } cases[] = {{SHORT, "7.3e75", "7FFFFFFF"},
                 {LONG, "-1e300", "FFFFFFFFFFFFFFFF"},
                 {SHORT, "7.2370055773322621e75", "7FFFFFFF"},
                 {SHORT, "5e-79", "00000000"},
                 {LONG, "-1e-200", "8000000000000000"}};
    for (const auto& each : cases) {
        NumberField field(each.field);
        EXPECT_FALSE(field.from_text(each.text)) << each.text;
        EXPECT_EQ(field.bytes(), from_hex(each.hex)) << each.text;
    }
    // A number that does not begin with a digit other than 0 has its value all the same.
    NumberField field(SHORT);
    field.set_bytes(from_hex("42000A00"));
    bool ok = false;
    EXPECT_EQ(field.to_text(ok), "0.0390625");
    EXPECT_TRUE(ok);
}

// What the bytes stand for; exact in a long double.
long double value_of(const std::string& bytes) {
    long double fraction = 0;
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        fraction = fraction * 256 + static_cast<std::uint8_t>(bytes[i]);
    }
    const int power = 4 * ((bytes[0] & 0x7F) - 64) - 8 * (static_cast<int>(bytes.size()) - 1);
    return std::ldexp(bytes[0] < 0 ? -fraction : fraction, power);
}

long double half_of_last_bit(const std::string& bytes) {
    const int power = 4 * ((bytes[0] & 0x7F) - 64) - 8 * (static_cast<int>(bytes.size()) - 1);
    return std::ldexp(0.5L, power) * 1.01L;  // the judge rounds, too
}

TEST(HexFloat, RandomNumbersAreExactBothWays) {
    if (std::numeric_limits<long double>::digits < 64) GTEST_SKIP() << "long double is too short";
    std::mt19937 random(20261);
    for (int i = 0; i < 4000; ++i) {
        const FieldSpec& spec = i % 2 == 0 ? SHORT : LONG;
        std::string bytes(static_cast<std::size_t>(spec.length), '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        if ((bytes[1] & 0xF0) == 0) bytes[1] = '\x10';
        NumberField field(spec);
        field.set_bytes(bytes);
        bool ok = false;
        const std::string text = field.to_text(ok);
        EXPECT_TRUE(ok) << text;
        EXPECT_LE(std::abs(std::strtold(text.c_str(), nullptr) - value_of(bytes)),
                  half_of_last_bit(bytes))
            << text;
        EXPECT_TRUE(field.from_text(text));
        EXPECT_EQ(field.bytes(), bytes) << text;

        std::string digits = std::to_string(random() % 9 + 1) + ".";
        for (int digit = 0; digit < 24; ++digit) digits += static_cast<char>('0' + random() % 10);
        digits += "e" + std::to_string(static_cast<int>(random() % 150) - 76);
        EXPECT_TRUE(field.from_text(digits));
        EXPECT_LE(std::abs(std::strtold(digits.c_str(), nullptr) - value_of(field.bytes())),
                  half_of_last_bit(field.bytes()))
            << digits;
    }
}

}  // namespace
