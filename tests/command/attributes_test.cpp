// Attributes read as elements, in copybooks, conversions and checks.

#include <array>
#include <utility>

#include "tests/command/command_run.h"
#include "tests/command/contents.h"

namespace {

const std::string BANK =
    "<?xml version='1.0'?>\n<!DOCTYPE statement [<!ATTLIST entry state CDATA 'booked'>]>\n"
    "<statement>\n <entry id='1' day='2026-11-02'>\n"
    "  <amount currency='EUR'>-12.50</amount><!-- c -->\n"
    "  <party name='M\xC3\xBCller' iban='DE1'/>\n"
    "  <tag>a</tag><tag kind='x'>b</tag><tag/><tag kind='y'>c</tag>\n </entry>\n"
    " <entry id='2' day='2026-11-03'>\n"
    "  <amount currency='USD' rate='1.0825'>99.25</amount>\n"
    "  <party name='Smith &amp; &lt;&quot;Co&quot;&gt;' iban='DE22'/>\n"
    "  <note xml:lang='en' u:ref='a' xmlns:u='u'>hi</note>\n </entry>\n</statement>\n";

const std::vector<std::string> BANK_CONTENTS = {"entry/entry_id/1",
                                                "entry/entry_day/2026-11-02",
                                                "entry/entry_state/booked",
                                                "entry/amount/-12.50",
                                                "entry/amount_currency/EUR",
                                                "entry/party/party_name/M\xC3\xBCller",
                                                "entry/party/party_iban/DE1",
                                                "entry/tag/a",
                                                "entry/tag/b",
                                                "entry/tag/c",
                                                "entry/tag_kind/x",
                                                "entry/tag_kind/y",
                                                "entry/entry_id/2",
                                                "entry/entry_day/2026-11-03",
                                                "entry/entry_state/booked",
                                                "entry/amount/99.25",
                                                "entry/amount_currency/USD",
                                                "entry/amount_rate/1.0825",
                                                "entry/party/party_name/Smith & <\"Co\">",
                                                "entry/party/party_iban/DE22",
                                                "entry/note/hi",
                                                "entry/note_u_ref/a"};

TEST_F(CommandTest, ReadsAttributesAsElements) {
    write_file("utf-8.xml", BANK);
    std::string latin = BANK;
    latin.replace(0, 21, "<?xml version='1.0' encoding='UTF-8'?>");
    write_file("declared.xml", latin);
    latin.replace(latin.find("UTF-8"), 5, "ISO-8859-1");
    write_file("l.xml", latin);
    for (const auto& [from, to, name] : std::vector<std::array<const char*, 3>>{
             {"utf-8.xml", "utf-16", "wide.xml"}, {"l.xml", "iso-8859-1", "latin.xml"}}) {
        ASSERT_EQ(run({"iconv", "-f", "utf-8", "-t", to, from}, "", name).status, 0);
    }
    write_file("reader.cbl",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. READER.\n"
               "       DATA DIVISION.\n       WORKING-STORAGE SECTION.\n"
               "       COPY \"c.cpy\".\n       PROCEDURE DIVISION.\n           STOP RUN.\n");
    for (const std::string file : {"utf-8.xml", "declared.xml", "latin.xml", "wide.xml"}) {
        SCOPED_TRACE(file);
        const Outcome made = sxml({"copybook", file, "--attributes", "-o", "c.cpy"});
        EXPECT_EQ(made.err, "");
        EXPECT_EQ(run({"cobc", "-fsyntax-only", "reader.cbl"}).status, 0);
        const Outcome checked = sxml({"check", file, "-l", "c.cpy", "--attributes"});
        EXPECT_EQ(checked.status, 0) << checked.out << checked.err;
        const Outcome read =
            sxml({"from-xml", file, "r.dat", "-l", "c.cpy", "--attributes", "--strict"});
        ASSERT_EQ(read.status, 0) << read.err;
        EXPECT_EQ(read_file("r.dat").find("M\xC3\xBCller") == std::string::npos,
                  file == "latin.xml");
        const std::string encoding = file == "latin.xml" ? "iso-8859-1" : "utf-8";
        ASSERT_EQ(
            sxml({"to-xml", "r.dat", "again.xml", "-l", "c.cpy", "--encoding", encoding}).status,
            0);
        EXPECT_EQ(contents_of(read_file("again.xml")), BANK_CONTENTS) << read_file("c.cpy");
        // The second x belongs to the second tag, as in the document.
        std::string again = read_file("again.xml");
        std::erase(again, '\r');
        EXPECT_NE(again.find("<tag_kind></tag_kind>\n  <tag_kind>x</tag_kind>\n"
                             "  <tag_kind></tag_kind>\n  <tag_kind>y</tag_kind>"),
                  std::string::npos)
            << again;
    }
}

// Messages name the places of the document itself, also with the records at a path.
TEST_F(CommandTest, NamesPlacesOfTheDocumentWithAttributes) {
    write_file("s.xml",
               "<s at='1'>head\n<page no='7'><r a='1' b='2'><g c='3'><x>5</x></g>\n"
               " <t d='4'>long text</t> <u>6</u></r>\n<r/></page></s>");
    write_file("s.cpy",
               "       01  R.\n           05  R-A PIC 9.\n           05  G.\n"
               "               10  G-C PIC 9.\n               10  X PIC 9.\n"
               "           05  T PIC X(4).\n           05  T-D PIC 9.\n");
    const std::vector<std::string> how = {"-l", "s.cpy", "--attributes", "--record", "s/page/r"};
    std::vector<std::string> words = {"from-xml", "s.xml", "s.dat", "--report", "s.json"};
    words.insert(words.end(), how.begin(), how.end());
    const Outcome read = sxml(words);
    EXPECT_EQ(read.status, 0) << read.err;
    EXPECT_EQ(read_file("s.dat"), "135long4000    0");
    for (const std::string said :
         {"s.xml:1:1: 1 text and 2 attributes outside of the records went into no field",
          "s.xml:2:14: record 1: r_b: ", "s.xml:3:25: record 1: u: ",
          "s.xml:2:14: record 1, field t", "s.xml: 5 text or attribute lists went into no field",
          "s.xml: outside of the records: 3 not used"}) {
        EXPECT_NE(read.err.find(said), std::string::npos) << said << "\nin: " << read.err;
    }
    EXPECT_NE(read_file("s.json").find("\"outside of the records\": 3"), std::string::npos);
    words = {"check", "s.xml"};
    words.insert(words.end(), how.begin(), how.end());
    EXPECT_EQ(sxml(words).status, 1);
    words = {"from-xml", "s.xml", "t.dat", "--strict"};
    words.insert(words.end(), how.begin(), how.end());
    EXPECT_EQ(sxml(words).err,
              "sxml: s.xml:1:1: 1 text and 2 attributes outside of the records went into no "
              "field\n");
    const Outcome made = sxml({"copybook", "s.xml", "--record", "s/page/r"});
    EXPECT_NE(made.err.find("s.xml:1:1: 1 text and 2 attributes"), std::string::npos) << made.err;
    // Records that are put aside are those of the document.
    write_file("n.cpy", "       01  R.\n           05  R-A PIC 9.\n");
    const Outcome aside = sxml({"from-xml", "s.xml", "t.dat", "-l", "n.cpy", "--attributes",
                                "--record", "s/page/r", "--strict", "--rejects", "aside.xml"});
    EXPECT_EQ(aside.status, 1) << aside.err;
}

// A record that is a text has it in a field.
TEST_F(CommandTest, ReadsTheTextOfARecordWithAttributes) {
    write_file("s.xml",
               "<rates><rate currency='USD'>1.08</rate>\n<rate currency='JPY'>161</rate></rates>");
    ASSERT_EQ(sxml({"copybook", "s.xml", "--attributes", "--exact", "-o", "s.cpy"}).err, "");
    const Outcome read =
        sxml({"from-xml", "s.xml", "s.dat", "-l", "s.cpy", "--attributes", "--strict"});
    ASSERT_EQ(read.status, 0) << read.err << read_file("s.cpy");
    ASSERT_EQ(sxml({"to-xml", "s.dat", "t.xml", "-l", "s.cpy"}).status, 0);
    EXPECT_EQ(contents_of(read_file("t.xml")),
              (std::vector<std::string>{"rate/rate_currency/USD", "rate/rate_text/1.08",
                                        "rate/rate_currency/JPY", "rate/rate_text/161"}));
    // The place of an element after such a text.
    write_file("s.xml", "<rates><rate currency='USD'>1.08\n <more>x</more></rate></rates>");
    const Outcome more = sxml({"from-xml", "s.xml", "s.dat", "-l", "s.cpy", "--attributes"});
    EXPECT_NE(more.err.find("s.xml:2:2: record 1: more: "), std::string::npos) << more.err;
}

TEST_F(CommandTest, RefusesAttributesThatCannotBeElements) {
    std::string many = "<a><r>";
    for (int i = 0; i < 3000; ++i) many += "<t x" + std::to_string(i) + "='1'>1</t>";
    const std::vector<std::array<std::string, 3>> cases = {
        {"<a><r b='1'></x></a>", "1", "s.xml:1:15: mismatched tag"},
        {"<!DOCTYPE a SYSTEM 'a.dtd'><a><r b='1'>&e;</r></a>", "1",
         "s.xml:1:40: the entity e is not declared in the document itself"},
        {many + "</r></a>", "1", "s.xml:1:"},
    };
    write_file("s.cpy", "       01  R.\n           05  R-B PIC 9.\n           05  T PIC 9.\n");
    for (const auto& [document, status, said] : cases) {
        write_file("s.xml", document);
        const Outcome outcome = sxml({"from-xml", "s.xml", "s.dat", "-l", "s.cpy", "--attributes"});
        EXPECT_EQ(std::to_string(outcome.status), status) << outcome.err.substr(0, 300);
        EXPECT_NE(outcome.err.find(said), std::string::npos) << outcome.err.substr(0, 300);
    }
    EXPECT_EQ(files(), (std::vector<std::string>{"s.cpy", "s.xml"}));
    // An attribute and an element that come to one name; attributes that a schema declares.
    write_file("s.xml", "<a><r><b c='1'>x</b><b_c>y</b_c></r></a>");
    EXPECT_NE(sxml({"copybook", "s.xml", "--attributes"})
                  .err.find("s.xml:1:7: r/b/b_c: an attribute and"),
              std::string::npos);
    write_file("s.xsd",
               "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='a'>"
               "<xs:complexType><xs:sequence><xs:element name='r' maxOccurs='9'><xs:complexType>"
               "<xs:sequence><xs:element name='m' maxOccurs='4'><xs:complexType><xs:simpleContent>"
               "<xs:extension base='xs:short'><xs:attribute name='unit' use='required'>"
               "<xs:simpleType><xs:restriction base='xs:string'><xs:length value='2'/>"
               "</xs:restriction></xs:simpleType></xs:attribute></xs:extension>"
               "</xs:simpleContent></xs:complexType></xs:element></xs:sequence>"
               "<xs:attributeGroup ref='g'/></xs:complexType></xs:element></xs:sequence>"
               "</xs:complexType></xs:element><xs:attributeGroup name='g'>"
               "<xs:attribute name='no' type='xs:unsignedByte'/><xs:attribute ref='xml:lang'/>"
               "</xs:attributeGroup></xs:schema>");
    const Outcome made = sxml({"copybook", "s.xsd", "--attributes"});
    EXPECT_EQ(made.err, "");
    for (const std::string part :
         {"05  R-NO PIC 9(3).", "05  M PIC S9(5) OCCURS 4.", "05  M-UNIT PIC X(2) OCCURS 4."}) {
        EXPECT_NE(made.out.find(part), std::string::npos) << part << "\nin: " << made.out;
    }
}

// What a DTD declares, of elements and attributes that samples have and have not.
TEST_F(CommandTest, ReadsAttributesThatADtdDeclares) {
    const std::string type =
        "<!DOCTYPE a [<!ELEMENT r (code,price?)><!ELEMENT code (#PCDATA)><!ELEMENT price (#PCDATA)>"
        "<!ATTLIST r state (open|cancelled) #IMPLIED><!ATTLIST r state (o|c) 'o' k CDATA #IMPLIED>"
        "<!ATTLIST price unit CDATA #REQUIRED>]>";
    write_file("s.xml", type + "<a><r state='open'><code>A</code></r></a>");
    const Outcome sampled = sxml({"copybook", "s.xml", "--attributes", "--sampled"});
    EXPECT_NE(sampled.out.find("*>   one of 2; optional; longest 4 characters\n"
                               "           05  R-STATE PIC X(9)."),
              std::string::npos)
        << sampled.out;
    EXPECT_EQ(sampled.out.find("R-K"), std::string::npos) << sampled.out;
    EXPECT_EQ(sampled.out.find("PRICE"), std::string::npos) << sampled.out;
    ASSERT_EQ(sxml({"copybook", "s.xml", "--attributes", "-o", "s.cpy"}).status, 0);
    write_file("t.xml", type +
                            "<a><r state='open' k='2'><code>B</code><price unit='kg'>5</price>"
                            "</r></a>");
    const Outcome read =
        sxml({"from-xml", "t.xml", "t.dat", "-l", "s.cpy", "--attributes", "--strict"});
    ASSERT_EQ(read.status, 0) << read.err << read_file("s.cpy");
    ASSERT_EQ(sxml({"to-xml", "t.dat", "again.xml", "-l", "s.cpy"}).status, 0);
    EXPECT_EQ(contents_of(read_file("again.xml")),
              (std::vector<std::string>{"r/r_state/open", "r/r_k/2", "r/code/B", "r/price/5",
                                        "r/price_unit/kg"}));
}

}  // namespace
