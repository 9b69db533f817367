// Writing records: values, conditions, layouts, empty data, record length, trace.
#include <cstdint>

#include "host/encoding.h"
#include "host/files.h"
#include "host/runtime/trace_control.h"
#include "sxml/xml_api.h"
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

using WriteTest = ModuleTest;

std::string units(std::u32string_view text, std::size_t width, bool big_endian) {
    std::string bytes;
    for (const char32_t unit : text) {
        for (std::size_t i = 0; i < width; ++i) {
            const std::size_t shift = 8 * (big_endian ? width - 1 - i : i);
            bytes += static_cast<char>(unit >> shift & 0xFF);
        }
    }
    return bytes;
}

TEST_F(WriteTest, RecordLengthCutsTheRecord) {
    XfdBuilder builder = customers();
    builder.item(4).offset = 41;       // the group addr starts where the shorter records end
    builder.item(4).data.length = 99;  // groups have no length of their own, whatever is there
    const std::string head = lines(
        " <customer>\n  <cust_id>42</cust_id>\n  <cust_name>Smith</cust_name>\n"
        "  <balance>123.45</balance>\n");
    const std::string addr = lines(
        "  <addr>\n   <city>Paris</city>\n   <zip>75001</zip>\n  </addr>\n"
        "  <phone>1234</phone>\n");
    const std::string end = lines(" </customer>\n");
    const std::string second = lines("  <phone></phone>\n");
    EXPECT_EQ(elements(builder.xfd(), {SMITH.substr(0, 22)}), head + end);
    EXPECT_EQ(elements(builder.xfd(), {SMITH.substr(0, 41)}), head + addr + end);
    EXPECT_EQ(elements(builder.xfd(), {SMITH.substr(0, 43)}), head + addr + second + end);
    EXPECT_EQ(elements(builder.xfd(), {""}), lines(" <customer>\n </customer>\n"));
}

TEST_F(WriteTest, FieldValues) {
    using namespace std::string_literals;
    struct Case {
        int type;
        std::int32_t encoding;  // of character fields in the conventions; a number's scale
        std::string data;
        std::string expected;
        bool empty = false;  // dropped when empty data is ignored
    };
    const std::u32string_view markup = U"<\u3C00\u3E00>&'\" \t";
    const auto wide = [&](std::size_t width, bool big) {
        return "&lt;" + units(U"\u3C00\u3E00", width, big) + "&gt;&amp;&apos;&quot;";
    };
    const Case cases[] = {
        {records::ALPHANUMERIC, 0, "A<B&C", "A&lt;B&amp;C"},
        {records::ALPHANUMERIC, 0, " \tA\tB'\"> ", "A&#x09;B&apos;&quot;&gt;"},
        {records::ALPHANUMERIC, 0, "A\x1F\r\nB\x7F\x80", "A&#x1f;&#x0d;&#x0a;B\x7F\x80"},
        {records::ALPHANUMERIC, 0, "AB  \0 "s, "AB  "},
        {records::ALPHANUMERIC, 0, "A\0B"s, "A"},
        {records::ALPHANUMERIC, 0, "\0\0\0"s, "", true},
        {records::ALPHANUMERIC, 0, "   ", "", true},
        {records::NATIONAL, 0, "caf\xE9<", "caf\xE9&lt;"},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF8, "\xC3\xA9<\xE2\x82\xAC",
         "\xC3\xA9&lt;\xE2\x82\xAC"},
        // A character cut at the end of the field, and one whose second byte would be markup.
        {records::ENCODED_TEXT, HOST_ENCODING_UTF8, "a\xE2\x82", "a\xE2\x82"},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF8, "a\xC3<", "a\xC3<"},
        {records::ENCODED_TEXT, HOST_ENCODING_LATIN1, "\xC3<", "\xC3&lt;"},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF16LE, units(markup, 2, false), wide(2, false)},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF16BE, units(markup, 2, true), wide(2, true)},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF32LE, units(markup, 4, false), wide(4, false)},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF32BE, units(markup, 4, true), wide(4, true)},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF16LE, units(U"\xD83C\xDC3C<", 2, false),
         units(U"\xD83C\xDC3C", 2, false) + "&lt;"},
        // The first half of a pair at the end of the field, and half a unit.
        {records::ENCODED_TEXT, HOST_ENCODING_UTF16LE, units(U"<\xD83C", 2, false),
         "&lt;" + units(U"\xD83C", 2, false)},
        {records::ENCODED_TEXT, HOST_ENCODING_UTF16BE, units(U"a<", 2, true) + "x",
         units(U"a", 2, true) + "&lt;"},
        {44, HOST_ENCODING_UTF16LE, units(markup, 2, false), wide(2, false)},
        {records::ENCODED_TEXT, 99, "text", "", true},
        {records::ENCODED_TEXT, -2, "text", "", true},
        {records::DISPLAY_UNSIGNED, 0, "00000", "0", true},
        {records::DISPLAY_UNSIGNED, 0, "00070", "70"},
        {records::DISPLAY_UNSIGNED, -2, "01234", "12.34"},
    };
    for (const Case& c : cases) {
        XfdBuilder builder("f");
        const int length = static_cast<int>(c.data.size());
        const int scale = c.type == records::DISPLAY_UNSIGNED ? c.encoding : 0;
        const records::FieldExtra comma = {
            5, static_cast<std::int8_t>(scale), records::FIELD_DECIMAL_COMMA, {}};
        builder.number(1, "v", 0, length, length, scale, static_cast<std::int16_t>(c.type));
        records::set_field_extra(builder.item(0).data, comma);
        builder.conventions().field_encoding = c.encoding;
        builder.conventions().decimal_point = ',';
        const std::string expected = " <v>" + c.expected + "</v>\r\n";
        EXPECT_EQ(elements(builder.xfd(), {c.data}), expected);
        set("SXML_IGNORE_EMPTY_DATA", "yes");
        EXPECT_EQ(elements(builder.xfd(), {c.data}), c.empty ? "" : expected);
        set("SXML_IGNORE_EMPTY_DATA", nullptr);
    }
}

TEST_F(WriteTest, BinaryDataIsHexadecimal) {
    for (const std::size_t length : {1U, 252U, 253U, 3000U}) {
        std::string data(length, '\x80');
        data.back() = '\n';
        XfdBuilder builder("f");
        builder.number(1, "v", 0, static_cast<int>(length), 5);
        builder.item(0).format = XFD_FORMAT_BINARY;
        std::string hex;
        for (std::size_t i = 1; i < length; ++i) hex += "80";
        EXPECT_EQ(elements(builder.xfd(), {data}), " <v>" + hex + "0A</v>\r\n");
    }
}

TEST_F(WriteTest, ChoosesTheFirstLayoutThatQualifies) {
    XfdBuilder builder = orders();
    const auto hdr = [](const char* kind, const char* text) {
        return lines(std::string(" <hdr>\n  <kind>") + kind + "</kind>\n  <hdr_text>" + text +
                     "</hdr_text>\n </hdr>\n");
    };
    const std::string dtl = lines(" <dtl>\n  <kind>-D</kind>\n  <amount>0012</amount>\n </dtl>\n");
    EXPECT_EQ(elements(builder.xfd(true), {"HDabcd", "-D0012", "--abcd"}),
              hdr("HD", "abcd") + dtl + hdr("--", ""));
    EXPECT_EQ(elements(builder.xfd(false), {"-D0012"}), hdr("-D", ""));
    Xfd* const xfd = builder.xfd(true);
    xfd->record_scan_count = 3;
    EXPECT_EQ(elements(xfd, {"-D0012"}), hdr("-D", ""));
    xfd->record_scan_count = 1000;
    EXPECT_EQ(elements(xfd, {"-D0012"}), dtl);
}

TEST_F(WriteTest, EmptyElementsAreDroppedOnRequest) {
    XfdBuilder builder = customers();
    const std::string empty = "00000" + std::string(10, ' ') + "0000000" + std::string(25, ' ');
    std::string only_phone = empty;
    only_phone.replace(39, 4, "1234");
    set("SXML_IGNORE_EMPTY_DATA", "yes");
    const std::string phone = lines(" <customer>\n  <phone>1234</phone>\n </customer>\n");
    EXPECT_EQ(elements(builder.xfd(), {empty, only_phone, empty, only_phone, empty}),
              phone + phone);
    const std::string end = "<custfile>\r\n</custfile>\r\n";
    EXPECT_TRUE(document(builder.xfd(), {empty}).ends_with(end));
}

// A dropped element may be longer than what is gathered before it reaches the stream.
TEST_F(WriteTest, LongEmptyElementsLeaveNothingBehind) {
    XfdBuilder builder("f");
    builder.group(1, "row");
    builder.text(2, "first", 2, 1);
    builder.group(2, "long");
    const std::string name(75, 'n');
    for (int i = 0; i < 100; ++i) builder.text(i + 3, name, 0, 1);
    builder.text(2, "last", 1, 1);
    set("SXML_IGNORE_EMPTY_DATA", "yes");
    EXPECT_EQ(elements(builder.xfd(), {" x&", "   "}),
              lines(" <row>\n  <first>&amp;</first>\n  <last>x</last>\n </row>\n"));
}

TEST_F(WriteTest, TracesEveryStep) {
    XfdBuilder builder = orders();
    builder.number(2, "count", 2, 1, 1);
    builder.text(2, "bits", 3, 1);
    builder.item(7).format = XFD_FORMAT_BINARY;
    const std::string name = path("out.xml");
    describe(name, builder.xfd(true));
    const std::string trace = path("trace");
    XmlFile* const file = module().open(name.c_str(), XML_OPEN_OUTPUT);
    ASSERT_NE(file, nullptr);
    host::set_trace(2, trace);
    module().write(file, "-D1200", 6);
    module().write(file, "--1200", 6);
    module().close(file);
    host::set_trace(0, "");
    expect_file(read(trace), "write_trace.txt");
}

// The text writers by themselves, as callers of the module find them.
TEST_F(WriteTest, RawTextsStopAtNulInSomeEncodings) {
    auto* const write_text = reinterpret_cast<decltype(xml_write_text)*>(module().ordinal(30));
    auto* const write_string = reinterpret_cast<decltype(xml_write_string)*>(module().ordinal(33));
    ASSERT_NE(write_text, nullptr);
    ASSERT_NE(write_string, nullptr);
    const std::string name = path("raw");
    HostStream* const stream = host_fopen(name.c_str(), "wb", 0);
    const XmlTextSpan span = {" <\0 ", 4, 0};
    EXPECT_EQ(write_text(stream, 0, nullptr, 3), 0U);
    EXPECT_EQ(write_text(stream, 2, &span, 0), 2U);
    EXPECT_EQ(write_text(stream, -1, &span, 2), 2U);
    EXPECT_EQ(write_text(stream, 7, &span, 2), 4U);
    EXPECT_EQ(write_text(stream, 7, &span, 3), 4U);
    EXPECT_EQ(write_string(stream, 0, "\na<\r\n\nb", 0), 10U);
    EXPECT_EQ(write_string(stream, 0, "a<\r", 1), 11U);
    EXPECT_EQ(write_string(stream, 0, "", 0), 0U);
    host_fclose(stream);
    EXPECT_EQ(read(name), std::string(" < < <\0 &lt;\r\na<\r\r\n\r\nba&lt;&#x0d;", 33));
}

}  // namespace
