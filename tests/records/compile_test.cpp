// From copybook text to the structures that the module reads.
#include <gtest/gtest.h>

#include <cstring>

#include "records/field_types.h"
#include "tests/records/layout_fixture.h"

namespace {

using namespace records;
using layout_tests::compile;
using layout_tests::Compiled;
using layout_tests::described;
using layout_tests::items_text;

struct Case {
    const char* name;
    const char* copybook;
    const char* items;    // as items_text gives them
    const char* message;  // part of what is said; empty when nothing is
};

const Case CASES[] = {
    {"tables are one item an occurrence, groups before their items",
     "01 REC.\n 05 A PIC X.\n 05 T OCCURS 2.\n 10 B PIC 9(2) OCCURS 2.\n 10 C PIC X.\n 05 D PIC X.",
     "rec 0+12\n a 0+1 t15\n t 1+5 1/2\n  b 1+2 t1 2.0 1/2 1/2\n  b 3+2 t1 2.0 1/2 2/2\n"
     "  c 5+1 t15 1/2\n t 6+5 2/2\n  b 6+2 t1 2.0 2/2 1/2\n  b 8+2 t1 2.0 2/2 2/2\n"
     "  c 10+1 t15 2/2\n d 11+1 t15\n",
     ""},
    {"a table of one occurrence is not a dimension",
     "01 REC.\n 05 T OCCURS 1.\n 10 A PIC X OCCURS 2.",
     "rec 0+2\n t 0+2\n  a 0+1 t15 1/2\n  a 1+1 t15 2/2\n", ""},
    {"entries that a counter leaves out do not even start at the record's end",
     "01 REC.\n 05 N PIC 9.\n 05 T OCCURS 1 TO 2 DEPENDING ON N.\n 10 A PIC X(2).",
     "rec 0+5\n n 0+1 t1 1.0\n t 2+2 1/2\n  a 1+2 t15 1/2\n t 4+2 2/2\n  a 3+2 t15 2/2\n", ""},
    {"levels are counted, not copied", "01 REC.\n 07 G.\n 33 A PIC X.\n 07 B PIC X.",
     "rec 0+2\n g 0+1\n  a 0+1 t15\n b 1+1 t15\n", ""},
    {"a record that is a field becomes a group", "01 REC PIC X(80).",
     "rec 0+80\n rec_data 0+80 t15\n", ""},
    {"unused space and groups of it give nothing, an unnamed group's items stay",
     "01 REC.\n 05 FILLER PIC X(3).\n 05 G.\n 10 FILLER PIC X.\n 05.\n 10 A PIC X.\n 05 B PIC X.",
     "rec 0+6\n a 4+1 t15\n b 5+1 t15\n", "G holds no field that gives an element"},
    {"an unnamed table needs an element for each occurrence",
     "01 REC.\n 05 FILLER OCCURS 2.\n 10 A PIC X.\n 10 B PIC X.",
     "rec 0+4\n filler_1 0+2 1/2\n  a 0+1 t15 1/2\n  b 1+1 t15 1/2\n filler_1 2+2 2/2\n"
     "  a 2+1 t15 2/2\n  b 3+1 t15 2/2\n",
     ""},
    {"scaled numbers have digits for their text",
     "01 REC.\n 05 A PIC 99PPP.\n 05 B PIC SVPP99.\n 05 C PIC S9(3)V99 COMP-3.\n 05 D PIC SV99.",
     "rec 0+9\n a 0+2 t1 5.0\n b 2+2 t2 4.-4\n c 4+3 t6 5.-2\n d 7+2 t2 2.-2\n", ""},
    {"binary fields have digits for all values, also where storing truncates",
     "01 REC.\n 05 A PIC S9(4) COMP.\n 05 B PIC S9(4) COMP-5.\n 05 C PIC 9 COMP-5.\n"
     " 05 D BINARY-DOUBLE UNSIGNED.\n 05 E BINARY-LONG.\n 05 F INDEX.\n 05 G PIC X(3) COMP-X.\n"
     " 05 H PIC S99V9 COMP-5.\n",
     "rec 0+26\n a 0+2 t9 5.0\n b 2+2 t11 5.0\n c 4+1 t12 3.0\n d 5+8 t12 20.0\n"
     " e 13+4 t11 10.0\n f 17+4 t11 10.0\n g 21+3 t10 8.0\n h 24+2 t11 5.-1\n",
     ""},
    {"an item of a lower level number than the first of its group",
     "01 REC.\n 05 A PIC X.\n 03 G.\n 10 B PIC X.\n 05 C PIC X.",
     "rec 0+3\n a 0+1 t15\n g 1+2\n  b 1+1 t15\n  c 2+1 t15\n",
     "warning: level 03 follows level 05 in REC"},
    {"points that are stored, and double-byte characters",
     "01 REC.\n 05 A PIC S9(3).99.\n 05 B PIC S9.9 SIGN LEADING SEPARATE.\n 05 C PIC G(3).\n"
     " 05 D PIC G DISPLAY-1.",
     "rec 0+18\n a 0+6 t2 5.-2\n b 6+4 t5 2.-1\n c 10+6 t15\n d 16+2 t15\n", ""},
    {"kinds of characters",
     "01 REC.\n 05 A PIC A(2).\n 05 B PIC Z9.9.\n 05 C PIC X(2) JUST.\n 05 D PIC N(2).\n"
     " 05 E POINTER.\n*> sxml: hex\n 05 F PIC 9(4) COMP.\n*> sxml: hide\n 05 G PIC X.\n",
     "rec 0+23\n a 0+2 t16\n b 2+4 t17\n c 6+2 t18\n d 8+4 t24\n e 12+8 t19 hex\n"
     " f 20+2 t19 hex\n",
     ""},
    {"names of groups stand once, fields of one name stay",
     "01 REC.\n 05 BILL.\n 10 ADDR.\n 15 CITY PIC X.\n 05 SHIP.\n 10 ADDR.\n 15 CITY PIC X.\n"
     " 10 BILL PIC X.",
     "rec 0+3\n bill 0+1\n  addr 0+1\n   city 0+1 t15\n ship 1+2\n  ship_addr 1+1\n"
     "   city 1+1 t15\n  ship_bill 2+1 t15\n",
     "this one becomes ship_addr"},
    {"fields of one name that a schema would describe alike only once",
     "01 REC.\n 05 G.\n 10 A PIC X.\n 05 H.\n 10 A PIC 9.",
     "rec 0+2\n g 0+1\n  a 0+1 t15\n h 1+1\n  a 1+1 t1 1.0\n", "differ in type or size"},
    {"fields beside each other differ, whatever they are called",
     "01 REC.\n 05 A PIC X.\n 05 A PIC X.\n 05.\n 10 A PIC X.",
     "rec 0+3\n a 0+1 t15\n rec_a 1+1 t15\n rec_a_2 2+1 t15\n", "another item is called a"},
    {"names that are not XML names",
     "01 REC.\n 05 1ST-NAME PIC X.\n 05 XML-ID PIC X.\n*> sxml: name Customer-Name\n 05 A PIC X.",
     "rec 0+3\n _1st_name 0+1 t15\n _xml_id 1+1 t15\n customer_name 2+1 t15\n",
     "would not read back"},
    {"the first of the items that redefine each other",
     "01 REC.\n 05 A PIC X(4).\n 05 B REDEFINES A PIC 9(4).\n 05 C PIC X.",
     "rec 0+5\n a 0+4 t15\n c 4+1 t15\n", "A is described, not B"},
    {"another one, when the first is left out",
     "01 REC.\n*> sxml: hide\n 05 A PIC X(4).\n 05 B REDEFINES A PIC 9(4).",
     "rec 0+4\n b 0+4 t1 4.0\n", ""},
    {"variants of one record, the last when no other is meant; what is tested is read first",
     "01 REC.\n 05 T PIC X.\n 05 A PIC X(4).\n*> sxml: when T = 'B'\n 05 B REDEFINES A.\n"
     " 10 S PIC X.\n 10 P PIC X(3).\n*> sxml: when S = '1'\n 10 Q REDEFINES P PIC 9(3).",
     "rec 0+5\n t 0+1 t15\n a 1+4 t15 c1\n b 1+4\n  s 1+1 t15 c2\n  p 2+3 t15 c3\n"
     "  q 2+3 t1 3.0 c4\n",
     ""},
    {"variants in a table are told apart in each occurrence",
     "01 REC.\n 05 E OCCURS 2.\n 10 T PIC X.\n 10 A PIC X.\n*> sxml: when T = 'B'\n"
     " 10 B REDEFINES A PIC 9.",
     "rec 0+4\n e 0+2 1/2\n  t 0+1 t15 1/2\n  a 1+1 t15 c1 1/2\n  b 1+1 t1 1.0 c3 1/2\n"
     " e 2+2 2/2\n  t 2+1 t15 2/2\n  a 3+1 t15 c2 2/2\n  b 3+1 t1 1.0 c4 2/2\n",
     ""},
    {"record layouts: the one without a condition comes last",
     "01 RAW PIC X(5).\n*> sxml: when H-T = 'H'\n01 HDR.\n 05 H-T PIC X.\n 05 H-D PIC 9(4).\n"
     "*> sxml: when H-T = 'D'\n01 DTL.\n 05 D-T PIC X.\n 05 D-A PIC X(2).",
     "hdr 0+5\n h_t 0+1 t15\n h_d 1+4 t1 4.0 c1\ndtl 0+3\n d_t 0+1 t15\n d_a 1+2 t15 c2\n"
     "raw 0+5\n raw_data 0+5 t15\n",
     ""},
    {"record layouts without conditions: the first", "01 A.\n 05 X PIC X.\n01 B.\n 05 Y PIC X(2).",
     "a 0+1\n x 0+1 t15\n", "A is described, not B"},
    {"a layout of which only the tested field is described keeps its unused space",
     "*> sxml: when T = 'T'\n01 TRL.\n 05 T PIC X.\n 05 FILLER PIC X(3).\n"
     "*> sxml: when DT = 'D'\n01 DTL.\n 05 DT PIC X.\n 05 DA PIC X.",
     "trl 0+4\n t 0+1 t15\n filler 1+3 t15 c1\ndtl 0+2\n dt 0+1 t15\n da 1+1 t15 c2\n", ""},
    {"records of no known variant keep the bytes of its place, so that later layouts are found",
     "*> sxml: when T = 'H'\n01 HDR.\n 05 T PIC X.\n 05 K PIC X.\n*> sxml: when K = '1'\n"
     " 05 V PIC X(2).\n*> sxml: when K = '2'\n 05 W REDEFINES V.\n 10 W-1 PIC 9(3).\n"
     "*> sxml: when DT = 'D'\n01 DTL.\n 05 DT PIC X.\n 05 DX PIC X.",
     "hdr 0+5\n t 0+1 t15\n k 1+1 t15\n v 2+2 t15 c1\nhdr_w 0+5\n t 0+1 t15\n k 1+1 t15\n w 2+3\n"
     "  w_1 2+3 t1 3.0 c2\nhdr_other 0+5\n t 0+1 t15\n k 1+1 t15\n filler 2+3 t15 c3\n"
     "dtl 0+2\n dt 0+1 t15\n dx 1+1 t15 c4\n",
     "W (3 bytes) is longer"},
    {"bytes of variants that are not text are hexadecimal",
     "*> sxml: when T = 'H'\n01 HDR.\n 05 T PIC X.\n*> sxml: when T > 'H'\n 05 V PIC 9(3) COMP-3.\n"
     "*> sxml: when DT = 'D'\n01 DTL.\n 05 DT PIC X.\n 05 DX PIC X.",
     "hdr 0+3\n t 0+1 t15\n v 1+2 t7 3.0 c1\nhdr_other 0+3\n t 0+1 t15\n filler 1+2 t19 hex c2\n"
     "dtl 0+2\n dt 0+1 t15\n dx 1+1 t15 c3\n",
     ""},
    {"layouts of the tested field alone are marked, the last one, too",
     "*> sxml: when T = 'T'\n01 TRL.\n 05 T PIC X.\n*> sxml: when DT = 'D'\n01 DTL.\n"
     " 05 DT PIC X.",
     "trl 0+1\n t 0+1 t15\n filler 0+0 t15 c1\ndtl 0+1\n dt 0+1 t15\n filler 0+0 t15 c2\n", ""},
    {"a condition of the only layout is not tested", "*> sxml: when T = 'T'\n01 TRL.\n 05 T PIC X.",
     "trl 0+1\n t 0+1 t15\n",
     "TRL is the only record layout described; its condition is not tested"},
    {"unused space in the place of the tested field is described as that field",
     "*> sxml: when T = 1\n01 HDR.\n 05 T PIC 9.\n 05 H PIC X.\n*> sxml: when T = 2\n01 DTL.\n"
     " 05 G.\n 10 FILLER PIC X.\n 10 D PIC X.",
     "hdr 0+2\n t 0+1 t1 1.0\n h 1+1 t15 c1\ndtl 0+2\n g 0+2\n  t 0+1 t1 1.0\n  d 1+1 t15 c2\n",
     ""},
    {"the tested field is described in the middle of unused space, too",
     "*> sxml: when T = 1\n01 HDR.\n 05 H PIC X.\n 05 T PIC 9.\n*> sxml: when T = 2\n01 DTL.\n"
     " 05 FILLER PIC X(4).\n 05 D PIC X.",
     "hdr 0+2\n h 0+1 t15 c1\n t 1+1 t1 1.0\ndtl 0+5\n t 1+1 t1 1.0\n d 4+1 t15 c2\n", ""},
    {"a layout with variants is described once for each",
     "*> sxml: when T = 'A'\n01 A.\n 05 T PIC X.\n 05 K PIC X.\n 05 V PIC X(2).\n"
     "*> sxml: when K = '1'\n 05 W REDEFINES V PIC 9(2).\n"
     "*> sxml: when BT = 'B'\n01 B.\n 05 BT PIC X.\n 05 BX PIC X.",
     "a 0+4\n t 0+1 t15\n k 1+1 t15\n v 2+2 t15 c1\na_w 0+4\n t 0+1 t15\n k 1+1 t15\n"
     " w 2+2 t1 2.0 c2\nb 0+2\n bt 0+1 t15\n bx 1+1 t15 c3\n",
     ""},
    {"what is read before the layout is known is not called like another layout's field",
     "*> sxml: when T = 'A'\n01 A.\n 05 T PIC X.\n 05 N PIC X(3).\n*> sxml: when N = '1'\n01 B.\n"
     " 05 X PIC X.\n 05 Y PIC X.\n 05 N PIC X.\n 05 M PIC X.",
     "a 0+4\n t 0+1 t15\n n 1+3 t15 c1\nb 0+4\n x 0+1 t15 c2\n y 1+1 t15 c2\n b_n 2+1 t15\n"
     " m 3+1 t15 c2\n",
     "this one becomes b_n"},
};

TEST(Compile, ItemsOfCopybooks) {
    for (const Case& each : CASES) {
        SCOPED_TRACE(each.name);
        const Compiled compiled = compile(each.copybook);
        ASSERT_TRUE(compiled.description) << compiled.messages;
        EXPECT_EQ(items_text(compiled.description->xfd()), each.items);
        if (*each.message == '\0') {
            EXPECT_EQ(compiled.messages, "");
        } else {
            EXPECT_NE(compiled.messages.find(each.message), std::string::npos) << compiled.messages;
        }
    }
}

TEST(Compile, ErrorsNamePlaceAndRemedy) {
    const struct {
        const char* copybook;
        const char* message;
    } cases[] = {
        {"01 R.\n 05 T PIC X OCCURS 32768.", "orders.cpy:2:13: error: OCCURS 32768 is more than"},
        {"01 R.\n 05 T OCCURS 30000.\n 10 U PIC X OCCURS 100.", "more than the 1000000"},
        {"01 R.\n 05 T OCCURS 30000.\n 10 U PIC X(30000).", "the record is longer than"},
        {"01 R.\n 05 A PIC X.\n 05 B REDEFINES C PIC X.", "3:17: error: no item C of level 5"},
        {"01 R.\n 05 A PIC 9(19) COMP.", "at most 18 digits"},
        {"01 R.\n 05 A PIC X COMP-3.", "is not numeric"},
        {"01 R.\n 05 A PIC X(9) COMP-1.", "A cannot have a PICTURE, since its usage is COMP-1"},
        {"01 R.\n 05 G INDEX.\n 10 A PIC 9.", "A cannot have a PICTURE, since its usage is INDEX"},
        {"01 R.\n 05 A PIC 9 SIGN LEADING SEPARATE.", "needs a PICTURE with S; add the S"},
        {"01 R.\n 05 A PIC S9 COMP-3 SIGN LEADING.", "does not go with usage COMP-3"},
        {"01 R.\n 05 A PIC S9.9 COMP-3.", "goes with usage DISPLAY only"},
        {"01 R.\n 05 N PIC 9.\n 05 G.\n 10 T PIC X OCCURS 4 DEPENDING N.\n 05 Z PIC X.",
         "4:13: error: Z comes after the table T, whose DEPENDING ON moves it; say how the "
         "records lie: --odo sliding"},
        {"01 R.\n 05 N PIC 9.\n 05 G OCCURS 2.\n 10 T PIC X OCCURS 4 DEPENDING N.",
         "T has DEPENDING ON and lies in the table G"},
        {"01 R.\n 05 FILLER PIC X.", "no field of the record gives an element"},
        {"01 R.\n*> sxml: when Z = 1\n 05 A PIC X.", "no item or condition name Z"},
        {"01 R.\n*> sxml: when A\n 05 A PIC X.", "is not a condition name"},
        {"01 R.\n*> sxml: when N = 'X'\n 05 N PIC 9 COMP.", "cannot be compared with the number"},
        {"01 R.\n*> sxml: when A = 1\n 05 G.\n 10 B PIC X.\n 05 H.\n 10 A PIC X.\n 05 I.\n 10 A "
         "PIC X.",
         "A is ambiguous"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.copybook);
        const Compiled compiled = compile(each.copybook);
        EXPECT_FALSE(compiled.description);
        EXPECT_NE(compiled.messages.find(each.message), std::string::npos) << compiled.messages;
    }
}

TEST(Compile, NamesFollowTheColumnCase) {
    const char* copybook = "01 CUST-REC.\n 05 CUST-ID PIC X.\n 05 G.\n 10 CUST-ID.\n 15 A PIC X.";
    const struct {
        NameCase name_case;
        const char* name;
        const char* record;
        const char* field;
        const char* qualified;
    } cases[] = {{NameCase::lower, "cust_rec_file", "cust_rec", "cust_id", "g_cust_id"},
                 {NameCase::underscores, "CUST_REC_FILE", "CUST_REC", "CUST_ID", "G_CUST_ID"},
                 {NameCase::unchanged, "CUST-REC-FILE", "CUST-REC", "CUST-ID", "G-CUST-ID"}};
    for (const auto& each : cases) {
        LayoutOptions options;
        options.name_case = each.name_case;
        options.name = "CUST-REC";  // the record's own name: the description gives way
        const Description description = described(copybook, options);
        const Xfd& xfd = description.xfd();
        EXPECT_STREQ(xfd.name, each.name);
        EXPECT_STREQ(xfd.items[0].name, each.record);
        EXPECT_STREQ(xfd.items[1].name, each.field);
        EXPECT_STREQ(xfd.items[3].name, each.qualified);
    }
    LayoutOptions options;
    options.name = std::string(300, 'X');
    options.filler = true;
    const Description filler = described("01 R.\n 05 FILLER PIC X.\n 05 PIC X.", options);
    EXPECT_EQ(std::strlen(filler.xfd().name), XFD_NAME_SIZE - 1);
    EXPECT_EQ(items_text(filler.xfd()), "r 0+2\n filler_1 0+1 t15\n filler_2 1+1 t15\n");
}

TEST(Compile, LongNamesAreCutAndStayDifferent) {
    const std::string base(70, 'A');
    const Compiled compiled = compile("01 R.\n*> sxml: name " + base + "12345678\n 05 A PIC X.\n" +
                                      "*> sxml: name " + base + "12345679\n 05 B PIC X.");
    ASSERT_TRUE(compiled.description) << compiled.messages;
    const Xfd& xfd = compiled.description->xfd();
    EXPECT_EQ(std::strlen(xfd.items[1].name), XFD_ITEM_NAME_SIZE - 1);
    EXPECT_LT(std::strlen(xfd.items[2].name), XFD_ITEM_NAME_SIZE);
    EXPECT_STRNE(xfd.items[1].name, xfd.items[2].name);
    EXPECT_NE(compiled.messages.find("longer than 75"), std::string::npos);
}

TEST(Compile, LengthFollowsTheCounter) {
    const Description description =
        described("01 R.\n 05 N PIC 9(2).\n 05 T PIC X(3) OCCURS 1 TO 4 DEPENDING ON N.");
    EXPECT_EQ(description.record_length(), 14);
    EXPECT_EQ(description.min_record_length(), 5);
    const struct {
        const char* record;
        std::int32_t length;
        std::int32_t used;
    } cases[] = {{"02aaabbbcccddd", 14, 8},
                 {"04aaabbbcccddd", 14, 14},
                 {"00aaabbbcccddd", 14, 14},
                 {"99aaabbbcccddd", 14, 14},
                 {"xxaaabbbcccddd", 14, 14},
                 {"04aaabbb", 8, 8},
                 {"0", 1, 1}};
    for (const auto& each : cases) {
        EXPECT_EQ(description.used_length(each.record, each.length, {}), each.used) << each.record;
    }
    const Description from_one =
        described("01 R.\n 05 N PIC 9.\n 05 T PIC X OCCURS 4 DEPENDING N.");
    EXPECT_EQ(from_one.min_record_length(), 2);
    EXPECT_EQ(from_one.used_length("2abcd", 5, {}), 3);
    // A table that does not end the record takes its full room, if the user says so.
    LayoutOptions full;
    full.moving_data = MovingData::fixed;
    const Description inner = described(
        "01 R.\n 05 N PIC 9.\n 05 T PIC X OCCURS 1 TO 4 DEPENDING ON N.\n 05 Z PIC X.", full);
    EXPECT_EQ(inner.used_length("1abcdZ", 6, {}), 6);
}

// Sizes, byte orders and slack bytes of a mainframe, which cobc cannot confirm.
TEST(Compile, MainframesPlaceBinaryItemsTheirOwnWay) {
    LayoutOptions options;
    options.encoding = RecordEncoding::ebcdic;
    const std::string copybook =
        "01 R.\n 05 A PIC X(5).\n 05 B PIC X(5).\n 05 G.\n 10 P PIC S9(6) COMP SYNC.\n"
        " 05 T OCCURS 2.\n 10 T-X PIC X.\n 10 T-P PIC S9(4)V99 COMP SYNC.\n"
        " 10 T-H PIC S9(3) COMP SYNC.\n 10 T-N PIC X(5).\n"
        " 05 S SYNC.\n 10 S-1 PIC 9 COMP-5.\n 10 S-2 COMP-1.\n 10 S-3 COMP-2.\n"
        " 10 S-4 PIC S9(18) COMP.\n 10 S-5 INDEX.\n 10 S-6 POINTER.\n";
    EXPECT_EQ(items_text(described(copybook, options).xfd()),
              "r 0+80\n a 0+5 t15\n b 5+5 t15\n g 12+4\n  p 12+4 t9 10.0\n"
              " t 16+16 1/2\n  t_x 16+1 t15 1/2\n  t_p 20+4 t9 10.-2 1/2\n"
              "  t_h 24+2 t9 5.0 1/2\n  t_n 26+5 t15 1/2\n"
              " t 32+16 2/2\n  t_x 32+1 t15 2/2\n  t_p 36+4 t9 10.-2 2/2\n"
              "  t_h 40+2 t9 5.0 2/2\n  t_n 42+5 t15 2/2\n"
              " s 48+32\n  s_1 48+2 t10 5.0\n  s_2 52+4 t14 88.-87\n  s_3 56+8 t14 97.-96\n"
              "  s_4 64+8 t9 19.0\n  s_5 72+4 t9 10.0\n  s_6 76+4 t19 hex\n");
    options.machine = Machine::native;
    const std::string pair = "01 R.\n 05 C PIC 9 COMP.\n 05 D PIC 9 COMP-5.\n 05 F COMP-1.";
    EXPECT_EQ(items_text(described(pair, options).xfd()),
              "r 0+6\n c 0+1 t10 3.0\n d 1+1 t12 3.0\n f 2+4 t13 47.-46\n");
    options.byte_order = ByteOrder::native;
    EXPECT_NE(items_text(described(pair, options).xfd()).find("c 0+1 t12"), std::string::npos);
    options.machine = Machine::mainframe;
    EXPECT_NE(items_text(described(pair, options).xfd()).find("c 0+2 t10"), std::string::npos);
    options.binary_size = BinarySize::by_digits_1248;
    EXPECT_NE(items_text(described(pair, options).xfd()).find("d 1+1 t10"), std::string::npos);
}

TEST(Compile, RowsShowWhatGivesNoElement) {
    const Description description = described(
        "01 R.\n 05 T PIC X.\n 05 FILLER PIC X(2).\n 05 A PIC S9(3) COMP-3.\n"
        "*> sxml: when T = 'B'\n 05 B REDEFINES A PIC XX.\n"
        " 05 C PIC X OCCURS 1 TO 3 DEPENDING ON A.");
    std::string text;
    for (const Description::Row& row : description.rows()) {
        text += std::to_string(row.offset) + "+" + std::to_string(row.length) + " " +
                std::to_string(row.level) + "|" + row.name + "|" + row.xml_name + "|" +
                row.picture + "|" + row.usage + "|" + row.occurs + "|" + row.condition + "|" +
                row.redefines + "\n";
    }
    EXPECT_EQ(text,
              "0+8 1|R|r|||||\n"
              "0+1 5|T|t|X|DISPLAY|||\n"
              "1+2 5|||X(2)|DISPLAY|||\n"
              "3+2 5|A|a|S9(3)|COMP-3||NOT (T = \"B\")|\n"
              "3+2 5|B|b|XX|DISPLAY||T = \"B\"|A\n"
              "5+1 5|C|c|X|DISPLAY|1 to 3 depending on A||\n");
}

// A copybook of ten thousand lines, with redefinitions and names that clash.
TEST(Compile, TenThousandLines) {
    std::string copybook = "01 R.\n";
    for (int i = 0; i < 2500; ++i) {
        const std::string n = std::to_string(i);
        copybook += " 05 G-" + n + ".\n 10 A PIC X(4).\n 10 B REDEFINES A PIC 9(4).\n 10 H.\n" +
                    " 15 C-" + n + " PIC S9(5) COMP-3.\n";
    }
    const Description description = described(copybook);
    EXPECT_EQ(description.xfd().item_count, 1 + 4 * 2500);
    EXPECT_EQ(description.record_length(), 7 * 2500);
}

}  // namespace
