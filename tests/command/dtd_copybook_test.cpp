// Copybooks made from documents with a DTD; xmllint says which documents are valid.

#include <array>
#include <filesystem>
#include <utility>

#include "tests/command/command_run.h"
#include "tests/command/contents.h"

namespace {

const std::string DECLARATIONS =
    "<!ENTITY % parts SYSTEM 'dtd/parts.dtd'>%parts;\n"
    "<!ELEMENT orders (order*)>\n"
    "<!ELEMENT order (code, (pickup | courier), %lines;, remark?)>\n"
    "<!ATTLIST order state (open|closed|lost) 'open' no NMTOKEN #REQUIRED>\n"
    "<!ELEMENT code (#PCDATA)><!ELEMENT pickup EMPTY><!ELEMENT courier (#PCDATA)>\n"
    "<!ELEMENT remark (#PCDATA)>\n";
const std::string PARTS =
    "<!ENTITY % lines 'line+'><!ELEMENT line (article, price)>\n"
    "<!ELEMENT article (#PCDATA)><!ELEMENT price (#PCDATA)>\n";
const std::string CONTENT =
    "<orders><order no='1'><code>A1</code><courier>me</courier><line><article>b</article>"
    "<price>1.25</price></line></order></orders>";

TEST_F(CommandTest, MakesACopybookOfADocumentWithADtd) {
    std::filesystem::create_directory("dtd");
    write_file("dtd/parts.dtd", PARTS);
    std::string internal = DECLARATIONS;
    internal.replace(internal.find("%lines;"), 7, "line+");  // not allowed within declarations
    write_file("orders.dtd", DECLARATIONS);
    write_file("within.xml", "<!DOCTYPE orders [" + internal + "]>" + CONTENT);
    write_file("named.xml", "<!DOCTYPE orders SYSTEM 'orders.dtd'>" + CONTENT);
    write_file("plain.xml", CONTENT);
    write_file("reader.cbl",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. READER.\n"
               "       DATA DIVISION.\n       WORKING-STORAGE SECTION.\n"
               "       COPY \"c.cpy\".\n       PROCEDURE DIVISION.\n           STOP RUN.\n");
    const std::vector<std::vector<std::string>> inputs = {
        {"within.xml"}, {"named.xml"}, {"plain.xml", "orders.dtd"}};
    for (const std::vector<std::string>& input : inputs) {
        SCOPED_TRACE(input[0]);
        std::vector<std::string> valid = {"xmllint", "--noout", "--nonet", "--valid"};
        if (input.size() > 1) valid = {"xmllint", "--noout", "--nonet", "--dtdvalid", input[1]};
        valid.push_back(input[0]);
        EXPECT_EQ(run(valid).status, 0);
        std::vector<std::string> words = {"copybook", "--attributes", "-o", "c.cpy"};
        words.insert(words.end(), input.begin(), input.end());
        const Outcome made = sxml(words);
        EXPECT_EQ(made.status, 0);
        EXPECT_NE(made.err.find("order/remark: may be of any length; the picture is a guess"),
                  std::string::npos)
            << made.err;
        const std::string copybook = read_file("c.cpy");
        for (const std::string part :
             {"*>   without content; optional; in 0 of 1\n           05  PICKUP PIC X(1).",
              "COURIER PIC X(3).", "1 to any number of times", "05  ORDER-RECORD-LINE OCCURS 2.",
              "PRICE PIC 9(2)V9(2).", "ORDER-STATE PIC X(6).", "ORDER-NO PIC 9(2).",
              "a guess\n           05  REMARK PIC X(80)."}) {
            EXPECT_NE(copybook.find(part), std::string::npos) << part << "\nin: " << copybook;
        }
        EXPECT_EQ(run({"cobc", "-fsyntax-only", "reader.cbl"}).status, 0) << copybook;
        const std::string& document = input[0];
        const Outcome checked = sxml({"check", document, "-l", "c.cpy", "--attributes"});
        EXPECT_EQ(checked.status, 0) << checked.out << checked.err;
        words = {"copybook", "--sampled"};
        words.insert(words.end(), input.begin(), input.end());
        EXPECT_EQ(sxml(words).out.find("REMARK"), std::string::npos);
    }
    const Outcome path = sxml({"copybook", "named.xml", "--record", "orders/order/line"});
    EXPECT_NE(path.out.find("01  LINE-RECORD."), std::string::npos) << path.out << path.err;
}

TEST_F(CommandTest, SaysWhatADtdHasThatRecordsHaveNot) {
    std::string wide = "<!DOCTYPE a [";
    for (const char c : std::string("abcdefgh")) {
        wide += std::string("<!ELEMENT ") + c + " (";
        for (int i = 0; i < 60; ++i) {
            wide +=
                (i > 0 ? "," : "") + std::string(1, static_cast<char>(c + 1)) + std::to_string(i);
        }
        wide += ")>";
        for (int i = 0; i < 60; ++i) {
            wide += "<!ELEMENT " + std::string(1, c) + std::to_string(i) + " (" +
                    std::string(1, static_cast<char>(c + 1)) + "0*, " +
                    std::string(1, static_cast<char>(c + 1)) + "1, " +
                    std::string(1, static_cast<char>(c + 1)) + "2, " +
                    std::string(1, static_cast<char>(c + 1)) + "3, " +
                    std::string(1, static_cast<char>(c + 1)) + "4)>";
        }
    }
    const std::string deep = std::string(100'000, '(') + "b" + std::string(100'000, ')');
    const std::string sample = "<a><r><b>1</b></r></a>";
    const std::vector<std::array<std::string, 3>> cases = {
        {"<!DOCTYPE a [<!ELEMENT r (#PCDATA|b)*>]>" + sample, "0",
         "s.xml:1:36: r: mixed content: the texts beside elements"},
        {"<!DOCTYPE a [<!ELEMENT r ANY>]>" + sample, "0",
         "s.xml:1:26: r: may hold elements of any"},
        {"<!DOCTYPE a [<!ELEMENT r (b,r?)>]>" + sample, "0", "r: contains r again and again"},
        {"<!DOCTYPE a [<!ATTLIST r k CDATA 'x'>]>" + sample, "0", "r: attributes cannot be read"},
        {"<!DOCTYPE a [<!ELEMENT r (b,c+)>]>" + sample, "0", "r/c: may occur any number of times"},
        {"<!DOCTYPE a SYSTEM 'no.dtd'>" + sample, "0",
         "s.xml:1:28: a part of the document type, no.dtd, was not read: No such file"},
        {"<!DOCTYPE a SYSTEM 'http://localhost:1/a.dtd'>" + sample, "0", "it is not a local file"},
        {"<!DOCTYPE a SYSTEM '/dev/zero'>" + sample, "0", "not a regular file"},
        {"<!DOCTYPE a SYSTEM 'bad.dtd'>" + sample, "1", "bad.dtd:2:14: syntax error"},
        {"<!DOCTYPE a SYSTEM 'dtd/outer.dtd'>" + sample, "1", "dtd/inner.dtd:2:14: syntax error"},
        {"<!DOCTYPE a SYSTEM 'loop.dtd'>" + sample, "1", "loop.dtd:1:"},
        {"<!DOCTYPE a [<!ELEMENT r " + deep + ">]>" + sample, "1", "nests deeper than 256"},
        {wide + "]><a><a0/></a>", "1", "different elements, or they nest deeper"},
    };
    write_file("bad.dtd", "<!ELEMENT a (r)>\n<!ELEMENT r (>");
    std::filesystem::create_directory("dtd");
    write_file("dtd/outer.dtd", "<!ENTITY % i SYSTEM 'inner.dtd'>%i;");
    write_file("dtd/inner.dtd", "<!ELEMENT a (r)>\n<!ELEMENT r (>");
    write_file("loop.dtd", "<!ENTITY % l SYSTEM 'loop.dtd'>%l;");
    for (const auto& [document, status, said] : cases) {
        SCOPED_TRACE(said);
        write_file("s.xml", document);
        const Outcome outcome = sxml({"copybook", "s.xml"});
        EXPECT_EQ(std::to_string(outcome.status), status) << outcome.err.substr(0, 500);
        EXPECT_NE(outcome.err.find(said), std::string::npos) << outcome.err.substr(0, 500);
    }
    EXPECT_EQ(sxml({"copybook", "s.xml", "a.dtd", "b.dtd"}).status, 2);
}

// A DTD that is given counts, or it is said why not; it is never replaced.
TEST_F(CommandTest, SaysWhenAGivenDtdDoesNotCount) {
    struct Case {
        std::vector<std::string> words;
        int status;
        std::string said;  // of warnings and errors
    };
    const std::string dtd = "<!ELEMENT a (r*)>";
    write_file("given.dtd", dtd);
    write_file("own.dtd", dtd);
    write_file("own.xml", "<!DOCTYPE a SYSTEM 'own.dtd'><a><r><b>1</b></r></a>");
    write_file("within.xml", "<!DOCTYPE a [<!ELEMENT r (b)>]><a><r><b>1</b></r></a>");
    write_file("s.xsd",
               "<schema xmlns='http://www.w3.org/2001/XMLSchema'><element name='a'/></schema>");
    const std::vector<Case> cases = {
        {{"s.xsd", "no.dtd"}, 1, "sxml: no.dtd: No such file or directory\n"},
        {{"s.xsd", "given.dtd"},
         2,
         "sxml: a DTD needs a sample beside it: give a document of this type\n"},
        {{"own.xml", "http://localhost:1/a.dtd"},
         1,
         "sxml: http://localhost:1/a.dtd: it is not a local file\n"},
        {{"own.xml", "given.dtd", "-o", "given.dtd"},
         2,
         "sxml: given.dtd would be written, and is read as given.dtd: they are one file; name "
         "another one to write\n"},
        {{"own.xml", "given.dtd"},
         0,
         "sxml: warning: own.xml: the document names another DTD, and given.dtd does not count for "
         "it; give it beside documents that name none\n"},
        {{"own.xml", "./own.dtd"}, 0, ""},
        {{"within.xml", "given.dtd"}, 0, ""},
        // No number of documents uses up what each may have.
        {std::vector<std::string>(101, "own.xml"), 0, ""},
    };
    for (const Case& one : cases) {
        std::vector<std::string> words = {"copybook"};
        words.insert(words.end(), one.words.begin(), one.words.end());
        const Outcome outcome = sxml(words);
        EXPECT_EQ(outcome.status, one.status) << one.said;
        EXPECT_EQ(outcome.err, one.said);
        EXPECT_EQ(read_file("given.dtd"), dtd);
    }
}

}  // namespace
