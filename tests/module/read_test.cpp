// Reading records: which element goes into which field, what the field then holds, and how a
// document ends.
#include <expat.h>

#include <chrono>
#include <random>

#include "host/handles.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/streams.h"
#include "host/runtime/trace_control.h"
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"
#include "tests/support/system.h"

namespace {

using ReadTest = ModuleTest;
using Results = std::vector<ReadResult>;

const std::string ID = "<id>A1</id>";
const std::string FIRST = "<line><sku>s1</sku><qty>1</qty><qty>2</qty></line>";
const std::string SECOND = "<line><sku>s2</sku><qty>3</qty><qty>4</qty></line>";
const std::string HEAD = "<head><name>hh</name></head>";
const std::string FOOT = "<foot><name>ff</name></foot>";
const std::string NAMES = HEAD + FOOT;

TEST_F(ReadTest, MatchesElementsToFields) {
    struct Case {
        std::string row;      // what the row holds
        const char* record;   // the record; dots are left alone
        const char* inexact;  // without exact table match; null: the same
    };
    const Case cases[] = {
        {ID + FIRST + SECOND + NAMES, "A1s112s234hhff", nullptr},
        {FOOT + FIRST + HEAD + ID + SECOND, "A1s112s234hhff", nullptr},
        // No field takes a third line, or an element that occurs twice but is not a table.
        {ID + FIRST + SECOND + SECOND + NAMES, "A1s112s234hhff", nullptr},
        {ID + ID + FIRST + SECOND + NAMES, "..s112s234hhff", nullptr},
        // The only element of a name goes to the first field of that name.
        {ID + FIRST + SECOND + FOOT, "A1s112s234ff..", nullptr},
        {ID + "<deep><deeper><name>xx</name></deeper></deep>", "A1........xx..", nullptr},
        // Elements that are alone carry no numbers.
        {ID + "<line><sku>s1</sku><qty>1</qty></line>", "A1s11.........", nullptr},
        {ID + FIRST, "A1s1..........", "A1s112..2....."},
        {ID + FIRST + "<line><sku>s2</sku><qty>3</qty></line>", "A1s112s2......", "A1s112s23....."},
        {"<sku>s2</sku><qty>9</qty>", "..s29.........", nullptr},
        {"<qty>1</qty><qty>2</qty><qty>3</qty>", "..............", "....12..2....."},
        {"", "..............", nullptr},
        {"<id></id><sku/>", "..............", nullptr},
        {"<id> </id><sku>\n\t</sku>", "    ..........", nullptr},
        {"<id>A</id><sku>long</sku>", "A lo..........", nullptr},
        {"<id/>x<id>B2</id>", "..............", nullptr},
        {"\n <?pi?><!-- c --><x y='1'>?<z/></x> <id a='b'><!-- 1 -->\n<![CDATA[<]]>2\n </id>\n",
         "<2............", nullptr},
        {"<id>&lt;&#x41;</id>", "<A............", nullptr},
        {"<ID>A1</ID><SKU>s1</SKU>", "A1s1..........", nullptr},
    };
    XfdBuilder builder = order_lines();
    for (const Case& c : cases) {
        const std::string document = "<lines>\r\n<row>" + c.row + "</row>\n</lines>";
        const auto expect = [&](const std::string& record) {
            const auto end = static_cast<int>(record.find_last_not_of('.') + 1);
            const Results expected = {{end + 1, 0, record}, {0, 8, std::string(14, '.')}};
            EXPECT_EQ(records(builder.xfd(), document, 14), expected) << c.row;
        };
        expect(c.record);
        set("SXML_EXACT_TABLE_MATCH", "no");
        expect(c.inexact != nullptr ? c.inexact : c.record);
        set("SXML_EXACT_TABLE_MATCH", nullptr);
    }
}

// Subscripts against occurrence numbers where some levels of the tables have but one element.
TEST_F(ReadTest, TellsOccurrencesApart) {
    struct Case {
        std::vector<std::pair<int, int>> subscripts;
        const char* row;  // the element sought holds "x", others "-"
        bool exact;       // found with exact table match
        bool inexact;     // found without it
    };
    const char* const nested = "<g><v>-</v><v>-</v></g><g><v>-</v><v>x</v></g>";
    const char* const outer = "<g><v>-</v></g><g><v>x</v></g>";
    const char* const inner = "<g><v>-</v><v>x</v></g>";
    const char* const three = "<h><g><v>-</v></g></h><h><g><v>-</v></g><g><v>-</v><v>x</v></g></h>";
    const Case cases[] = {
        {{{2, 2}, {2, 2}}, nested, true, true},
        {{{1, 2}, {3, 3}}, nested, false, false},
        {{{1, 2}, {2, 2}}, inner, false, true},
        {{{2, 2}, {1, 2}}, outer, false, true},
        {{{2, 2}, {1, 2}}, inner, false, true},
        {{{2, 2}, {2, 2}}, inner, false, false},
        {{{2, 9}}, outer, true, true},
        {{{2, 2}}, nested, false, false},
        {{{2, 2}, {1, 1}, {1, 1}}, outer, false, true},
        {{{2, 2}, {2, 2}, {2, 2}}, three, true, true},
        {{{1, 2}, {2, 2}, {1, 2}}, inner, false, true},
        {{{1, 2}}, "<v>x</v>", true, true},
        {{{2, 2}}, "<v>x</v>", false, true},
        {{{1, 2}, {1, 2}}, "<v>x</v>", true, true},
    };
    for (const Case& c : cases) {
        XfdBuilder builder("f");
        builder.group(1, "row");
        builder.text(2, "v", 0, 1);
        for (std::size_t i = 0; i < c.subscripts.size(); ++i) {
            builder.item(1).dimensions_word = static_cast<std::uint32_t>(i + 1);
            builder.item(1).subscripts[i] = static_cast<std::int16_t>(c.subscripts[i].first);
        }
        const std::string document = std::string("<f><row>") + c.row + "</row></f>";
        EXPECT_EQ(records(builder.xfd(), document, 1)[0].record, c.exact ? "x" : ".") << c.row;
        set("SXML_EXACT_TABLE_MATCH", "no");
        EXPECT_EQ(records(builder.xfd(), document, 1)[0].record, c.inexact ? "x" : ".") << c.row;
        set("SXML_EXACT_TABLE_MATCH", nullptr);
    }
}

TEST_F(ReadTest, ConditionsSeeTheRecordAsFilledSoFar) {
    struct Case {
        const char* row;
        const char* record;
    };
    const Case cases[] = {
        {"<kind>H-</kind><hdr_text>abcd</hdr_text><amount>0012</amount>", "H-abcd"},
        {"<amount>0012</amount><kind>-D</kind><hdr_text>abcd</hdr_text>", "-D0012"},
        {"<kind>HD</kind><hdr_text>abcd</hdr_text><amount>0012</amount>", "HD0012"},
        {"<hdr_text>abcd</hdr_text>", "......"},
        {"<kind>--</kind><hdr_text>abcd</hdr_text>", "--...."},
    };
    XfdBuilder builder = orders();
    for (const Case& c : cases) {
        for (const bool several : {true, false}) {
            const std::string document = std::string("<orders><any>") + c.row + "</any></orders>";
            EXPECT_EQ(records(builder.xfd(several), document, 6)[0].record, c.record) << c.row;
        }
    }
    // The second condition is judged by what the first one's field has brought.
    builder.item(2).offset = 0;
    EXPECT_EQ(
        records(builder.xfd(true),
                "<o><a><kind>H-</kind><hdr_text>HDxx</hdr_text><amount>12</amount></a></o>", 6)[0]
            .record,
        "HD12  ");
}

TEST_F(ReadTest, NumbersAreConverted) {
    struct Case {
        std::int16_t type;
        int length;
        const char* text;
        std::string record;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {records::DISPLAY_UNSIGNED, 5, "1.5", "00150"},
        {records::DISPLAY_UNSIGNED, 5, "  123.45  ", "12345"},
        {records::DISPLAY_UNSIGNED, 5, "", "....."},
        {records::PACKED_SIGNED, 3, "-123.45", "\x12\x34\x5D"s},
        {records::PACKED_SIGNED, 3, "&#x31;<!-- -->2", "\x01\x20\x0C"s},
    };
    for (const Case& c : cases) {
        XfdBuilder builder("f");
        builder.number(1, "v", 0, c.length, 5, -2, c.type);
        const Results results = records(builder.xfd(), std::string("<f><v>") + c.text + "</v></f>",
                                        static_cast<std::size_t>(c.length));
        EXPECT_TRUE(results[0].record == c.record) << c.text;
    }
}

TEST_F(ReadTest, EveryDocumentEndsWithItsCode) {
    struct Case {
        const char* document;
        Results expected;
    };
    const std::string none = "..";
    const Case cases[] = {
        {"<f></f>", {{0, 8, none}}},
        {"<f/>", {{0, 8, none}}},
        {"<f><r/>text<r></r></f>", {{1, 0, none}, {1, 0, none}, {0, 8, none}}},
        {"<f><r/><r><a>1</a></r><r/></f>",
         {{1, 0, none}, {3, 0, "1 "}, {1, 0, none}, {0, 8, none}}},
        {"<f><a>7</a><r><a>8</a></r></f>", {{3, 0, "7 "}, {3, 0, "8 "}, {0, 8, none}}},
        // An end between records has the code of a complete document.
        {"<f>", {{0, 8, none}}},
        {"<f><r><a>1</a></r>", {{3, 0, "1 "}, {0, 8, none}}},
        {"<f><r><a>1</a></r></f", {{3, 0, "1 "}, {0, 8, none}}},
        {"<f><r><a>1</a></r><r", {{3, 0, "1 "}, {0, 8, none}}},
        {"<f><r><a>1</a></r", {{3, 8, "1 "}, {0, 8, none}}},
        {"<f><r>", {{1, 8, none}, {0, 8, none}}},
        {"<f><r><a>1</a><b", {{3, 8, "1 "}, {0, 8, none}}},
        {"<f><r><b><a>1</a><a>2", {{1, 8, none}, {0, 8, none}}},
        {"<f><r><b><a>1", {{3, 8, "1 "}, {0, 8, none}}},
        {"<f><r><a>1</a></b>", {{3, 19, "1 "}, {0, 19, none}}},
        {"<f><r/></g>", {{1, 0, none}, {0, 19, none}}},
        {"<f><r/><r></r>&x;", {{1, 0, none}, {1, 0, none}, {0, 19, none}}},
    };
    XfdBuilder builder("f");
    builder.group(1, "r");
    builder.text(2, "a", 0, 2);
    for (const Case& c : cases) {
        for (const std::size_t piece : {0U, 1U, 3U}) {
            host::limit_read_size(piece);
            EXPECT_EQ(records(builder.xfd(), c.document, 2), c.expected) << c.document << piece;
        }
        host::limit_read_size(0);
    }
}

// The read that finds the end of the document element looks at nothing that follows; reading on
// tells how the input ends. Tracing changes nothing of that.
TEST_F(ReadTest, ReadingOnTellsHowTheInputEnds) {
    struct Case {
        const char* document;
        std::vector<int> codes;  // of the reads, from the first that finds no record on
    };
    const Case cases[] = {
        {"<f/>", {8, 8, 8}},
        {"<f></f>\n<!-- e -->\n<?p?>", {8, 8, 8}},
        {"<f/>junk", {8, 19, 19}},
        {"<f></f>junk", {8, 19, 19}},
        {"<f><r/></f><!-- e --><more/>", {8, 19, 19}},
        {"<f/>\n<!-- a > \x15 -->\n", {8, 19, 19}},
        {"<f/><!-- e > ", {8, 8, 8}},
        {"<f><r/></g>", {19, 19, 19}},
        {"<f><r/>", {8, 8, 8}},
    };
    XfdBuilder builder = orders();
    for (const Case& c : cases) {
        store(path("in.xml"), c.document);
        describe(path("in.xml"), builder.xfd(true));
        for (const int trace : {0, 5}) {
            for (const std::size_t piece : {0U, 1U, 3U}) {
                host::limit_read_size(piece);
                host::set_trace(trace, "/dev/null");
                XmlFile* const file = module().open(path("in.xml").c_str(), XML_OPEN_INPUT);
                char record[6];
                while (module().read(file, record) > 0) continue;
                std::vector<int> codes = {*host_file_error()};
                while (codes.size() < c.codes.size()) {
                    EXPECT_EQ(module().read(file, record), 0);
                    codes.push_back(*host_file_error());
                }
                module().close(file);
                EXPECT_EQ(codes, c.codes) << c.document << trace << piece;
            }
        }
    }
    host::set_trace(0, "");
    host::limit_read_size(0);
}

TEST_F(ReadTest, NamesAreComparedAsConfigured) {
    struct Case {
        const char* column_case;
        const char* element;
        bool found;        // by the item cust_id
        bool found_below;  // as one of several, so below its group
    };
    const Case cases[] = {
        {"0", "cust-ID", true, true},   {"5", "CUST_id", true, true},
        {"1", "cust-id", true, true},   {"1", "CUST-ID", false, false},
        {"2", "cust_id", true, true},   {"2", "cust-id", false, false},
        {"2", "Cust_Id", false, false},
    };
    for (const Case& c : cases) {
        set("4GL_COLUMN_CASE", c.column_case);
        XfdBuilder builder("f");
        builder.group(1, "r");
        builder.group(2, "g");
        builder.text(3, "cust_id", 0, 1);
        const std::string tag = std::string("<") + c.element + ">x</" + c.element + ">";
        EXPECT_EQ(records(builder.xfd(), "<f><r><g>" + tag + "</g></r></f>", 1)[0].record,
                  c.found ? "x" : ".")
            << c.element;
        std::string twice = "<f><r><h>";
        twice.append(tag).append("</h><g>").append(tag).append("</g></r></f>");
        EXPECT_EQ(records(builder.xfd(), twice, 1)[0].record, c.found_below ? "x" : ".")
            << c.element;
    }
    // Below a group's element, case makes no difference.
    XfdBuilder builder("f");
    builder.group(1, "r");
    builder.group(2, "g");
    builder.text(3, "v", 0, 1);
    EXPECT_EQ(
        records(builder.xfd(), "<f><r><v>1</v><h><v>2</v></h><g><V>3</V></g></r></f>", 1)[0].record,
        "3");
}

TEST_F(ReadTest, TracesEveryStep) {
    XfdBuilder builder = order_lines();
    builder.condition(0, 'A', 0);
    builder.condition(0, 'B', 0);
    builder.item(builder.text(2, "c", 13, 1, 2)).dimensions_word = 0;
    const std::string name = path("in.xml");
    store(name, "<lines><row>" + ID + FIRST + "<line><qty>3</qty></line>" + HEAD +
                    "<name>-</name></row><row><c/><x><qty>1</qty><qty>2</qty></x>" +
                    "<name>1</name><name>2</name></row></lines>");
    describe(name, builder.xfd());
    XmlFile* const file = module().open(name.c_str(), XML_OPEN_INPUT);
    ASSERT_NE(file, nullptr);
    std::string record(14, '.');
    host::set_trace(5, path("trace"));
    for (const char* exact : {"yes", "no"}) {
        set("SXML_EXACT_TABLE_MATCH", exact);
        module().read(file, record.data());
    }
    module().close(file);
    host::set_trace(0, "");
    expect_file(read(path("trace")), "read_trace.txt");
}

// Above level 10 each record is shown on standard error as the element that is open then: the
// document element with the record, or what a document ended in.
TEST_F(ReadTest, DumpsEachRecordAboveTraceLevelTen) {
    XfdBuilder builder("f");
    builder.group(1, "r");
    builder.text(2, "a", 0, 2);
    const std::string first = "<f\n     k=\"v\">x &lt; y\n  <r>\n    <a>1&amp;</a>\n    <b\n";
    const std::string document =
        "<f k='v'>x &lt; y\n<r><a>1&amp;</a><b c=''/></r> <r>\n </r><r><a>3</a>\n<c>\n<d/>z";
    const std::string expected =
        lines(first + "         c=\"\"/>\n  </r>\n</f>\n") +
        lines("<f\n     k=\"v\">x &lt; y\n  <r/>\n</f>\n<c>z\n  <d/>\n</c>\n");
    const Results results = {{3, 0, "1&"}, {1, 0, ".."}, {3, 8, "3 "}, {0, 8, ".."}};
    for (const int level : {10, 11, 12}) {
        host::set_trace(level, path("trace"));
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(records(builder.xfd(), document, 2), results);
        const std::string shown = ::testing::internal::GetCapturedStderr();
        host::set_trace(0, "");
        EXPECT_EQ(shown, level > 10 ? as_captured(expected) : "") << level;
        // Its line in the trace stands before the record's first field, not indented.
        const std::string trace = read(path("trace"));
        int heads = 0;
        const std::string_view head = "\n dump_sxml_element\n  read_xml_data 1 (a)\n";
        for (auto at = trace.find(head); at != std::string::npos; at = trace.find(head, at + 1)) {
            ++heads;
        }
        EXPECT_EQ(heads, level > 10 ? 3 : 0) << trace;
        EXPECT_NE(trace.find("\n    1&\n"), std::string::npos) << trace;  // a field's text
    }
}

// A record is read the same after whatever other records, and whether tracing is switched on for it
// or not. Most records are like the one before, as in real documents.
TEST_F(ReadTest, RecordsDoNotDependOnThoseBefore) {
    const std::vector<std::string> pieces = {ID,
                                             FIRST,
                                             SECOND,
                                             HEAD,
                                             FOOT,
                                             "<qty>7</qty>",
                                             "<id/>",
                                             "<x><qty>8</qty></x>",
                                             "<name> n </name>",
                                             "<line>a<qty>5</qty>b</line>",
                                             "<sku>s<!---->t</sku>"};
    XfdBuilder builder = order_lines();
    std::mt19937 random(20261123);
    const auto below = [&random](std::size_t bound) { return random() % bound; };
    for (int round = 0; round < 60; ++round) {
        set("SXML_EXACT_TABLE_MATCH", below(2) == 0 ? "no" : nullptr);
        std::vector<std::string> rows = {"<row></row>"};
        std::vector<std::string> parts;
        while (rows.size() < 30) {
            const std::size_t change = below(6);
            if (change < 2) parts.insert(parts.end(), pieces[below(pieces.size())]);
            if (change == 2 && !parts.empty()) parts.erase(parts.begin());
            if (change == 3 && !parts.empty()) parts.back() = pieces[below(pieces.size())];
            std::string row = "<row>";
            for (const std::string& part : parts) row += part;
            rows.push_back(row + "</row>");
        }
        std::string document = "<lines>";
        for (const std::string& row : rows) document += row + "\n";
        if (below(2) == 0)
            document.resize(document.size() - 1 - below(rows.back().size() - 5));  // "<row>" stays
        const std::string name = path("in.xml");
        store(name, document);
        describe(name, builder.xfd());
        XmlFile* const file = module().open(name.c_str(), XML_OPEN_INPUT);
        ASSERT_NE(file, nullptr);
        std::vector<std::string> found;
        for (int result = 1; result > 0;) {
            std::string record(14, '.');
            host::set_trace(below(8) == 0 ? 9 : 0, "/dev/null");
            result = module().read(file, record.data());
            if (result > 0) found.push_back(record);
        }
        host::set_trace(0, "");
        EXPECT_EQ(module().close(file), 0);
        ASSERT_EQ(found.size(), rows.size());
        document.resize(document.find_last_not_of('\n') + 1);
        rows.back() = document.substr(document.rfind("<row"));
        for (std::size_t i = 0; i < rows.size(); ++i)
            EXPECT_EQ(records(builder.xfd(), "<lines>" + rows[i], 14)[0].record, found[i])
                << rows[i];
    }
}

TEST_F(ReadTest, EveryAllocationMayFail) {
    XfdBuilder builder = order_lines();
    const std::string name = path("sweep");
    describe(name, builder.xfd());
    std::string rows = "<row>" + ID + FIRST + SECOND + NAMES;
    for (int i = 0; i < 40; ++i) rows += "<name>-</name>";  // so that an index is made
    store(name + ".xml", "<lines>" + rows + "</row><row a='b'><id>A1" + std::string(4000, '-') +
                             "<x>2</x>3</id></row></lines>");
    const auto sweep = [&](int trace) {
        bool failed = true;
        for (std::uint64_t n = 1; failed; ++n) {
            ASSERT_LT(n, 5000U);
            host::set_trace(trace, "/dev/null");
            host::fail_allocation(n);
            XmlFile* const file = module().open(name.c_str(), XML_OPEN_INPUT);
            int code = *host_file_error();
            std::string record(14, '.');
            if (file != nullptr) {
                while (code == HOST_FILE_OK && module().read(file, record.data()) > 0) {
                    code = *host_file_error();
                }
                code = *host_file_error();
                EXPECT_EQ(module().read(file, record.data()), 0) << n;
                EXPECT_EQ(*host_file_error(), code) << n << ": what was told once is told again";
                module().close(file);
            }
            failed = host::allocation_failed();
            host::fail_allocation(0);
            host::set_trace(0, "");
            // Expat reports its own lack of memory as an error of the document.
            const bool told =
                code == HOST_FILE_NO_MEMORY ||
                (code == HOST_FILE_XML && *host_error_subcode() == XML_ERROR_NO_MEMORY);
            if (file == nullptr) {
                EXPECT_TRUE(told || code == HOST_FILE_CANNOT_OPEN) << n << code;
            } else if (!told) {
                EXPECT_EQ(code, HOST_FILE_END) << n;
                EXPECT_EQ(record, "A1s112s234hhff") << n;
            }
            EXPECT_TRUE(host::live_blocks().empty()) << n << host::leak_report();
        }
    };
    sweep(0);
    sweep(1);
}

// Large tables: every lookup is quick however many elements have the name, and finds what the slow
// way finds.
TEST_F(ReadTest, LargeTablesTakeLinearTime) {
    constexpr int ROWS = 5000;
    XfdBuilder builder("f");
    builder.group(1, "r");
    std::string full;
    std::string half;
    std::string expected;
    for (int i = 0; i < ROWS; ++i) {
        builder.group(2, "g");
        builder.occurrence({{i + 1, ROWS}});
        builder.text(3, "v", i, 1);
        builder.occurrence({{i + 1, ROWS}});
        const char digit = static_cast<char>('0' + i % 10);
        expected += digit;
        full += std::string("<g><v>") + digit + "</v></g>";
        if (2 * i < ROWS) half = full;
    }
    const std::string half_expected =
        expected.substr(0, ROWS / 2) + std::string(ROWS - ROWS / 2, '.');
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(records(builder.xfd(), "<f><r>" + full + "</r></f>", ROWS)[0].record, expected);
    EXPECT_EQ(records(builder.xfd(), "<f><r>" + half + "</r></f>", ROWS)[0].record, half_expected);
    // All of one number: none of them fits, and all of them are looked at but once.
    std::string strangers;
    for (int i = 0; i < 4 * ROWS; ++i)
        strangers += "<x" + std::to_string(i) + "><v>1</v></x" + std::to_string(i) + ">";
    EXPECT_EQ(records(builder.xfd(), "<f><r>" + strangers + "</r></f>", ROWS)[0].record,
              std::string(ROWS, '.'));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_LT(seconds.count(), 20.0);
}

TEST_F(ReadTest, HostileDescriptionsStayInTheRecord) {
    struct Case {
        int offset;
        int length;
        int result;
        const char* record;
    };
    const Case cases[] = {{-1, 2, 1, "...."},         {0, -1, 1, "...."},
                          {2, 0x7FFFFFFF, 1, "...."}, {0x7FFFFFFF, 1, 1, "...."},
                          {4, 0, 5, "...."},          {-2147483647 - 1, 4, 1, "...."},
                          {2, 2, 5, "..12"}};
    for (const Case& c : cases) {
        for (const bool numeric : {false, true}) {
            XfdBuilder builder("f");
            builder.text(1, "v", c.offset, c.length);
            builder.item(0).dimensions_word = 15;
            if (numeric) builder.item(0).data.type = records::DISPLAY_UNSIGNED;
            if (numeric) builder.item(0).data.digits = 2;
            const Results results = records(builder.xfd(), "<f><r><v>12</v></r></f>", 4);
            EXPECT_EQ(results[0].record, c.record) << c.offset;
        }
    }
    // Groups around each other, none of which its name settles: looked for again and again, twice
    // as often with each.
    XfdBuilder builder("f");
    builder.group(1, "f");
    for (int level = 2; level < 3000; ++level) builder.group(level, "g");
    builder.text(3000, "g", 0, 1);
    EXPECT_EQ(records(builder.xfd(), "<f><r><g>1</g><g>2</g></r></f>", 1)[0].record, ".");
    host::set_trace(3, "/dev/null");
    EXPECT_EQ(records(builder.xfd(), "<f><r><g>1</g><g>2</g></r></f>", 1)[0].record, ".");
    host::set_trace(0, "");
}

TEST_F(ReadTest, FilesAreOpenForOneDirection) {
    XfdBuilder builder = orders();
    describe(path("f.xml"), builder.xfd(true));
    XmlFile* const out = module().open(path("f.xml").c_str(), XML_OPEN_OUTPUT);
    char record[6] = {};
    EXPECT_EQ(module().read(out, record), 0);
    EXPECT_EQ(*host_file_error(), HOST_FILE_UNSUPPORTED);
    module().close(out);
    constexpr std::int32_t host_bits = 0x7FFFFFF0;  // the low two tell the direction
    XmlFile* const marked = module().open(path("f.xml").c_str(), host_bits | XML_OPEN_OUTPUT);
    EXPECT_EQ(module().read(marked, record), 0);
    EXPECT_EQ(*host_file_error(), HOST_FILE_UNSUPPORTED);
    module().close(marked);
    XmlFile* const in = module().open(path("f.xml").c_str(), XML_OPEN_INPUT);
    EXPECT_EQ(module().write(in, record, 6), 0);
    EXPECT_EQ(*host_file_error(), HOST_FILE_UNSUPPORTED);
    module().close(in);
}

// Handles are the whole process's.
TEST_F(ReadTest, GivesNoRecordsOfAParserThatSomebodyReleased) {
    constexpr int FREE_PARSER = 49;
    auto* const free_parser =
        reinterpret_cast<std::int32_t (*)(std::uint32_t)>(module().ordinal(FREE_PARSER));
    XfdBuilder builder("f");
    builder.text(1, "v", 0, 1);
    describe(path("f.xml"), builder.xfd());
    write_file(path("f.xml"), "<f><r><v>1</v></r><r><v>2</v></r></f>");
    XmlFile* const in = module().open(path("f.xml").c_str(), XML_OPEN_INPUT);
    char record = '.';
    EXPECT_NE(module().read(in, &record), 0);
    bool is_released = false;
    constexpr std::uint32_t MOST_TYPES = 16;
    for (std::uint32_t type = 1; type <= MOST_TYPES && !is_released; ++type) {
        is_released = free_parser(host_handle_next(0, type)) == 1;
    }
    EXPECT_TRUE(is_released);
    EXPECT_EQ(module().read(in, &record), 0);
    EXPECT_EQ(record, '1');
    module().close(in);
}

}  // namespace
