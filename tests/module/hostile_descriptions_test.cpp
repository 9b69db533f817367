// Descriptions with wrong numbers in them: nothing is read outside the record, and every walk ends.
#include <limits>

#include "host/runtime/streams.h"
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

using HostileDescriptionsTest = ModuleTest;

constexpr int LARGEST = std::numeric_limits<std::int32_t>::max();

TEST_F(HostileDescriptionsTest, VariantsStandInForGroupsOnce) {
    XfdBuilder builder("f");
    builder.group(1, "row");
    builder.text(2, "kind", 0, 1);
    const int first = builder.group(2, "first", 1);
    builder.text(3, "f", 1, 1);
    const int second = builder.group(2, "second", 1);
    builder.group(3, "inner", 1);  // would be written as `second` for ever
    builder.text(4, "s", 1, 1);
    builder.condition(0, 'x', 1);
    builder.condition(0, 'x', -1);
    builder.condition(0, 'x', 30000);
    builder.condition(0, 'x', second);
    builder.condition(0, 'x', first);
    const std::string variant = "  <second>\n   <inner>\n    <s>v</s>\n   </inner>\n  </second>\n";
    EXPECT_EQ(elements(builder.xfd(true), {"kv"}),
              lines(" <row>\n  <kind>k</kind>\n" + variant + variant + " </row>\n"));
}

TEST_F(HostileDescriptionsTest, FieldsStayInsideTheRecord) {
    struct Case {
        int offset;
        int length;
        const char* expected;  // the text of a character field at level 1
        bool kept;             // below a group: whether its extent seems to lie in the record
    };
    const Case cases[] = {
        {-2, 4, "", true},        {LARGEST, 10, "", false},  {0, LARGEST, "abcd", false},
        {2, -1, "", true},        {2, LARGEST, "cd", false}, {4, 0, "", true},
        {-1, LARGEST, "", false}, {5, 1, "", false},
    };
    for (const Case& c : cases) {
        XfdBuilder builder("f");
        builder.text(1, "v", c.offset, c.length);
        EXPECT_EQ(elements(builder.xfd(), {"abcd"}), std::string(" <v>") + c.expected + "</v>\r\n");
        XfdBuilder number("f");
        number.number(1, "v", c.offset, c.length, 5);
        EXPECT_EQ(elements(number.xfd(), {"1234"}), " <v></v>\r\n");
        for (const int digits : {-128, 5, 127}) {
            XfdBuilder group("f");
            group.group(1, "g");
            group.number(2, "v", c.offset, c.length, digits, -128);
            if (c.length == 0) continue;
            EXPECT_EQ(elements(group.xfd(), {"abcd"}),
                      lines(c.kept ? " <g>\n  <v></v>\n </g>\n" : " <g>\n </g>\n"));
        }
    }
}

TEST_F(HostileDescriptionsTest, DeepNestingNeedsNoStack) {
    constexpr int DEPTH = 3000;
    XfdBuilder builder("f");
    for (int level = 1; level < DEPTH; ++level) builder.group(level, "g");
    builder.text(DEPTH, "v", 0, 1);
    const std::string text = document(builder.xfd(), {"x"});
    EXPECT_NE(text.find(std::string(DEPTH, ' ') + "<v>x</v>\r\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with("\r\n </g>\r\n</f>\r\n"));

    // As deep as levels go, from the least to the greatest, the width counting without its sign.
    XfdBuilder deepest("f");
    for (int level = -32768; level < 32767; level += 5) deepest.group(level, "g", 1);
    deepest.text(32767, "v", 0, 0);
    describe("/dev/null", deepest.xfd());
    set("SXML_CREATE_STYLE", "NONE");
    XmlFile* const file = module().open("/dev/null", XML_OPEN_OUTPUT);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(module().write(file, "x", 1), 1);
    module().close(file);
}

// Empty groups are taken to hold the next deeper items: each pair of them doubles the work below.
TEST_F(HostileDescriptionsTest, DoublingComesToAnEnd) {
    XfdBuilder builder("f");
    builder.group(1, "g");
    for (int level = 2; level < 60; ++level) {
        builder.group(level, "g");
        builder.group(level, "g");
    }
    builder.text(60, "v", 0, 1);
    const std::string text = document(builder.xfd(), {"x"});
    EXPECT_GT(text.size(), 1'000'000U);
    EXPECT_LT(text.size(), 100'000'000U);
    EXPECT_TRUE(text.ends_with(" </g>\r\n</f>\r\n"));
}

TEST_F(HostileDescriptionsTest, EmptyGroupsMayHoldWhiteSpace) {
    XfdBuilder builder("f");
    builder.group(1, "row");
    builder.text(2, "v", 0, 1);
    builder.group(2, "nothing");
    document(builder.xfd(), {"x"});
    expect_valid("--valid " + path("out.xml"));
}

TEST_F(HostileDescriptionsTest, ConditionsOutOfRangeDoNotHold) {
    XfdBuilder builder("f");
    builder.text(1, "v", 0, 1, 7);
    EXPECT_EQ(elements(builder.xfd(true), {"x"}), " <v></v>\r\n");
    builder.item(0).condition = -1;
    builder.item(0).dimensions_word = 15;
    EXPECT_EQ(elements(builder.xfd(), {"x"}), " <v></v>\r\n");
}

// Without conventions the decimal point stands and encoded text is taken byte by byte.
TEST_F(HostileDescriptionsTest, ConventionsMayBeMissing) {
    XfdBuilder builder("f");
    builder.group(1, "row");
    builder.number(2, "n", 0, 3, 3, -1);
    builder.number(2, "t", 3, 3, 0, 0, records::ENCODED_TEXT);
    Xfd* const xfd = builder.xfd();
    xfd->conventions = nullptr;
    EXPECT_EQ(elements(xfd, {"123\xC3<x"}),
              lines(" <row>\n  <n>12.3</n>\n  <t>\xC3&lt;x</t>\n </row>\n"));
}

TEST_F(HostileDescriptionsTest, AFullDiskIsRemembered) {
    XfdBuilder builder = customers();
    describe("/dev/full", builder.xfd());
    XmlFile* const file = module().open("/dev/full", XML_OPEN_OUTPUT);
    ASSERT_NE(file, nullptr);
    for (int i = 0; i < 2000; ++i) {
        EXPECT_EQ(module().write(file, SMITH.data(), static_cast<std::uint32_t>(SMITH.size())), 1);
    }
    module().close(file);
    EXPECT_EQ(*host_file_error(), HOST_FILE_OK);
    EXPECT_TRUE(host::take_write_failure().has_value());
}

}  // namespace
