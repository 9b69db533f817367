// The record library, through its C interface.
#include "sxml/records.h"

#include <limits>

#include "tests/command/command_run.h"

namespace {

class RecordsTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file("r.cpy",
                   "       01  R.\n"
                   "           05  KEY-NO   PIC 9(4).\n"
                   "           05  AMOUNT   PIC S9(5)V99 COMP-3.\n"
                   "           05  BIG      PIC S9(20).\n"
                   "           05  SMALL    PIC SV9(4) COMP-5.\n"
                   "           05  NAME     PIC X(6) OCCURS 2.\n");
    }
    SxmlFile* open(const char* file = nullptr, const char* mode = nullptr) {
        handle_.reset(sxml_open("r.cpy", file, mode, nullptr));
        return handle_.get();
    }

  private:
    struct Close {
        void operator()(SxmlFile* file) const { sxml_close(file); }
    };
    std::unique_ptr<SxmlFile, Close> handle_;
};

TEST_F(RecordsTest, NumbersGoInAndComeOutExactly) {
    SxmlFile* const file = open();
    struct Case {
        const char* field;
        std::int64_t value;
        int decimals;
        const char* text;  // null: refused
    };
    const Case cases[] = {
        {"key_no", 42, 0, "42"},
        {"KEY-NO", 4200, 2, "42"},
        {"key_no", -42, 0, nullptr},
        {"key_no", 4201, 2, nullptr},
        {"key_no", 10000, 0, nullptr},
        {"key_no", 5, -2, "500"},
        {"amount", -1, 2, "-0.01"},
        {"amount", 9999999, 2, "99999.99"},
        {"amount", 10000000, 2, nullptr},
        {"amount", 0, 0, "0.00"},
        {"big", std::numeric_limits<std::int64_t>::min(), 0, "-9223372036854775808"},
        {"big", std::numeric_limits<std::int64_t>::max(), 0, "9223372036854775807"},
        {"small", -1234, 4, "-0.1234"},
        {"small", 4, 0, nullptr},
        {"name(1)", 12, 0, nullptr},
    };
    bool has_failed = false;
    for (const Case& one : cases) {
        SCOPED_TRACE(std::string(one.field) + " " + std::to_string(one.value));
        const int field = sxml_field(file, one.field);
        ASSERT_GE(field, 0);
        ASSERT_EQ(sxml_clear(file), 0);
        const std::string before = sxml_get_text(file, field);
        const int result = sxml_set_decimal(file, field, one.value, one.decimals);
        EXPECT_EQ(result, one.text != nullptr ? 0 : -1);
        EXPECT_EQ(std::string(sxml_get_text(file, field)), one.text != nullptr ? one.text : before);
        EXPECT_EQ(sxml_problem_cause(file) == SXML_RECORD, has_failed |= one.text == nullptr);
    }
}

TEST_F(RecordsTest, NumbersThatDoNotFitAreTakenAsTexts) {
    SxmlFile* const file = open();
    const int big = sxml_field(file, "big");
    ASSERT_EQ(sxml_set_text(file, big, "-12345678901234567890"), 0);
    std::int64_t value = 7;
    int decimals = 7;
    EXPECT_EQ(sxml_get_integer(file, big, &value), -1);
    EXPECT_EQ(sxml_get_decimal(file, big, &value, &decimals), -1);
    EXPECT_EQ(value, 7);
    EXPECT_STREQ(sxml_get_text(file, big), "-12345678901234567890");
    const int amount = sxml_field(file, "amount");
    ASSERT_EQ(sxml_set_text(file, amount, "12.5"), 0);
    EXPECT_EQ(sxml_get_integer(file, amount, &value), -1);
    EXPECT_EQ(sxml_get_decimal(file, amount, &value, &decimals), 0);
    EXPECT_EQ(value, 1250);
    EXPECT_EQ(decimals, 2);
    ASSERT_EQ(sxml_set_integer(file, amount, -3), 0);
    EXPECT_EQ(sxml_get_integer(file, amount, &value), 0);
    EXPECT_EQ(value, -3);
}

// Programs see all entries of a table, files hold those in use.
TEST_F(RecordsTest, TablesSlideInFilesAndDocuments) {
    write_file("r.cpy",
               "       01  R.\n           05  N PIC 9.\n"
               "           05  T PIC X(2) OCCURS 0 TO 3 DEPENDING ON N.\n"
               "           05  Z PIC X(3).\n");
    const char* const sliding[] = {"odo=sliding", nullptr};
    const auto set = [](SxmlFile* file, const char* field, const char* text) {
        EXPECT_EQ(sxml_set_text(file, sxml_field(file, field), text), 0) << sxml_problem(file);
    };
    for (const char* const name : {"s.dat", "s.xml"}) {
        SCOPED_TRACE(name);
        SxmlFile* file = sxml_open("r.cpy", name, "w", sliding);
        set(file, "n", "2");
        set(file, "t(1)", "a1");
        set(file, "t(2)", "a2");
        set(file, "z", "end");
        EXPECT_EQ(sxml_applies(file, sxml_field(file, "t(2)")), 1);
        EXPECT_EQ(sxml_applies(file, sxml_field(file, "t(3)")), 0);
        EXPECT_EQ(sxml_write(file), 0) << sxml_problem(file);
        set(file, "z", "END");
        EXPECT_EQ(sxml_write(file), 0) << sxml_problem(file);
        EXPECT_EQ(sxml_finish(file), 0) << sxml_problem(file);
        sxml_close(file);
        file = sxml_open("r.cpy", name, "r", sliding);
        ASSERT_EQ(sxml_read(file), 1) << sxml_problem(file);
        EXPECT_STREQ(sxml_get_text(file, sxml_field(file, "t(2)")), "a2");
        EXPECT_STREQ(sxml_get_text(file, sxml_field(file, "z")), "end");
        ASSERT_EQ(sxml_read(file), 1) << sxml_problem(file);
        EXPECT_STREQ(sxml_get_text(file, sxml_field(file, "z")), "END");
        EXPECT_EQ(sxml_read(file), 0) << sxml_problem(file);
        sxml_close(file);
    }
    EXPECT_EQ(read_file("s.dat"), "2a1a2end  0END      ");
    write_file("s.dat", "2a1a2end  7END      ");
    SxmlFile* const file = sxml_open("r.cpy", "s.dat", "r", sliding);
    EXPECT_EQ(sxml_read(file), 1);
    EXPECT_EQ(sxml_read(file), -1);
    EXPECT_NE(std::string(sxml_problem(file)).find("record 2, field N, byte offset 10"),
              std::string::npos)
        << sxml_problem(file);
    sxml_close(file);
}

TEST_F(RecordsTest, FailuresStayAndNameTheRecord) {
    std::size_t length = 0;
    ASSERT_NE(sxml_record(open(), &length), nullptr);
    write_file("r.dat", std::string(length, '1') + "12x4" + std::string(length - 4, ' '));
    SxmlFile* const first = open("r.dat", "r");
    EXPECT_STREQ(sxml_problem(first), "");
    EXPECT_EQ(sxml_write(first), -1);
    EXPECT_EQ(sxml_problem_cause(first), SXML_USAGE);
    EXPECT_EQ(sxml_read(first), -1);  // a file's failure is final
    EXPECT_EQ(sxml_finish(first), -1);

    SxmlFile* const file = open("r.dat", "r");
    EXPECT_EQ(sxml_read(file), 1);
    EXPECT_EQ(sxml_read(file), 1);
    const int key = sxml_field(file, "key_no");
    EXPECT_EQ(sxml_get_text(file, key), nullptr);
    EXPECT_STREQ(sxml_problem(file),
                 "r.dat: record 2, field key_no: the field holds no valid number: X'31327834'");
    EXPECT_EQ(sxml_problem_record(file), 2);
    EXPECT_EQ(sxml_get_text(file, sxml_field(file, "nothing")), nullptr);
    EXPECT_EQ(sxml_problem_cause(file), SXML_NOT_FOUND);
    EXPECT_EQ(sxml_read(file), 0);
    EXPECT_EQ(sxml_read(file), 0);
    EXPECT_EQ(sxml_finish(file), 0);
}

TEST_F(RecordsTest, TakesHandlesThatAreNoneOrHaveFailed) {
    const char* const modes[] = {nullptr, "w", "x"};  // null: no handle
    for (const char* mode : modes) {
        SxmlFile* const file = mode == nullptr ? nullptr : open("none/r.dat", mode);
        EXPECT_STRNE(sxml_problem(file), "");
        EXPECT_NE(sxml_problem_cause(file), SXML_NO_PROBLEM);
        EXPECT_EQ(sxml_read(file), -1);
        EXPECT_EQ(sxml_write(file), -1);
        EXPECT_EQ(sxml_finish(file), -1);
        EXPECT_EQ(sxml_field(file, "key_no"), -1);
        EXPECT_EQ(sxml_field_count(file), 0);
        EXPECT_EQ(sxml_get_text(file, 0), nullptr);
        EXPECT_EQ(sxml_set_text(file, 0, ""), -1);
        EXPECT_EQ(sxml_record(file, nullptr), nullptr);
        EXPECT_EQ(sxml_warning(file, 0), nullptr);
    }
}

}  // namespace
