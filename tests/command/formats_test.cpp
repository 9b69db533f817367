// Record files whose records have lengths: each format both ways, and damaged ones.

#include <map>

#include "tests/command/command_run.h"

namespace {

// Three kinds of records, the shortest of 5 bytes and the longest of 13.
const std::string COPYBOOK =
    "       01  BASIC.\n"
    "           05  KIND PIC X.\n"
    "           05  NUM PIC 9(4).\n"
    "           05  WORD PIC X(4).\n"
    "           05  TAG PIC X(2) OCCURS 2.\n";

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text += static_cast<char>(value);
    return text;
}

enum class Order { big, little };

// A header: a length in two or four bytes, and bytes that follow it.
std::string header(std::size_t length, int size, Order order, const std::string& rest) {
    std::string text;
    for (int i = 0; i < size; ++i) {
        const int shift = 8 * (order == Order::little ? i : size - 1 - i);
        text += static_cast<char>(length >> shift & 0xFF);
    }
    return text + rest;
}

// Records of every length that fields end at, the last field blank or not.
const std::vector<std::string> RECORDS = {"A0001wordt1t2", "B0002", "C0003abc ", "D0004wordx ",
                                          "E"};

std::string file_of(const std::string& format, const std::vector<std::string>& records) {
    const std::string zeros(2, '\0');
    std::string text;
    for (const std::string& record : records) {
        const std::size_t size = record.size();
        if (format == "rdw") text += header(size + 4, 2, Order::big, zeros);
        if (format == "rdw:little") text += header(size + 4, 2, Order::little, zeros);
        if (format == "rdw:payload" || format == "gnucobol") {
            text += header(size, 2, Order::big, zeros);
        }
        if (format == "rdw:little:payload") text += header(size, 2, Order::little, zeros);
        if (format == "gnucobol:1") text += header(size, 4, Order::big, "");
        if (format == "gnucobol:2") text += header(size, 4, Order::little, "");
        if (format == "gnucobol:3") text += header(size, 2, Order::big, "");
        text += record;
    }
    return text;
}

// Blocks that hold so many records each.
std::string blocks_of(const std::vector<std::vector<std::string>>& blocks) {
    std::string text;
    for (const auto& records : blocks) {
        const std::string block = file_of("rdw", records);
        text += header(block.size() + 4, 2, Order::big, std::string(2, '\0')) + block;
    }
    return text;
}

// The format that is detected where several formats have the same bytes.
std::string detected_as(const std::string& format) {
    if (format == "rdw:payload") return "gnucobol";
    if (format == "rdw:little:payload") return "gnucobol:2";
    return format == "bdw:36" ? "bdw" : format;
}

class FormatsTest : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_file("recs.cpy", COPYBOOK);
    }

    static std::vector<std::string> with(const std::string& command,
                                         std::vector<std::string> words) {
        words.insert(words.begin(), command);
        return words;
    }
    static Outcome to_xml(const std::string& file, const std::vector<std::string>& options) {
        std::vector<std::string> words = {"to-xml", file, "out.xml", "-l", "recs.cpy"};
        words.insert(words.end(), options.begin(), options.end());
        return sxml(words);
    }
    static Outcome from_xml(const std::vector<std::string>& options) {
        std::vector<std::string> words = {"from-xml", "out.xml", "back", "-l", "recs.cpy"};
        words.insert(words.end(), options.begin(), options.end());
        return sxml(words);
    }
};

// Every format: read as named and as found out, and written with the same bytes.
TEST_F(FormatsTest, ComeBackWithTheSameBytes) {
    std::map<std::string, std::string> files;
    for (const char* format : {"rdw", "rdw:little", "gnucobol", "rdw:payload", "rdw:little:payload",
                               "gnucobol:1", "gnucobol:2", "gnucobol:3"}) {
        files[format] = file_of(format, RECORDS);
    }
    files["bdw"] = blocks_of({RECORDS});
    files["bdw:36"] = blocks_of({{RECORDS[0], RECORDS[1]}, {RECORDS[2], RECORDS[3]}, {RECORDS[4]}});
    std::string document;
    for (const auto& [format, text] : files) {
        SCOPED_TRACE(format);
        write_file("in", text);
        EXPECT_EQ(to_xml("in", {"--record-format", format}).err, "");
        if (document.empty()) document = read_file("out.xml");
        EXPECT_EQ(read_file("out.xml"), document);
        const Outcome back = from_xml({"--record-format", format});
        EXPECT_EQ(back.status, 0) << back.err;
        EXPECT_EQ(read_file("back"), text);
        const std::string found = detected_as(format);
        const Outcome detected = to_xml("in", {"--record-format", "auto"});
        EXPECT_EQ(detected.err, "sxml: in: read with --record-format " + found + "\n");
        EXPECT_EQ(read_file("out.xml"), document);
        const Outcome refused = to_xml("in", {});
        EXPECT_EQ(refused.status, 1);
        EXPECT_NE(refused.err.find("; read it with --record-format " + found + "\n"),
                  std::string::npos)
            << refused.err;
    }
    EXPECT_NE(document.find("<kind>C</kind>\r\n  <num>3</num>\r\n  <word>abc</word>\r\n </basic>"),
              std::string::npos)
        << document;
    EXPECT_NE(document.find("<basic>\r\n  <kind>E</kind>\r\n </basic>"), std::string::npos);
}

// check and dump read what to-xml reads, and name the same places.
TEST_F(FormatsTest, AreCheckedAndShown) {
    const std::vector<std::string> records = {"A0001wordt1t2", "B0002    x   ", "C0003abc z..y"};
    struct Case {
        std::string file;
        std::uint64_t second;  // where the second record begins
    };
    std::map<std::string, Case> cases = {
        {"fixed", {records[0] + records[1] + records[2], 13}},
        {"line", {records[0] + "\nB0002    x\r\n" + records[2], 14}},
        {"bdw", {blocks_of({records}), 25}}};
    for (const char* format : {"rdw", "rdw:little", "gnucobol", "rdw:payload", "rdw:little:payload",
                               "gnucobol:1", "gnucobol:2"}) {
        cases[format] = {file_of(format, records), 21};
    }
    cases["gnucobol:3"] = {file_of("gnucobol:3", records), 17};
    for (const auto& [format, one] : cases) {
        SCOPED_TRACE(format);
        write_file("in", one.file);
        std::vector<std::string> words = {"in", "-l", "recs.cpy", "--record-format", format};
        for (const bool is_found : {false, true}) {
            if (is_found && format.find("payload") != std::string::npos) continue;
            if (is_found) words.back() = format == "fixed" ? "fixed" : "auto";
            const Outcome shown = sxml(with("dump", words));
            EXPECT_EQ(shown.status, 0) << shown.err;
            EXPECT_NE(shown.out.find("Record 2, byte offset " + std::to_string(one.second) +
                                     ", 13 bytes\n"),
                      std::string::npos)
                << shown.out;
            EXPECT_NE(shown.out.find("tag(2)      X(2)     '.y'"), std::string::npos) << shown.out;
            const Outcome checked = sxml(with("check", words));
            EXPECT_EQ(checked.status, 0) << checked.out << checked.err;
            EXPECT_EQ(checked.out.rfind("in: 3 records of a record file\n", 0), 0U) << checked.out;
            EXPECT_NE(checked.out.find("\ntag         6      1  "), std::string::npos)
                << checked.out;
        }
    }
    // A field that the record's end cuts is a field: to-xml fills it up.
    write_file("in", file_of("rdw", {"A0001wo", "B0002ab"}));
    const std::vector<std::string> words = {"in", "-l", "recs.cpy", "--record-format", "rdw"};
    const Outcome shown = sxml(with("dump", words));
    EXPECT_NE(shown.out.find("X(4)     'wo'\n\nRecord 2, byte offset 15, 7 bytes\n"),
              std::string::npos)
        << shown.out;
    const Outcome checked = sxml(with("check", words));
    EXPECT_EQ(checked.status, 0) << checked.out;
    EXPECT_NE(checked.out.find("2  ab        wo\n"), std::string::npos) << checked.out;
}

TEST_F(FormatsTest, FixedFilesAndLinesAreFoundOut) {
    const std::string whole = "A0001wordt1t2";
    write_file("fixed", whole + whole);
    write_file("lines", whole + "\r\nB0002\n");
    EXPECT_EQ(to_xml("fixed", {"--record-format", "auto"}).err,
              "sxml: fixed: read with --record-format fixed\n");
    EXPECT_EQ(to_xml("lines", {"--record-format", "auto"}).err,
              "sxml: lines: read with --record-format line\n");
    // Long texts are not taken for headers; and the named format is used.
    write_file("recs.cpy", "       01  BIG.\n           05  PART PIC X(300000).\n");
    write_file("texts", std::string(600'000, ' ') + std::string(600'000, 'x'));
    EXPECT_EQ(to_xml("texts", {}).err, "");
    write_file("recs.cpy", COPYBOOK);
    write_file("alike", file_of("rdw", {"A0001wordt1t2", "B0002"}));
    EXPECT_EQ(to_xml("alike", {}).status, 1);
    EXPECT_EQ(to_xml("alike", {"--record-format", "fixed", "--controls", "drop"}).status, 0);
    // A chain of headers counts as far as a file is looked at, and not where it breaks before.
    std::string chain;
    for (int i = 0; i < 10'000; ++i) chain += file_of("rdw", {"A0001wordt1t2", "B0002"});
    write_file("chain", chain);
    const Outcome headers = to_xml("chain", {"--controls", "drop"});
    EXPECT_EQ(headers.status, 1);
    EXPECT_NE(headers.err.find("the file has headers with lengths in it"), std::string::npos);
    write_file("chain", chain.replace(200'000, 60'000, 60'000, 'A'));
    EXPECT_EQ(to_xml("chain", {"--controls", "drop"}).status, 0);
    write_file("neither", std::string(20, '\x01'));
    const Outcome neither = to_xml("neither", {"--record-format", "auto"});
    EXPECT_EQ(neither.status, 1);
    EXPECT_NE(neither.err.find("fits the layout in none of the record formats"), std::string::npos);
}

// Segments of records are put together, also over blocks.
TEST_F(FormatsTest, SegmentsArePutTogether) {
    const std::string first = bytes({0, 9, 1, 0}) + "A0001";
    const std::string middle = bytes({0, 7, 3, 0}) + "wor";
    const std::string last = bytes({0, 9, 2, 0}) + "dt1t2";
    const std::string other = bytes({0, 9, 0, 0}) + "B0002";
    write_file("rdw", first + middle + last + other);
    write_file("bdw", bytes({0, 13, 0, 0}) + first + bytes({0, 20, 0, 0}) + middle + last +
                          bytes({0x80, 0, 0, 13}) + other);
    EXPECT_EQ(to_xml("rdw", {"--record-format", "rdw"}).err, "");
    const std::string document = read_file("out.xml");
    EXPECT_NE(document.find("<num>1</num>\r\n  <word>word</word>\r\n  <tag>t1</tag>\r\n  "
                            "<tag>t2</tag>\r\n </basic>\r\n <basic>\r\n  <kind>B</kind>"),
              std::string::npos)
        << document;
    EXPECT_EQ(to_xml("bdw", {"--record-format", "bdw"}).err, "");
    EXPECT_EQ(read_file("out.xml"), document);
    EXPECT_EQ(to_xml("rdw", {"--record-format", "auto"}).err,
              "sxml: rdw: read with --record-format rdw\n");
}

// A record that its header's length cannot tell is written in segments, and comes back.
TEST_F(FormatsTest, RecordsLongerThanTheirHeaderCanTellAreWrittenInSegments) {
    write_file("recs.cpy", "       01  BIG.\n           05  PART PIC X(25000) OCCURS 3.\n");
    const std::string record =
        std::string(25000, 'a') + std::string(25000, 'b') + std::string(25000, 'c');
    write_file("fixed", record + record);
    ASSERT_EQ(to_xml("fixed", {}).err, "");
    const std::string document = read_file("out.xml");
    ASSERT_EQ(from_xml({"--record-format", "rdw"}).err, "");
    EXPECT_EQ(read_file("back").size(), 2 * (75000U + 3 * 4));
    EXPECT_EQ(to_xml("back", {"--record-format", "rdw"}).err, "");
    EXPECT_EQ(read_file("out.xml"), document);
    const Outcome refused = from_xml({"--record-format", "gnucobol"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("record 1: the record has 75000 bytes, the format gnucobol holds up "
                               "to 65535"),
              std::string::npos)
        << refused.err;
}

struct DamagedFile {
    const char* format;
    std::string text;
    const char* said;
};

// Every damage is named with record number and byte offset.
TEST_F(FormatsTest, DamagedFilesAreRefusedWithTheirPlace) {
    const std::string good = bytes({0, 9, 0, 0}) + "B0002";
    const std::string whole = bytes({0, 17, 0, 0}) + "A0001wordt1t2";
    const std::vector<DamagedFile> files = {
        {"rdw", good + bytes({0, 9}),
         "record 2, byte offset 9: the header is cut short: 2 bytes of 4"},
        {"rdw", good + bytes({0, 0, 0, 0}),
         "record 2, byte offset 9: a record cannot have the length 0 in its header"},
        {"rdw", good + bytes({0, 3, 0, 0}),
         "record 2, byte offset 9: a record cannot have the length 3 in its header"},
        {"rdw", good + bytes({0, 9, 0, 0}) + "B",
         "record 2, byte offset 9: the record is cut short: 1 byte of 5"},
        {"rdw", good + whole.substr(0, 16),
         "record 2, byte offset 9: the record is cut short: 12 bytes of 13"},
        {"rdw", whole + bytes({0, 18, 0, 0}) + "A0001wordt1t23",
         "record 2, byte offset 17: the record is too long: 14 bytes, the layout has 13"},
        {"rdw", bytes({0xFF, 0xFF, 0, 0}),
         "record 1, byte offset 0: the record is too long: 65531 bytes, the layout has 13"},
        {"rdw", good + bytes({0, 9, 4, 0}) + "B0002",
         "record 2, byte offset 9: X'00090400' is not a record's header"},
        {"rdw", good + bytes({0, 9, 0, 1}) + "B0002", "X'00090001' is not a record's header"},
        {"rdw", good + bytes({0, 9, 2, 0}) + "B0002",
         "record 2, byte offset 9: a record begins with a segment that is not its first"},
        {"rdw", bytes({0, 9, 1, 0}) + "B0002" + good,
         "record 1, byte offset 9: a record begins before the last segment of the one before"},
        {"rdw", bytes({0, 9, 1, 0}) + "B0002",
         "record 1, byte offset 9: the file ends before the record's last segment"},
        {"rdw", bytes({0, 9, 1, 0}) + "B0002" + bytes({0, 13, 2, 0}) + "123456789",
         "record 1, byte offset 9: the record is too long: 14 bytes, the layout has 13"},
        {"gnucobol", bytes({0, 5, 0, 0}) + "B0002" + bytes({0, 0, 0, 0}),
         "record 2, byte offset 9: a record cannot have the length 0 in its header"},
        {"gnucobol", bytes({0, 5, 1, 0}) + "B0002", "X'00050100' is not a record's header"},
        {"gnucobol:1", bytes({0xFF, 0xFF, 0xFF, 0xFF}) + "B0002",
         "record 1, byte offset 0: the record is too long: 4294967295 bytes, the layout has 13"},
        {"gnucobol:3", bytes({0, 5}) + "B0002" + bytes({0}),
         "record 2, byte offset 7: the header is cut short: 1 byte of 2"},
        {"bdw", bytes({0, 13, 0, 1}) + good,
         "record 1, byte offset 0: X'000D0001' is not a block's header"},
        {"bdw", bytes({0, 4, 0, 0}) + good, "X'00040000' is not a block's header"},
        {"bdw", bytes({0, 12, 0, 0}) + good,
         "record 1, byte offset 4: a record of 5 bytes does not fit in the 8 bytes that its block "
         "has left"},
        {"bdw", bytes({0, 15, 0, 0}) + good + bytes({0, 9}),
         "record 2, byte offset 13: the header is cut short: 2 bytes of 4"},
        {"bdw", bytes({0x80, 1, 0, 13}) + good,
         "record 2, byte offset 13: the header is cut short: 0 bytes of 4"},
        {"bdw", bytes({0, 13, 0, 0}) + good + bytes({0}),
         "record 2, byte offset 13: the header is cut short: 1 byte of 4"},
    };
    for (const DamagedFile& file : files) {
        SCOPED_TRACE(file.said);
        write_file("in", file.text);
        const Outcome outcome = to_xml("in", {"--record-format", file.format});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.err.find(file.said), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.rfind("sxml: in: record ", 0), 0U);
    }
}

// Files longer than a buffer, with records over its end.
TEST_F(FormatsTest, LongFilesComeOutWhole) {
    constexpr int COUNT = 60'000;
    std::vector<std::string> records;
    for (int i = 0; i < COUNT; ++i)
        records.push_back(RECORDS[static_cast<std::size_t>(i) % RECORDS.size()]);
    write_file("in", file_of("rdw", records));
    static_assert(COUNT / 5 * (13 + 5 + 9 + 11 + 1) > 400'000);
    EXPECT_EQ(to_xml("in", {"--record-format", "rdw"}).err, "");
    EXPECT_EQ(from_xml({"--record-format", "rdw"}).status, 0);
    EXPECT_TRUE(read_file("back") == read_file("in"));
}

#ifndef __SANITIZE_ADDRESS__
// Kilobytes of memory that the command takes at most. The memory of a process counts for a program
// that it starts, so this process, whose tests use any amount, must not start it directly.
long memory_of(std::vector<std::string> words) {
    const std::string program =
        "import resource, subprocess, sys; subprocess.run(sys.argv[1:], check=True, "
        "stdout=subprocess.DEVNULL); "
        "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)";
    words.insert(words.begin(), {"python3", "-c", program, command_under_test()});
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return std::stol("0" + outcome.out);
}

// A file takes the memory of its longest record, however many it has.
TEST_F(FormatsTest, LongFilesTakeNoMoreMemory) {
    write_file("recs.cpy",
               "       01  BIG.\n           05  NO PIC 9(4).\n           05  PART PIC X(2000).\n");
    const auto kilobytes = [](std::size_t count) {
        const std::string record = "0001" + std::string(2000, 'x');
        write_file("in", file_of("rdw", std::vector<std::string>(count, record)));
        const std::vector<std::string> how = {"-l", "recs.cpy", "--record-format", "rdw"};
        return std::vector<long>{memory_of(with("to-xml", with("in", with("out.xml", how)))),
                                 memory_of(with("from-xml", with("out.xml", with("back", how)))),
                                 memory_of({"copybook", "out.xml"})};
    };
    const std::vector<long> before = kilobytes(1'500);
    const std::vector<long> after = kilobytes(9'000);  // 15 MB more
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_GT(before[i], 4'000) << i;
        EXPECT_LT(after[i], before[i] + 2'000) << i;
    }
}
#endif

// Layouts of different lengths: each record is as long as its own, FILLER at its end included.
TEST_F(FormatsTest, RecordsAreAsLongAsTheirLayout) {
    write_file("recs.cpy",
               "      *> sxml: when K = \"A\"\n"
               "       01  AREC.\n           05  K PIC X.\n           05  FILLER PIC X(3).\n"
               "      *> sxml: when K = \"B\"\n"
               "       01  BREC.\n           05  K PIC X.\n           05  N PIC 9.\n"
               "           05  T PIC X(2) OCCURS 0 TO 3 DEPENDING ON N.\n");
    const std::string text = file_of("rdw", {"A   ", "B2xxyy", "B0", "B3xxyyzz"});
    write_file("in", text);
    EXPECT_EQ(to_xml("in", {"--record-format", "rdw"}).err, "");
    const Outcome back = from_xml({"--record-format", "rdw"});
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_EQ(read_file("back"), text);
    const Outcome without_lengths = from_xml({"--min-record-length", "5"});
    EXPECT_EQ(without_lengths.status, 2);
    EXPECT_NE(without_lengths.err.find("records of the format fixed have none"), std::string::npos)
        << without_lengths.err;
    EXPECT_EQ(from_xml({"--record-format", "rdw", "--min-record-length", "5"}).status, 0);
    EXPECT_EQ(read_file("back").substr(0, 9),
              header(9, 2, Order::big, std::string(2, '\0')) + "A    ");
    write_file("in", file_of("rdw", {"A      ", "A   xx"}));
    const Outcome refused = to_xml("in", {"--record-format", "rdw"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(
        refused.err.find("record 2, byte offset 19 (4 in the record): the record is too long: 6 "
                         "bytes, its layout arec has 4"),
        std::string::npos)
        << refused.err;
}

// What does not belong to the records, and which of them are wanted.
TEST_F(FormatsTest, PartsOfFilesAreTaken) {
    const std::string text = "heading" + file_of("gnucobol", RECORDS) + "end";
    write_file("in", text);
    const std::vector<std::string> options = {"--record-format", "gnucobol", "--skip",        "7",
                                              "--skip-end",      "3",        "--from-record", "2",
                                              "--count",         "2"};
    EXPECT_EQ(to_xml("in", options).err, "");
    const std::string document = read_file("out.xml");
    EXPECT_EQ(document.find("<kind>A"), std::string::npos);
    EXPECT_NE(document.find("<kind>C"), std::string::npos);
    EXPECT_EQ(document.find("<kind>D"), std::string::npos);
    std::vector<std::string> words = {"to-xml", "-", "piped.xml", "-l", "recs.cpy"};
    words.insert(words.end(), options.begin(), options.end());
    EXPECT_EQ(sxml(words, text).err, "");
    const auto records_of = [](const std::string& xml) { return xml.substr(xml.find(" <basic>")); };
    EXPECT_EQ(records_of(read_file("piped.xml")), records_of(document));
    EXPECT_EQ(from_xml({"--from-record", "2"}).status, 0);
    EXPECT_EQ(read_file("back"), "C0003abc     ");
    const Outcome dumped = sxml({"dump", "in", "-l", "recs.cpy", "--record-format", "gnucobol",
                                 "--skip", "7", "--skip-end", "3", "--from-record", "5"});
    EXPECT_EQ(dumped.out.rfind("Record 5, byte offset 65, 1 bytes", 0), 0U) << dumped.out;
    EXPECT_NE(to_xml("in", {"--skip", "70"}).err.find("there are only"), std::string::npos);
    EXPECT_NE(to_xml("in", {"--skip-end", "70"}).err.find("there are only"), std::string::npos);
    write_file("in", std::string(13, 'x'));
    EXPECT_NE(to_xml("in", {"--from-record", "3"}).err.find("in: there is only 1 record\n"),
              std::string::npos);
}

// Layouts of the first and the last record, in both directions; documents in which they stand
// elsewhere do not become files that would be read otherwise.
TEST_F(FormatsTest, LayoutsAreChosenByPosition) {
    write_file("h.cpy", "       01  HEADER.\n           05  TITLE PIC X(6).\n");
    write_file("d.cpy",
               "       01  DETAIL.\n           05  N PIC 9.\n"
               "           05  T PIC X(2) OCCURS 0 TO 2 DEPENDING ON N.\n");
    write_file("t.cpy", "       01  TRAILER.\n           05  TOTAL PIC 9(5).\n");
    const std::vector<std::string> options = {
        "--layout", "h.cpy",  "--layout",        "d.cpy",     "--layout",
        "t.cpy",    "--when", "HEADER: FIRST",   "--when",    "TRAILER: LAST",
        "--name",   "recs",   "--record-format", "gnucobol:3"};
    const auto run = [&](std::vector<std::string> words, std::vector<std::string> more = {}) {
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(), more.begin(), more.end());
        return sxml(words);
    };
    // The header begins like a detail with one entry.
    const std::string file = file_of("gnucobol:3", {"1Title", "2aabb", "1cc", "0", "00003"});
    write_file("in", file);
    EXPECT_EQ(run({"to-xml", "in", "out.xml"}).err, "");
    const std::string document = read_file("out.xml");
    EXPECT_NE(document.find("<header>\r\n  <title>1Title</title>"), std::string::npos) << document;
    EXPECT_NE(document.find("<t>bb</t>"), std::string::npos) << document;
    EXPECT_NE(document.find("<trailer>\r\n  <total>3</total>"), std::string::npos) << document;
    EXPECT_EQ(run({"from-xml", "out.xml", "back"}).err, "");
    EXPECT_EQ(read_file("back"), file);
    EXPECT_NE(run({"dump", "in", "--from-record", "5"}).out.find("trailer"), std::string::npos);
    EXPECT_EQ(run({"check", "in"}).status, 0);
    EXPECT_EQ(run({"check", "out.xml"}).status, 0);
    EXPECT_EQ(sxml({"compile", "h.cpy", "d.cpy", "t.cpy", "--when", "HEADER: FIRST", "--when",
                    "TRAILER: LAST", "--name", "recs", "-o", "recs.xfd"})
                  .status,
              0);
    EXPECT_EQ(sxml({"to-xml", "in", "kept.xml", "-l", "recs.xfd", "--record-format", "gnucobol:3"})
                  .status,
              0);
    EXPECT_EQ(read_file("kept.xml"), document);
    const std::string header = "<header><title>x</title></header>";
    const std::string detail = "<detail><n>0</n></detail>";
    const std::string trailer = "<trailer><total>1</total></trailer>";
    const struct {
        std::string records, problem;
    } cases[] = {
        {detail + trailer, "record 1: the first record is to be of the layout header"},
        {header + detail, "record 2: the last record is to be of the layout trailer"},
        {header + detail + header + trailer,
         "record 3: a record of the layout header is to be the first"},
        {header + trailer + detail, "record 3: it follows a record of the layout trailer, which"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.records);
        write_file("in.xml", "<recs>" + each.records + "</recs>");
        const Outcome outcome = run({"from-xml", "in.xml", "-"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.err.find(each.problem), std::string::npos) << outcome.err;
    }
    // One record is both: of the layout that comes first.
    write_file("in", file_of("gnucobol:3", {"00001"}));
    for (std::vector<std::string> words :
         {std::vector<std::string>{"to-xml", "in", "one.xml"}, {"from-xml", "one.xml", "back"}}) {
        words.insert(words.end(),
                     {"-l", "t.cpy", "-l", "h.cpy", "--when", "HEADER: FIRST", "--when",
                      "TRAILER: LAST", "--name", "recs", "--record-format", "gnucobol:3"});
        EXPECT_EQ(sxml(words).err, "");
    }
    EXPECT_NE(read_file("one.xml").find("<total>1</total>"), std::string::npos);
    EXPECT_EQ(read_file("back"), read_file("in"));
    write_file("in.xml", "<recs>" + trailer + "</recs>");
    EXPECT_NE(run({"from-xml", "in.xml", "-"}).err.find("the first record is to be of the layout"),
              std::string::npos);
    // The only entry of a table in the first record holds one in turn.
    write_file("first.cpy",
               "       01  HEADER.\n           05  N PIC 9.\n"
               "           05  E OCCURS 1 TO 4 DEPENDING ON N.\n"
               "               10  I PIC X OCCURS 2.\n"
               "       01  DETAIL.\n           05  X PIC X(9).\n");
    write_file("e.dat", "1xy      ");
    const std::vector<std::string> first = {"-l", "first.cpy", "--when", "HEADER: FIRST"};
    const auto convert = [&](std::vector<std::string> words) {
        words.insert(words.end(), first.begin(), first.end());
        return sxml(words).err;
    };
    EXPECT_EQ(convert({"to-xml", "e.dat", "e.xml"}), "");
    EXPECT_EQ(convert({"from-xml", "e.xml", "f.dat"}), "");
    EXPECT_EQ(read_file("f.dat"), "1xy      ");
    const Outcome part = sxml({"to-xml", "in", "-", "-l", "d.cpy", "--when", "T: FIRST"});
    EXPECT_NE(part.err.find("FIRST and LAST tell records apart"), std::string::npos) << part.err;
}

// What cobc's programs write and read is the judge of the runtime's formats.
TEST_F(FormatsTest, ProgramsOfGnuCobolReadAndWriteThem) {
    const auto program = [](const std::string& statements) {
        return "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. P.\n"
               "       ENVIRONMENT DIVISION.\n       INPUT-OUTPUT SECTION.\n"
               "       FILE-CONTROL.\n"
               "           SELECT F ASSIGN TO \"basic.dat\" ORGANIZATION SEQUENTIAL.\n"
               "       DATA DIVISION.\n       FILE SECTION.\n"
               "       FD F RECORD VARYING FROM 1 TO 13 DEPENDING ON LEN.\n"
               "       01 A PIC X(13).\n       WORKING-STORAGE SECTION.\n"
               "       01 LEN PIC 9(4).\n       PROCEDURE DIVISION.\n" +
               statements + "           CLOSE F STOP RUN.\n";
    };
    std::string writing = "           OPEN OUTPUT F\n";
    std::string shown;
    for (const std::string& record : RECORDS) {
        writing += "           MOVE \"" + record + "\" TO A MOVE " + std::to_string(record.size()) +
                   " TO LEN WRITE A\n";
        shown +=
            (record.size() < 10 ? "000" : "00") + std::to_string(record.size()) + record + "|\n";
    }
    write_file("w.cbl", program(writing));
    write_file("r.cbl", program("           OPEN INPUT F PERFORM UNTIL LEN = 1\n"
                                "           READ F\n           DISPLAY LEN A(1:LEN) \"|\"\n"
                                "           END-PERFORM\n"));
    ASSERT_EQ(run({"cobc", "-x", "w.cbl"}).status, 0);
    ASSERT_EQ(run({"cobc", "-x", "r.cbl"}).status, 0);
    for (const std::string number : {"0", "1", "2", "3"}) {
        SCOPED_TRACE(number);
        const std::string setting = "COB_VARSEQ_FORMAT=" + number;
        ASSERT_EQ(run({"env", setting, "./w"}).status, 0);
        EXPECT_EQ(to_xml("basic.dat", {"--record-format", "gnucobol:" + number}).err, "");
        ASSERT_EQ(from_xml({"--record-format", "gnucobol:" + number}).status, 0);
        EXPECT_EQ(read_file("back"), read_file("basic.dat"));
        ASSERT_EQ(run({"mv", "back", "basic.dat"}).status, 0);
        EXPECT_EQ(run({"env", setting, "./r"}).out, shown);
    }
}

}  // namespace
