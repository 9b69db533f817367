// Documents made of one, and one made of documents: sxml split and sxml join.

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <sstream>

#include "tests/command/command_run.h"

namespace {

std::string utf16(const std::string& ascii) {
    std::string units = "\xFF\xFE";
    for (const char c : ascii) units += {c, '\0'};
    return units;
}

// Records that look like the ends of records, or hold them.
const std::string RECORDS =
    "\r\n <r>one</r>\r\n <r><r>two</r></r><!-- </r></a> --><r><![CDATA[</r></a>]]></r>\n<r/>"
    "text<?p </r>?><other><r>five</r></other><r a='>'>six</r>\r\n";

struct Document {
    std::string name;
    std::string bytes;
    std::size_t records;  // that can be told apart
};

std::vector<Document> documents() {
    const std::string type = "<!DOCTYPE a [\n<!ENTITY two \"<r>x</r><r>y</r>\">\n<!-- > -->\n]>\n";
    std::string large = "<a>";
    for (int i = 0; i < 5000; ++i)
        large += "<r>" + std::string(static_cast<std::size_t>(i % 97), 'x') + "</r>\n";
    return {
        {"plain", "<a>" + RECORDS + "</a>", 6},
        {"typed", "<?xml version='1.0'?>\n" + type + "<a b='1'>" + RECORDS + "&two;</a>\n<?end?>",
         7},
        {"latin", "<?xml version='1.0' encoding='ISO-8859-1'?><a><r>\xE9</r><r>\xFC</r></a>", 2},
        {"wide", utf16("<a>" + RECORDS + "</a>"), 6},
        {"marked", "\xEF\xBB\xBF<a>" + RECORDS + " <!-- end --> </a >\n", 6},
        {"empty", "<a></a>", 0},
        {"short", "<a />\n", 0},
        {"large", large + "</a>", 5000}};
}

class SplitTest : public CommandTest {
  protected:
    // The names that `split` prints.
    static std::vector<std::string> lines(const std::string& text) {
        std::vector<std::string> all;
        std::istringstream input(text);
        for (std::string line; std::getline(input, line);) all.push_back(line);
        return all;
    }
    static std::string join(std::vector<std::string> parts) {
        parts.insert(parts.begin(), "join");
        parts.insert(parts.end(), {"-o", "joined.xml"});
        const Outcome outcome = sxml(parts);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return read_file("joined.xml");
    }
};

TEST_F(SplitTest, PartsAreWholeAndMakeTheDocumentAgain) {
    for (const Document& document : documents()) {
        write_file("d.xml", document.bytes);
        for (const std::string option : {"--parts", "--records"}) {
            for (const std::size_t number : {1U, 2U, 3U, 5U, 7U, 1999U}) {
                const std::string shown =
                    document.name + " " + option + " " + std::to_string(number);
                if (number > 7 && option == "--parts") continue;
                if (number <= 7 && option == "--records" && document.records > 100) continue;
                const Outcome outcome = sxml({"split", "d.xml", option, std::to_string(number)});
                ASSERT_EQ(outcome.status, 0) << shown << outcome.err;
                const std::vector<std::string> parts = lines(outcome.out);
                const std::size_t by_records =
                    std::max<std::size_t>(1, (document.records + number - 1) / number);
                EXPECT_EQ(parts.size(), option == "--parts" ? number : by_records) << shown;
                std::vector<std::string> judge = {"xmllint", "--noout"};
                judge.insert(judge.end(), parts.begin(), parts.end());
                EXPECT_EQ(run(judge).err, "") << shown;
                EXPECT_EQ(join(parts), document.bytes) << shown;
                for (const std::string& part : parts) std::filesystem::remove(part);
            }
        }
    }
}

TEST_F(SplitTest, PartsGiveTheRecordsOfTheWhole) {
    write_file("r.cpy", "01 R PIC X(9).\n");
    std::string records;
    for (int i = 0; i < 1000; ++i) records += std::string(9, static_cast<char>('a' + i % 26));
    write_file("r.dat", records);
    ASSERT_EQ(sxml({"to-xml", "r.dat", "r.xml", "--layout", "r.cpy"}).status, 0);
    const Outcome outcome = sxml({"split", "-", "--parts", "10", "-o", "p"}, read_file("r.xml"));
    EXPECT_EQ(lines(outcome.out).front(), "p-01.xml") << outcome.err;
    std::string together;
    for (const std::string& part : lines(outcome.out)) {
        EXPECT_EQ(run({"xmllint", "--noout", "--valid", part}).err, "");
        ASSERT_EQ(sxml({"from-xml", part, "p.dat", "--layout", "r.cpy"}).status, 0);
        const std::string some = read_file("p.dat");
        EXPECT_NEAR(static_cast<double>(some.size()), 900, 45) << "the parts are of one size";
        together += some;
    }
    EXPECT_EQ(together, records);
}

TEST_F(SplitTest, WhatIsNotOfOneDescriptionIsNotJoined) {
    const std::string head = "<?xml version='1.0' encoding='UTF-8'?>";
    write_file("a.xml", head + "<!DOCTYPE a []><a b='1'><r/></a>");
    const struct {
        const char* bytes;
        const char* message;
    } others[] = {
        {"<?xml version='1.0' encoding='ISO-8859-1'?><!DOCTYPE a []><a b='1'><r/></a>",
         "the encoding is not that of a.xml"},
        {"<a b='1'><r/></a>", "the document type declaration is not that of a.xml"},
        {"<!DOCTYPE a [<!ELEMENT r ANY>]><a b='1'><r/></a>", "the document type declaration"},
        {"<!DOCTYPE a []><a b='2'><r/></a>", "the start tag of the document element is not"},
        {"<!DOCTYPE a []><a b='1'><r/>", "b.xml:1:29: no element found"},
    };
    write_file("joined.xml", "as it was");
    for (const auto& other : others) {
        write_file("b.xml", other.bytes);
        const Outcome outcome = sxml({"join", "a.xml", "b.xml", "-o", "joined.xml"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.err.find(other.message), std::string::npos) << outcome.err;
        EXPECT_EQ(read_file("joined.xml"), "as it was");
    }
    write_file("b.xml", "<!DOCTYPE a []><a b='1'><r/><!-- kept --></a><!-- lost -->");
    const Outcome outcome = sxml({"join", "a.xml", "b.xml", "-o", "-"});
    EXPECT_EQ(outcome.out, head + "<!DOCTYPE a []><a b='1'><r/><r/><!-- kept --></a>");
    EXPECT_EQ(outcome.err,
              "sxml: warning: b.xml: anything after the document element is left out\n");
    EXPECT_EQ(sxml({"join", "a.xml", "b.xml", "-o", "b.xml"}).status, 2);
    write_file("b.xml", "<!DOCTYPE a []><a b='1'/><!-- lost -->");
    EXPECT_EQ(sxml({"join", "a.xml", "b.xml", "-o", "-"}).err,
              "sxml: warning: b.xml: anything after the document element is left out\n");
}

// Under whatever name they are read.
TEST_F(SplitTest, NoDocumentIsWrittenOver) {
    const std::string document = "<a><r/></a>";
    write_file("e-1.xml", document);
    write_file("c.cpy", "01 R PIC X.\n");
    for (const std::string line :
         {"split e-1 --output e --parts 1", "join e-1 e-1 --output e-1.xml",
          "from-xml e-1 e-1.xml --layout c.cpy", "from-xml - e-1.xml --layout c.cpy <e-1.xml",
          "copybook - --output e-1.xml <e-1.xml", "tree e-1 >>e-1.xml",
          "check e-1 -l c.cpy >>e-1.xml"}) {
        const Outcome outcome = run({"bash", "-c", command_under_test() + " " + line});
        EXPECT_EQ(outcome.status, 2) << line << outcome.err;
        EXPECT_NE(outcome.err.find("they are one file"), std::string::npos) << outcome.err;
        EXPECT_EQ(read_file("e-1.xml"), document) << line;
    }
}

TEST_F(SplitTest, WhatCannotBeMeantIsRefused) {
    write_file("a.xml", "<a><r/></a>");
    write_file("a-1.xml", "as it was");
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"split", "a.xml"},
                                               {"split", "a.xml", "--parts", "2", "--records", "2"},
                                               {"split", "a.xml", "--parts", "0"},
                                               {"split", "-", "--parts", "2"},
                                               {"split", "a-1.xml", "--parts", "1", "-o", "a"},
                                               {"join", "a.xml"}}) {
        EXPECT_EQ(sxml(words, "<a/>").status, words[1] == "a-1.xml" ? 1 : 2) << words.back();
    }
    std::filesystem::remove("a.xml");
    std::filesystem::copy("a-1.xml", "a.xml");
    EXPECT_EQ(sxml({"split", "a.xml", "--parts", "2"}).status, 1);
    EXPECT_EQ(read_file("a-1.xml"), "as it was");
    EXPECT_EQ(files(), (std::vector<std::string>{"a-1.xml", "a.xml"}));
}

}  // namespace
