// A COBOL compiler judges the conversions: a generated program stores edge values of every usage
// and displays them, then displays the fields that we stored.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/numbers/number_field.h"
#include "tests/support/scratch_folder.h"

namespace {

using namespace records;
using number_tests::FieldSpec;
using number_tests::NumberField;

constexpr std::size_t RECORD_SIZE = 40;

struct UsageCase {
    std::string clause;  // of the data description
    FieldSpec field;
    std::vector<std::string> values;
};

// A value given in units of the field's last digit, as a COBOL literal and as our text.
std::string plain_number(std::string units, const FieldSpec& field) {
    const std::string sign = units.starts_with('-') ? "-" : "";
    units.erase(0, sign.size());
    if (units != "0") units.append(static_cast<std::size_t>(std::max(field.scale, 0)), '0');
    const auto decimals = static_cast<std::size_t>(field.decimals());
    if (decimals == 0) return sign + units;
    if (units.size() <= decimals) units.insert(0, decimals + 1 - units.size(), '0');
    return sign + units.insert(units.size() - decimals, 1, '.');
}

UsageCase fixed(const std::string& picture, const FieldSpec& field, const std::string& usage = "") {
    const auto digits = static_cast<std::size_t>(field.digits);
    const std::string all_different = "12345678909876543210123456789098765432";
    std::vector<std::string> units{"0", "1", std::string(digits, '9'), std::string(digits, '0'),
                                   all_different.substr(0, digits)};
    units[3].front() = '1';
    if (picture.starts_with('S')) {
        for (std::size_t i = 1; i < 5; ++i) units.push_back("-" + units[i]);
    }
    UsageCase made{"PIC " + picture + " " + usage, field, {}};
    for (const std::string& unit : units) made.values.push_back(plain_number(unit, field));
    return made;
}

std::vector<UsageCase> binary_cases(const std::string& usage, FieldType with_sign,
                                    FieldType without, int flags) {
    std::vector<UsageCase> cases;
    const struct {
        int digits, length;
    } sizes[] = {{1, 1}, {2, 1}, {3, 2}, {4, 2}, {5, 4}, {9, 4}, {10, 8}, {18, 8}};
    for (const auto& size : sizes) {
        const std::string picture = std::string("9(") + std::to_string(size.digits) + ")";
        cases.push_back(
            fixed("S" + picture, {with_sign, size.digits, 0, size.length, flags}, usage));
        cases.push_back(fixed(picture, {without, size.digits, 0, size.length, flags}, usage));
    }
    cases.push_back(fixed("S9(5)V99", {with_sign, 7, -2, 4, flags}, usage));
    cases.push_back(fixed("S99PPP", {with_sign, 2, 3, 1, flags}, usage));
    // GnuCOBOL 3.1.2 does not return from moving a binary zero with P positions.
    cases.back().values.erase(cases.back().values.begin());
    return cases;
}

UsageCase whole_range(const std::string& usage, FieldType type, int length,
                      std::vector<std::string> values) {
    const int digits[] = {0, 3, 5, 0, 10, 0, 0, 0, 20};
    return {usage, {type, digits[length], 0, length, 0}, std::move(values)};
}

std::vector<UsageCase> usage_cases(int display_flags) {
    std::vector<UsageCase> cases;
    auto add = [&](UsageCase made) { cases.push_back(std::move(made)); };
    auto add_all = [&](const std::vector<UsageCase>& more) {
        cases.insert(cases.end(), more.begin(), more.end());
    };
    const struct {
        const char* clause;
        FieldType type;
        int sign_bytes;
    } signs[] = {{"SIGN TRAILING", DISPLAY_SIGN_TRAILING, 0},
                 {"SIGN LEADING", DISPLAY_SIGN_LEADING, 0},
                 {"SIGN TRAILING SEPARATE", DISPLAY_SIGN_TRAILING_SEPARATE, 1},
                 {"SIGN LEADING SEPARATE", DISPLAY_SIGN_LEADING_SEPARATE, 1}};
    for (const auto& sign : signs) {
        const int more = sign.sign_bytes;
        add(fixed("S9", {sign.type, 1, 0, 1 + more, display_flags}, sign.clause));
        add(fixed("S9(5)V99", {sign.type, 7, -2, 7 + more, display_flags}, sign.clause));
        add(fixed("S9(38)", {sign.type, 38, 0, 38 + more, display_flags}, sign.clause));
    }
    add(fixed("9(5)", {DISPLAY_UNSIGNED, 5, 0, 5, 0}));
    add(fixed("V99", {DISPLAY_UNSIGNED, 2, -2, 2, 0}));
    add(fixed("99PPP", {DISPLAY_UNSIGNED, 2, 3, 2, 0}));
    add(fixed("VPP99", {DISPLAY_UNSIGNED, 2, -4, 2, 0}));
    add(fixed("9(3) BLANK ZERO", {DISPLAY_UNSIGNED, 3, 0, 3, FIELD_BLANK_WHEN_ZERO}));
    // No P positions here: GnuCOBOL 3.1.2 takes the sign of such packed numbers for a digit.
    add(fixed("S9", {PACKED_SIGNED, 1, 0, 1, 0}, "COMP-3"));
    add(fixed("S9(4)", {PACKED_SIGNED, 4, 0, 3, 0}, "COMP-3"));
    add(fixed("S9(5)V99", {PACKED_SIGNED, 7, -2, 4, 0}, "COMP-3"));
    add(fixed("S9(18)", {PACKED_SIGNED, 18, 0, 10, 0}, "COMP-3"));
    add(fixed("S9(20)V9(18)", {PACKED_SIGNED, 38, -18, 20, 0}, "COMP-3"));
    add(fixed("9(4)V9", {PACKED_UNSIGNED, 5, -1, 3, 0}, "COMP-3"));
    add(fixed("9(38)", {PACKED_UNSIGNED, 38, 0, 20, 0}, "COMP-3"));
    add(fixed("9(4)", {PACKED_NO_SIGN, 4, 0, 2, 0}, "COMP-6"));
    add(fixed("9(5)V99", {PACKED_NO_SIGN, 7, -2, 4, 0}, "COMP-6"));
    add_all(binary_cases("COMP", BINARY_SIGNED, BINARY_UNSIGNED, FIELD_TRUNCATE));
    add_all(binary_cases("COMP-5", NATIVE_SIGNED, NATIVE_UNSIGNED, 0));
    add(fixed("9(4)", {BINARY_UNSIGNED, 4, 0, 2, FIELD_TRUNCATE}, "COMP-X"));
    add(fixed("S9(18)", {BINARY_SIGNED, 18, 0, 8, FIELD_TRUNCATE}, "COMP-X"));
    add(whole_range("BINARY-CHAR SIGNED", NATIVE_SIGNED, 1, {"0", "127", "-128"}));
    add(whole_range("BINARY-CHAR UNSIGNED", NATIVE_UNSIGNED, 1, {"0", "255"}));
    add(whole_range("BINARY-SHORT SIGNED", NATIVE_SIGNED, 2, {"1", "32767", "-32768"}));
    add(whole_range("BINARY-SHORT UNSIGNED", NATIVE_UNSIGNED, 2, {"1", "65535"}));
    add(whole_range("BINARY-LONG SIGNED", NATIVE_SIGNED, 4, {"-1", "2147483647", "-2147483648"}));
    add(whole_range("BINARY-LONG UNSIGNED", NATIVE_UNSIGNED, 4, {"4294967295"}));
    add(whole_range("BINARY-DOUBLE SIGNED", NATIVE_SIGNED, 8,
                    {"-1", "9223372036854775807", "-9223372036854775808"}));
    add(whole_range("BINARY-DOUBLE UNSIGNED", NATIVE_UNSIGNED, 8, {"18446744073709551615"}));
    add({"COMP-1", {FLOAT_NATIVE, 47, -46, 4, 0}, {"0", "1.5", "-0.1", "123456.7", "-1000000"}});
    add({"COMP-2",
         {FLOAT_NATIVE, 127, -126, 8, 0},
         {"0", "1.5", "-0.375", "123456789.015625", "-1000000000000"}});
    return cases;
}

// The program: the first half writes each field's bytes and displays the value that it has put
// there, the second half takes the bytes from the other file.
std::string make_program(const std::vector<UsageCase>& cases) {
    std::ostringstream data, writing, reading;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const FieldSpec& field = cases[i].field;
        const bool shown_itself = number_tests::is_floating(field);
        data << "01 F" << i << " " << cases[i].clause << ".\n01 X" << i << " REDEFINES F" << i
             << " PIC X(" << field.length << ").\n";
        const int integers = field.text_digits() - field.decimals();
        if (!shown_itself) {
            data << "01 D" << i << " PIC S";
            if (integers > 0) data << "9(" << integers << ")";
            if (field.decimals() > 0) data << "V9(" << field.decimals() << ")";
            data << " SIGN LEADING SEPARATE.\n";
        }
        std::ostringstream show;
        if (!shown_itself) show << "MOVE F" << i << " TO D" << i << "\n";
        show << "DISPLAY " << (shown_itself ? "F" : "D") << i << "\n";
        for (const std::string& value : cases[i].values) {
            writing << "MOVE " << value << " TO F" << i << "\nMOVE X" << i
                    << " TO OUT-REC\nWRITE OUT-REC\n"
                    << show.str();
            reading << "READ IN-FILE\nMOVE IN-REC TO X" << i << "\n" << show.str();
        }
    }
    std::ostringstream program;
    program << "IDENTIFICATION DIVISION.\nPROGRAM-ID. JUDGE.\nENVIRONMENT DIVISION.\n"
            << "INPUT-OUTPUT SECTION.\nFILE-CONTROL.\n"
            << "SELECT OUT-FILE ASSIGN \"written.dat\".\nSELECT IN-FILE ASSIGN \"stored.dat\".\n"
            << "DATA DIVISION.\nFILE SECTION.\n"
            << "FD OUT-FILE.\n01 OUT-REC PIC X(" << RECORD_SIZE << ").\n"
            << "FD IN-FILE.\n01 IN-REC PIC X(" << RECORD_SIZE << ").\n"
            << "WORKING-STORAGE SECTION.\n"
            << data.str() << "PROCEDURE DIVISION.\nOPEN OUTPUT OUT-FILE\n"
            << writing.str() << "CLOSE OUT-FILE\nOPEN INPUT IN-FILE\n"
            << reading.str() << "CLOSE IN-FILE\nSTOP RUN.\n";
    return program.str();
}

std::string read_all(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Whether the display of a field is the value.
bool shows(const std::string& line, const std::string& value, const FieldSpec& field) {
    if (number_tests::is_floating(field)) {
        return field.length == 4 ? std::stof(line) == std::stof(value)
                                 : std::stod(line) == std::stod(value);
    }
    Decimal seen, expected;
    if (!parse_number(line, seen) || !parse_number(value, expected)) return false;
    return compare(seen, expected) == 0;
}

class CobolJudge : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        if (std::system("command -v cobc >/dev/null 2>&1") != 0) GTEST_SKIP() << "cobc is missing";
    }
    const ScratchFolder scratch_;
    const std::filesystem::path& folder_ = scratch_.path();
};

TEST_P(CobolJudge, SeesTheSameNumbers) {
    const bool ebcdic_signs = GetParam();
    const std::vector<UsageCase> cases = usage_cases(ebcdic_signs ? FIELD_EBCDIC_SIGN : 0);
    std::string stored;
    for (const UsageCase& usage : cases) {
        for (const std::string& value : usage.values) {
            NumberField field(usage.field);
            EXPECT_TRUE(field.from_text(value)) << usage.clause << " " << value;
            std::string record = field.bytes();
            record.resize(RECORD_SIZE, ' ');
            stored += record;
        }
    }
    std::ofstream(folder_ / "stored.dat", std::ios::binary) << stored;
    std::ofstream(folder_ / "judge.cob") << make_program(cases);
    const std::string command = "cd '" + folder_.string() + "' && cobc -x -free -w -fsign=" +
                                (ebcdic_signs ? "EBCDIC" : "ASCII") +
                                " judge.cob && timeout 60 ./judge > shown.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);

    const std::string written = read_all(folder_ / "written.dat");
    ASSERT_EQ(written.size(), stored.size());
    std::ifstream lines(folder_ / "shown.txt");
    for (const char* half : {"stored by COBOL", "stored by us"}) {
        std::size_t offset = 0;
        for (const UsageCase& usage : cases) {
            for (const std::string& value : usage.values) {
                SCOPED_TRACE(usage.clause + " " + value + " " + half);
                const auto length = static_cast<std::size_t>(usage.field.length);
                std::string line;
                ASSERT_TRUE(std::getline(lines, line));
                EXPECT_TRUE(shows(line, value, usage.field)) << line;
                EXPECT_EQ(stored.substr(offset, length), written.substr(offset, length));

                NumberField field(usage.field);
                field.set_bytes(written.substr(offset, length));
                bool ok = false;
                const std::string text = field.to_text(ok);
                Decimal ours, expected;
                EXPECT_TRUE(ok && parse_number(text, ours) && parse_number(value, expected));
                EXPECT_EQ(compare(ours, expected), 0) << text;
                offset += RECORD_SIZE;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Signs, CobolJudge, testing::Bool(),
                         [](const auto& sign) { return sign.param ? "Ebcdic" : "Ascii"; });

}  // namespace
