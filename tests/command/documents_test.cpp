// Documents as documents: sxml rewrite and sxml tree.

#include <cstring>
#include <filesystem>

#include "tests/command/command_run.h"

namespace {

const std::string EXPECTED = SXML_SOURCE_DIR "/tests/command/expected/";

const std::string ORDERS =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?app x=\"1\"?>\n<!-- a note -->\n"
    "<!DOCTYPE orders [<!ENTITY company \"Smith &amp; Sons\">]>\n"
    "<orders date=\"2026-11-22\" by='\"x\" &lt; y'>\n  <!-- the first -->\n"
    "  <order id=\"7\"><item>bolt</item><item>nut <![CDATA[<5>]]></item>"
    "<maker>&company;</maker></order>\n"
    "  <order id=\"8\"><item>caf&#233; line\ntwo \\ &quot;x&quot; &#155;</item>"
    "<note>1234567890123456789012345678901234567890123456789012345678\xC3\xA9\xC3\xA9"
    "6789012345678901234567890</note><empty/></order>\n</orders>\n";

std::string utf16(const std::string& ascii) {
    std::string units = "\xFF\xFE";
    for (const char c : ascii) units += {c, '\0'};
    return units;
}

// The canonical form without the comment in front, which names the file.
std::string canonical(const std::string& file) {
    const std::string form = run({"xmllint", "--noblanks", "--c14n", file}).out;
    return form.starts_with("<!--") ? form.substr(form.find('\n') + 1) : form;
}

class DocumentsTest : public CommandTest {};

// There may be many entities, but they must not nest too deep; the message names the location.
TEST_F(DocumentsTest, MayHaveManyEntities) {
    std::string flat = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    std::string deep = flat;
    for (int i = 1; i <= 2500; ++i) {
        const std::string start = "<!ENTITY e" + std::to_string(i) + " '&e";
        flat += start + "0;&#233;'>";
        deep += start + std::to_string(i - 1) + ";'>\n";
    }
    write_file("flat.xml", flat + "]><a><r>&e7;</r></a>");
    write_file("deep.xml", deep + "]><a><r>&e7;</r></a>");
    EXPECT_EQ(sxml({"tree", "flat.xml"}).err, "");
    write_file("r.cpy", "01 REC. 05 R PIC X(9).\n");
    for (const auto& arguments : {std::vector<std::string>{"tree", "deep.xml"},
                                  {"rewrite", "deep.xml", "out.xml"},
                                  {"from-xml", "deep.xml", "out.dat", "--layout", "r.cpy"}}) {
        const Outcome outcome = sxml(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.err.find("deep.xml:"), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find("entities nest more than 2,000 deep"), std::string::npos)
            << outcome.err;
    }
}

TEST_F(DocumentsTest, AreRewrittenInOneForm) {
    write_file("in.xml", ORDERS);
    EXPECT_EQ(sxml({"rewrite", "in.xml", "out.xml"}).err, "");
    EXPECT_EQ(read_file("out.xml"), read_file(EXPECTED + "rewritten.xml"));
    EXPECT_EQ(files(), (std::vector<std::string>{"in.xml", "out.xml"}));
    EXPECT_EQ(run({"xmllint", "--noout", "out.xml"}).err, "");
}

TEST_F(DocumentsTest, ShowAsTrees) {
    write_file("in.xml", ORDERS);
    const Outcome tree = sxml({"tree", "in.xml"});
    EXPECT_EQ(tree.err, "");
    EXPECT_EQ(tree.out, read_file(EXPECTED + "tree.txt"));
    EXPECT_NE(sxml({"tree", "--full", "in.xml"})
                  .out.find("\xC3\xA9"
                            "6789012345678901234567890\"\n"),
              std::string::npos);
}

// What does not matter to the writer, a canonical form of the input must not have either: comments
// and line ends within elements, white space around texts, DTDs.
TEST_F(DocumentsTest, KeepTheirContentsAndAreStable) {
    const struct {
        const char* name;
        std::string bytes;
        const char* shown;  // in the tree
    } cases[] = {
        {"plain", "<a><b x='1' y='p&#10;q'>t</b><b/>\n<c>&lt;&amp;&gt;\"'</c></a>", "b(2)\n"},
        {"utf8", "<a \xC3\xA9='\xC3\xBC'><b>\xE2\x82\xAC</b></a>", "a \xC3\xA9=\"\xC3\xBC\"\n"},
        {"latin1", "<?xml version='1.0' encoding='iso-8859-1'?><a><\xE9 x='\xFC'>\xC4</\xE9></a>",
         "\xC3\xA9 x=\"\xC3\xBC\": \"\xC3\x84\"\n"},
        {"utf16", utf16("<?xml version='1.0' encoding='UTF-16'?><a><b>text</b></a>"),
         "b: \"text\"\n"},
        {"ascii", "<?xml version='1.0' encoding='US-ASCII'?><a><b>&#8364;</b></a>",
         "b: \"\xE2\x82\xAC\"\n"},
    };
    for (const auto& c : cases) {
        write_file("in.xml", c.bytes);
        EXPECT_EQ(sxml({"rewrite", "in.xml", "out.xml"}).err, "") << c.name;
        EXPECT_EQ(canonical("in.xml"), canonical("out.xml")) << c.name;
        const std::string first = read_file("out.xml");
        EXPECT_EQ(sxml({"rewrite", "out.xml", "./out.xml"}).err, "") << c.name;
        EXPECT_EQ(read_file("out.xml"), first) << c.name;
        const std::string tree = sxml({"tree", "-"}, c.bytes).out;
        EXPECT_NE(tree.find(c.shown), std::string::npos) << c.name << "\n" << tree;
        EXPECT_EQ(sxml({"tree", "out.xml"}).out, tree) << c.name;
    }
}

// In whatever encoding a document is written back, a comment says the same.
TEST_F(DocumentsTest, KeepTheirComments) {
    const auto document = [](const std::string& encoding, const std::string& text) {
        return "<?xml version='1.0' encoding='" + encoding + "'?><!--" + text + "--><a><!--p" +
               text + "--><b><!--q" + text + "--></b><!--r" + text + "--></a>";
    };
    const std::string utf8 = "\xC3\xA9\xC3\xBC";
    const struct {
        std::string bytes;
        const char* comment;
    } cases[] = {
        {document("UTF-8", utf8), "\xC3\xA9\xC3\xBC"},
        {document("ISO-8859-1", "\xE9\xFC"), "\xE9\xFC"},
        {utf16(document("UTF-16", "e")), "e"},
    };
    for (const auto& c : cases) {
        write_file("in.xml", c.bytes);
        EXPECT_EQ(sxml({"rewrite", "in.xml", "out.xml"}).err, "");
        const std::string out = read_file("out.xml");
        for (const char* number : {" ", "p", "q", "r"})
            EXPECT_NE(out.find(number + std::string(c.comment)), std::string::npos) << out;
        const std::string shown =
            run({"xmllint", "--xpath", "string(//comment()[contains(., 'q')])", "out.xml"}).out;
        EXPECT_NE(shown.find(c.comment[0] == 'e' ? "e" : utf8), std::string::npos) << shown;
    }
}

// A document that needs more memory than it may have is refused; what was there stays.
TEST_F(DocumentsTest, MayTakeSoMuchMemory) {
    std::string deep;
    for (int i = 0; i < 30'000; ++i) deep += "<e>";
    for (int i = 0; i < 30'000; ++i) deep += "</e>";
    write_file("deep.xml", deep);
    std::string wide = "<a><r>";
    for (int i = 0; i < 100'000; ++i) wide += "<e/>";
    write_file("wide.xml", wide + "</r></a>");
    std::string repeated = "<a><r>";
    for (int i = 0; i < 60'000; ++i) repeated += "<t>x</t>";
    write_file("repeated.xml", repeated + "</r><r><t>y</t></r></a>");
    write_file("r.cpy", "01 REC. 05 R PIC X(9).\n");
    write_file("t.cpy", "01 REC. 05 T PIC X(9).\n");
    const struct {
        std::vector<std::string> command;
        const char* limit;
    } cases[] = {
        {{"tree", "deep.xml"}, "4"},
        {{"rewrite", "deep.xml", "out"}, "4"},
        {{"from-xml", "wide.xml", "out", "--layout", "r.cpy"}, "4"},
        {{"from-xml", "repeated.xml", "out", "--layout", "t.cpy"}, "1"},
    };
    for (const auto& [command, limit] : cases) {
        write_file("out", "as it was");
        setenv("SXML_MEMORY_LIMIT", limit, 1);
        const Outcome refused = sxml(command);
        setenv("SXML_MEMORY_LIMIT", "400", 1);
        EXPECT_EQ(refused.status, 1) << command[0];
        EXPECT_EQ(refused.out, "") << command[0];
        EXPECT_NE(refused.err.find("sxml: more memory is needed than SXML_MEMORY_LIMIT allows"),
                  std::string::npos)
            << refused.err;
        EXPECT_EQ(read_file("out"), "as it was") << command[0];
        EXPECT_EQ(sxml(command).status, 0) << command[0];
    }
    unsetenv("SXML_MEMORY_LIMIT");
}

TEST_F(DocumentsTest, ComeFromAnywhereAndGoAnywhere) {
    write_file("in.xml", ORDERS);
    write_file("<?xml odd", ORDERS);
    const std::string tree = sxml({"tree", "in.xml"}).out;
    EXPECT_EQ(sxml({"tree", "<?xml odd"}).out, tree);
    EXPECT_EQ(run({"bash", "-c", "cat in.xml | $0 tree /dev/stdin", command_under_test()}).out,
              tree);
    EXPECT_EQ(run({"bash", "-c", "$0 rewrite - - <in.xml | $0 tree -", command_under_test()}).out,
              tree);
    // A comment cannot hold this name.
    EXPECT_EQ(sxml({"rewrite", "in.xml", "a--b-\xC3\xA9.xml"}).err, "");
    EXPECT_EQ(sxml({"tree", "a--b-\xC3\xA9.xml"}).out, tree);
    EXPECT_NE(read_file("a--b-\xC3\xA9.xml").find("<!-- a-_b-__.xml - generated"),
              std::string::npos);
}

TEST_F(DocumentsTest, MayBeDeep) {
    constexpr int LEVELS = 100'000;
    std::string deep;
    for (int i = 0; i < LEVELS; ++i) deep += "<a>";
    for (int i = 0; i < LEVELS; ++i) deep += "</a>";
    const std::string tree = sxml({"tree", "-"}, deep).out;
    EXPECT_NE(tree.find("\n" + std::string(80, ' ') + "[level 99999] a\n"), std::string::npos);
}

TEST_F(DocumentsTest, LossesAreTold) {
    write_file("in.xml",
               "<!DOCTYPE d [<!ENTITY e SYSTEM 'e.txt'>]>\n"
               "<d><p>one<b>two</b>three</p><q> <b/> </q><r>&e;</r></d>");
    const std::string unread =
        "sxml: warning: in.xml:2:45: the entity e is outside of the document and is not read; its "
        "text is missing\n";
    EXPECT_EQ(sxml({"tree", "in.xml"}).err, unread);
    EXPECT_EQ(sxml({"rewrite", "in.xml", "out.xml"}).err,
              unread +
                  "sxml: warning: in.xml: 1 element has text beside elements, such as p; the text "
                  "is written first, and its order among the elements is lost\n");
    write_file("latin.xml", "<?xml version='1.0' encoding='ISO-8859-1'?>\n<a>\xE4&#x20AC;</a>");
    const std::string lost =
        "sxml: warning: latin.xml:2:5: the character U+20AC is lost, because the document declares "
        "ISO-8859-1 and its texts are kept in it; convert the document to UTF-8 first, as `xmllint "
        "--encode UTF-8` does\n";
    EXPECT_EQ(sxml({"tree", "latin.xml"}).err, lost);
    EXPECT_EQ(sxml({"rewrite", "latin.xml", "out.xml"}).err, lost);
    const std::string remedied = run({"xmllint", "--encode", "UTF-8", "latin.xml"}).out;
    const Outcome tree = sxml({"tree", "-"}, remedied);
    EXPECT_EQ(tree.err, "");
    EXPECT_NE(tree.out.find("\xC3\xA4\xE2\x82\xAC"), std::string::npos) << tree.out;
}

TEST_F(DocumentsTest, AreRefusedWithThePlace) {
    const struct {
        const char* bytes;
        const char* said;
    } cases[] = {
        {"<a>\n <b></a>", "sxml: bad.xml:2:7: mismatched tag\n"},
        {"<a>\n <b>", "sxml: bad.xml:2:5: the document is not complete: no element found\n"},
        {"<a/>\n<!-- ", "sxml: bad.xml:2:1: the document is not complete: unclosed token\n"},
        {"", "sxml: bad.xml:1:1: the document is not complete: no element found\n"},
        {"<a>&none;</a>", "sxml: bad.xml:1:4: undefined entity\n"},
        {"<?xml version='1.0' encoding='klingon'?><a/>", "sxml: bad.xml:1:31: unknown encoding\n"},
    };
    for (const auto& c : cases) {
        write_file("bad.xml", c.bytes);
        write_file("out.xml", "old");
        const Outcome rewritten = sxml({"rewrite", "bad.xml", "out.xml"});
        EXPECT_EQ(rewritten.status, 1);
        EXPECT_EQ(rewritten.err, c.said);
        EXPECT_EQ(read_file("out.xml"), "old");
        EXPECT_EQ(files(), (std::vector<std::string>{"bad.xml", "out.xml"}));
        std::string from_input = c.said;
        from_input.replace(from_input.find("bad.xml"), 7, "standard input");
        const Outcome tree = sxml({"tree", "-"}, c.bytes);
        EXPECT_EQ(tree.err, from_input);
        EXPECT_EQ(tree.out, "");
    }
}

TEST_F(DocumentsTest, FailuresOfFilesAreTold) {
    write_file("in.xml", ORDERS);
    const struct {
        std::vector<std::string> words;
        const char* output;
        const char* said;
    } cases[] = {
        {{"tree", "none.xml"}, "", "sxml: none.xml: No such file or directory\n"},
        {{"tree", "/tmp"}, "", "sxml: /tmp: Is a directory\n"},
        {{"rewrite", "http://127.0.0.1:1/x", "out.xml"},
         "",
         "sxml: http://127.0.0.1:1/x: the document cannot be fetched, or not in full: "},
        {{"rewrite", "in.xml", "/dev/full"}, "", "sxml: /dev/full: No space left on device\n"},
        {{"rewrite", "in.xml", "-"},
         "/dev/full",
         "sxml: standard output: No space left on device\n"},
        {{"tree", "in.xml"}, "/dev/full", "sxml: standard output: No space left on device\n"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = sxml(c.words, "", c.output);
        EXPECT_EQ(outcome.status, 1) << c.said;
        EXPECT_EQ(outcome.err.substr(0, std::strlen(c.said)), c.said);
        EXPECT_EQ(files(), std::vector<std::string>{"in.xml"}) << c.said;
    }
    EXPECT_NE(sxml({"rewrite", "--help"}).out.find("Example:\n  sxml rewrite orders.xml tidy.xml"),
              std::string::npos);
    EXPECT_NE(sxml({"tree", "--help"}).out.find("Example:\n  sxml tree orders.xml"),
              std::string::npos);
}

}  // namespace
