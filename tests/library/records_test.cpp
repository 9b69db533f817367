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

// A record that fails by itself can be put aside, in both directions.
TEST_F(RecordsTest, BadRecordsArePutAside) {
    write_file("r.cpy",
               "      *> sxml: when KIND OF A = \"A\"\n"
               "       01  A.\n           05  KIND PIC X.\n           05  N PIC 9(2).\n"
               "      *> sxml: when KIND OF B = \"B\"\n"
               "       01  B.\n           05  KIND PIC X.\n           05  W PIC X(2).\n");
    write_file("r.dat", "HEADA01BxyC00A02");
    write_file("r.xml",
               "<?xml version=\"1.0\"?><d><page><a><kind>A</kind><n>1</n><m>7</m></a></page>"
               "<page><a><kind>A</kind><n>1.5</n></a><b><kind>B</kind><w>x</w></b></page></d>");
    write_file("s.cpy",
               "       01  R.\n           05  N PIC 9.\n"
               "           05  T PIC X(2) OCCURS 0 TO 3 DEPENDING ON N.\n"
               "           05  Z PIC X(3).\n");
    write_file("s.xml",
               "<d><r><n>2</n><t>a</t><t>b</t><z>one</z></r><r><n>7</n><t>c</t><z>two</z></r>"
               "<r><n>1</n><t>d</t><t>e</t><z>six</z></r><r><n>0</n><z>end</z></r></d>");
    struct RecordOutcome {
        std::string bytes;
        std::string problem = {};
    };
    struct Case {
        const char* layout;
        const char* file;
        std::vector<const char*> options;
        std::vector<RecordOutcome> outcomes;
    };
    const std::string none = "none of the record layouts' conditions holds";
    const Case cases[] = {
        {"r.cpy",
         "r.dat",
         {"skip=4", "strict=yes", nullptr},
         {{"A01"}, {"Bxy"}, {"C00", none}, {"A02"}}},
        {"r.cpy",
         "r.xml",
         {"record=d/page/a", "strict=yes", nullptr},
         {{"A01", "m: the text went into no field; no field has this name"},
          {"A01", "field n: more decimals than the field holds, which were cut: '1.5'"}}},
        {"s.cpy",
         "s.xml",
         {"odo=sliding", nullptr},
         {{"2a b   one"},
          {"0         ", "s.xml: record 2, field n: the counter is not a number from 0 to 3"},
          {"1d     six", "s.xml: record 3, field t(2): there is data for an entry"},
          {"0      end"}}},
    };
    for (const Case& one : cases) {
        SxmlFile* const file = sxml_open(one.layout, one.file, "r", one.options.data());
        EXPECT_STREQ(sxml_problem(file), "") << one.file;
        EXPECT_EQ(sxml_skip(file), -1);  // nothing has failed
        std::int64_t number = 0;
        for (const RecordOutcome& expected : one.outcomes) {
            ++number;
            const int result = sxml_read(file);
            EXPECT_EQ(result, expected.problem.empty() ? 1 : -1) << one.file << number;
            std::size_t length = 0;
            const char* const bytes = static_cast<const char*>(sxml_record(file, &length));
            EXPECT_EQ(std::string(bytes, length), expected.bytes);
            if (result == 1) continue;
            EXPECT_NE(std::string(sxml_problem(file)).find(expected.problem), std::string::npos)
                << sxml_problem(file);
            EXPECT_EQ(sxml_problem_record(file), number);
            EXPECT_EQ(sxml_problem_cause(file), SXML_RECORD);
            EXPECT_EQ(sxml_read(file), -1);  // until it is taken back
            EXPECT_EQ(sxml_skip(file), 0);
        }
        EXPECT_EQ(sxml_read(file), 0) << sxml_problem(file);
        EXPECT_EQ(sxml_finish(file), 0);
        sxml_close(file);
    }
    // Without strict the same are warnings.
    SxmlFile* const lenient = sxml_open("r.cpy", "r.dat", "r", cases[0].options.data() + 2);
    EXPECT_EQ(sxml_read(lenient), 1);  // HEA
    EXPECT_STREQ(sxml_warning(lenient, 0), none.c_str());
    sxml_close(lenient);
    const char* const at_a_path[] = {"record=d/page/a", nullptr};
    SxmlFile* const document = sxml_open("r.cpy", "r.xml", "r", at_a_path);
    EXPECT_EQ(sxml_read(document), 1);
    EXPECT_STREQ(sxml_warning(document, 0),
                 "m: the text went into no field; no field has this name");
    EXPECT_EQ(sxml_warning(document, 1), nullptr);
    sxml_close(document);

    const char* const strict[] = {"strict=yes", nullptr};
    SxmlFile* const out = sxml_open("r.cpy", "out.xml", "w", strict);
    for (const char* const record : {"A01", "A0x", "C00", "B\x01y", "Bxy"}) {
        EXPECT_EQ(sxml_set_record(out, record, 3), 0);
        const bool is_good = record == std::string("A01") || record == std::string("Bxy");
        EXPECT_EQ(sxml_write(out), is_good ? 0 : -1) << record;
        EXPECT_EQ(sxml_skip(out), is_good ? -1 : 0) << sxml_problem(out);
    }
    EXPECT_EQ(sxml_finish(out), 0) << sxml_problem(out);
    sxml_close(out);
    EXPECT_EQ(sxml({"from-xml", "out.xml", "back", "-l", "r.cpy"}).err, "");
    EXPECT_EQ(read_file("back"), "A01Bxy");
}

// A copybook that may not be changed, and a file of a form that is not known.
TEST_F(RecordsTest, TakesTheOptionsOfTheCommand) {
    write_file("one.cpy",
               "       01  A.\n           05  KIND PIC X.\n           05  N PIC 9(3).\n");
    write_file("two.cpy",
               "       01  B.\n           05  SORT PIC X.\n           05  W PIC X(3).\n");
    write_file("r", std::string("\0\x08\0\0A012\0\x08\0\0Bxyz", 16));
    const char* const options[] = {"layout=two.cpy", "when=A: KIND = \"A\"", "when=B: SORT = \"B\"",
                                   "hide=KIND",      "name=W=word",          "format=auto",
                                   nullptr};
    SxmlFile* const file = sxml_open("one.cpy", "r", "r", options);
    EXPECT_EQ(sxml_read(file), 1) << sxml_problem(file);
    EXPECT_STREQ(sxml_get_text(file, sxml_field(file, "n")), "12");
    EXPECT_EQ(sxml_field(file, "kind"), -1);
    EXPECT_EQ(sxml_read(file), 1) << sxml_problem(file);
    EXPECT_STREQ(sxml_get_text(file, sxml_field(file, "word")), "xyz");
    EXPECT_EQ(sxml_read(file), 0);
    sxml_close(file);
    write_file("r.xml", "<d/>");
    const struct {
        const char* option;
        const char* file;
        const char* mode;
        const char* said;
    } refusals[] = {
        {"skip=x", "r.xml", "r", "the option skip cannot be x"},
        {"when=A", "r.xml", "r", "as in HEADER:"},
        {"when=A: ", "r.xml", "r", "as in HEADER:"},
        {"record=d/none", "r.xml", "r", "none"},
        {"format=auto", "new", "w", "name the format"},
        {"skip=4", "r.xml", "r", "r.xml: the options skip and skip-end are for record files"},
        {"skip-end=4", "new", "w", "new: the options skip and skip-end are for record files"},
        {"record=d/r", "r", "r", "r: the option record is for documents that are read"},
        {"record=d/r", "new.xml", "w", "new.xml: the option record is for documents"},
    };
    for (const auto& [option, name, mode, said] : refusals) {
        const char* const one[] = {option, nullptr};
        SxmlFile* const refused = sxml_open("two.cpy", name, mode, one);
        EXPECT_EQ(sxml_problem_cause(refused) == SXML_USAGE,
                  std::string(option) != "record=d/none");
        EXPECT_NE(std::string(sxml_problem(refused)).find(said), std::string::npos)
            << sxml_problem(refused);
        sxml_close(refused);
    }
}

// Documents may stay in the set of the records, as with the command.
TEST_F(RecordsTest, DocumentsAreInTheEncodingThatIsSet) {
    const char* const options[] = {"encoding=windows-1252", "SXML_ENCODING=windows-1252", nullptr};
    SxmlFile* const file = sxml_open("r.cpy", "out.xml", "w", options);
    EXPECT_EQ(sxml_write(file), 0) << sxml_problem(file);
    EXPECT_EQ(sxml_finish(file), 0) << sxml_problem(file);
    sxml_close(file);
    EXPECT_NE(read_file("out.xml").find("encoding=\"WINDOWS-1252\""), std::string::npos);
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
