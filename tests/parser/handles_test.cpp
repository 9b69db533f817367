// Parser handles: failure codes, sources, what a document can be asked and how it is changed.
#include <dlfcn.h>
#include <expat.h>
#include <unistd.h>

#include "host/runtime/trace_control.h"
#include "tests/parser/parser_test.h"

namespace {

int deferral_calls = 0;

}  // namespace

// Stands before the library's function, when there is one, and lets the tests see the calls.
extern "C" __attribute__((visibility("default"))) XML_Bool XML_SetReparseDeferralEnabled(
    XML_Parser parser, XML_Bool enabled) {
    deferral_calls += enabled ? 1000 : 1;
    using Setter = XML_Bool(XML_Parser, XML_Bool);
    auto* real = reinterpret_cast<Setter*>(dlsym(RTLD_NEXT, "XML_SetReparseDeferralEnabled"));
    return real ? real(parser, enabled) : XML_FALSE;
}

namespace {

class Handles : public ParserTest {};

TEST_F(Handles, BadHandlesAreHarmless) {
    const std::uint32_t stale = xml.xml_open_file(nullptr, 0, 0);
    const std::uint32_t element = xml.xml_parser_new_root(stale, "a");
    ASSERT_EQ(xml.xml_free_parser(stale), 1);
    const std::uint32_t tree = xml.xml_add_child(0, "b");
    for (const std::uint32_t bad : {0U, stale, element, tree, 12345U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(bad);
        std::uint64_t length = 7;
        // Brings the last error away from the code that is expected next.
        const auto fails = [&](bool failed) {
            EXPECT_TRUE(failed);
            EXPECT_EQ(parser_error(), XMLERR_BAD_PARSER);
            const std::uint32_t other = xml.xml_open_file(nullptr, 0, 0);
            xml.xml_pi_count(other);
            xml.xml_free_parser(other);
            EXPECT_EQ(parser_error(), XMLERR_NO_PI);
        };
        fails(xml.xml_parser_root(bad) == 0);
        fails(xml.xml_parser_models(bad) == nullptr);
        fails(xml.xml_parser_new_root(bad, "a") == 0);
        fails(xml.SxmlParser_parse_record(bad) == 0);
        fails(xml.xml_parser_current(bad) == 0);
        fails(xml.xml_free_parser(bad) == 0);
        fails(xml.xml_write_document(bad, (folder / "no.xml").c_str()) == 0);
        fails(xml.xml_add_top_comment(bad, "x") == 0);
        fails((xml.xml_clear_top_comments(bad), true));
        fails(xml.xml_top_comments(bad, &length) == nullptr && length == 0);
        fails(xml.xml_pi_target(bad, 0) == nullptr);
        fails(xml.xml_pi_data(bad, 0) == nullptr);
        fails(xml.xml_delete_pi(bad, 0) == 0);
        fails(xml.xml_insert_pi(bad, 0, "t", "d") == 0);
        fails(xml.xml_pi_count(bad) == 0);
        fails(xml.xml_parser_version(bad) == nullptr);
        fails(xml.xml_set_parser_version(bad, "1.0") == nullptr);
        fails(xml.xml_parser_encoding(bad) == nullptr);
        fails((xml.xml_set_parser_encoding(bad, "x"), true));
        fails(xml.xml_parser_standalone(bad) == 0);
        fails((xml.xml_set_parser_standalone(bad, 1), true));
        fails(xml.xml_parser_doctype_text(bad) == nullptr);
        fails(xml.xml_set_parser_doctype_text(bad, "x") == 0);
        fails(xml.xml_parser_element_hash(bad) == nullptr);
        EXPECT_EQ(xml.xml_is_parser(bad), 0);
        EXPECT_EQ(xml.xml_element_parser(bad), 0U);
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "no.xml"));
    xml.xml_free_element(tree);
}

TEST_F(Handles, OpeningTellsWhyItFails) {
    const std::string broken = "<?xml version='1.0'?><a></b>";
    EXPECT_EQ(xml.xml_open_file((folder / "missing.xml").c_str(), WHOLE, 0), 0U);
    EXPECT_EQ(parser_error(), XMLERR_OPEN_FILE);
    std::int32_t code = 0;
    EXPECT_STREQ(xml.xml_last_error(&code), "Unable to open named file");
    EXPECT_EQ(xml.xml_open_file(broken.c_str(), WHOLE, broken.size()), 0U);
    EXPECT_EQ(parser_error(), XMLERR_PARSE);
    EXPECT_EQ(file_error(), HOST_FILE_XML);
    EXPECT_EQ(*host_error_detail(HOST_FILE_XML), HOST_DETAIL_EXPAT);
    EXPECT_EQ(*host_error_subcode(), XML_ERROR_TAG_MISMATCH);
    EXPECT_STREQ(*host_error_text(), XML_ErrorString(XML_ERROR_TAG_MISMATCH));
    // Only the given length counts, and an end that comes early is no error.
    const std::uint32_t cut = xml.xml_open_file(broken.c_str(), WHOLE, broken.size() - 2);
    EXPECT_EQ(file_error(), HOST_FILE_END);
    EXPECT_STREQ(xml.xml_element_name(xml.xml_parser_root(cut)), "a");
    xml.xml_free_parser(cut);

    const std::uint32_t empty = open("", EVERYTHING);
    EXPECT_EQ(file_error(), HOST_FILE_END);
    EXPECT_EQ(xml.xml_parser_root(empty), 0U);
    EXPECT_EQ(xml.SxmlParser_parse_record(empty), 0);
    EXPECT_EQ(file_error(), HOST_FILE_END);
    xml.xml_free_parser(empty);

    const std::uint32_t child = open("<c/>", EVERYTHING);
    EXPECT_EQ(file_error(), HOST_FILE_OK) << "an empty document element opens as any other";
    xml.xml_free_parser(child);
    EXPECT_EQ(parser_error(), XMLERR_PARSE) << "success clears nothing";
}

TEST_F(Handles, ReadsStandardInputAndLeavesItOpen) {
    const std::string path = file_with("<a><b>1</b></a>");
    const int saved = dup(0);
    ASSERT_NE(freopen(path.c_str(), "r", stdin), nullptr);
    const std::uint32_t parser = xml.xml_open_file("-", WHOLE, 0);
    ASSERT_NE(parser, 0U);
    EXPECT_STREQ(xml.xml_element_name(xml.xml_parser_root(parser)), "a");
    xml.xml_free_parser(parser);
    EXPECT_NE(dup2(saved, 0), -1);
    close(saved);
}

TEST_F(Handles, AnswersWhatTheDocumentHolds) {
    const std::uint32_t parser = open(
        "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><?a 1?><!-- one --> <!--   -->\n"
        "<!-- text - generated by KORVANE v1 on 2026/01/01 -->"
        "<!-- keep\n text - generated by KORVANE v1\n\nthis -->"
        "<!DOCTYPE r PUBLIC 'p' 's' [<!ELEMENT R (a, b*)><!ENTITY e 'x'><!ATTLIST r k CDATA 'v'>]>"
        "<r><!--b--><x><!--a--></x><?b 2?>&e;<!--c--></r><?c?>",
        WHOLE | XMLOPT_ELEMENT_DECLS | XMLOPT_ENTITY_DECLS | XMLOPT_NOTATION_DECLS);
    ASSERT_NE(parser, 0U);
    EXPECT_STREQ(xml.xml_parser_version(parser), "1.0");
    EXPECT_STREQ(xml.xml_parser_encoding(parser), "UTF-8");
    EXPECT_EQ(xml.xml_parser_standalone(parser), 1);
    EXPECT_STREQ(xml.xml_top_comments(parser, nullptr), "one\nkeep\n\nthis");
    EXPECT_EQ(xml.xml_add_top_comment(parser, "x"), 1);
    EXPECT_STREQ(xml.xml_top_comments(parser, nullptr), "one\nkeep\n\nthis\nx");
    EXPECT_STREQ(xml.xml_parser_doctype_text(parser), "<!ATTLIST r k CDATA 'v'>");
    EXPECT_NE(xml.xml_parser_models(parser), nullptr);
    EXPECT_EQ(describe(xml.xml_parser_root(parser)), "r[]=x@2!c k:v(x[]!b\na)");
    EXPECT_EQ(xml.xml_pi_count(parser), 3U);
    EXPECT_STREQ(xml.xml_pi_target(parser, 1), "b");
    EXPECT_STREQ(xml.xml_pi_data(parser, 2), "");
    EXPECT_EQ(xml.xml_pi_target(parser, 3), nullptr);
    EXPECT_EQ(parser_error(), XMLERR_BAD_PI);
    EXPECT_EQ(xml.xml_delete_pi(parser, 0), 1);
    EXPECT_STREQ(xml.xml_pi_data(parser, 0), "2");
    const std::uint32_t inner = xml.xml_first_child(xml.xml_parser_root(parser));
    EXPECT_EQ(xml.xml_element_parser(inner), parser);
    EXPECT_EQ(xml.xml_parser_new_root(parser, "q"), 0U);
    EXPECT_EQ(parser_error(), XMLERR_HAS_TOP_LEVEL);
    xml.xml_free_parser(parser);
    EXPECT_EQ(xml.xml_element_parser(inner), 0U);

    // A default handler for the whole document keeps entities unexpanded.
    const std::uint32_t plain =
        open("<!DOCTYPE r [<!ENTITY e 'x'>]><r>a&e;b</r>", WHOLE | XMLOPT_DEFAULT);
    EXPECT_EQ(describe(xml.xml_parser_root(plain)), "r[]=ab@2");
    EXPECT_STREQ(xml.xml_parser_doctype_text(plain), "<!ENTITY e 'x'>");
    xml.xml_free_parser(plain);
}

// Comments are kept as Expat gives them, inside and outside of elements, whatever the other texts
// are kept in.
TEST_F(Handles, KeepsCommentsInUtf8) {
    const std::uint32_t parser = open(
        "<?xml version='1.0' encoding='ISO-8859-1'?><!--\xE9--><a k='\xE9'><!--\xE9-->\xE9</a>",
        WHOLE);
    const std::uint32_t root = xml.xml_parser_root(parser);
    EXPECT_STREQ(xml.xml_top_comments(parser, nullptr), "\xC3\xA9");
    EXPECT_STREQ(xml.xml_element_comments(root, nullptr), "\xC3\xA9");
    EXPECT_STREQ(xml.xml_element_value(root, nullptr), "\xE9");
    xml.xml_free_parser(parser);
}

TEST_F(Handles, ConvertsNames) {
    const char* const expected[] = {"A-b_C", "a_b_c", "A_b_C", "A-b_C"};
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        const std::uint32_t parser = open("<A-b_C X-y='1'/>", WHOLE | mode);
        EXPECT_STREQ(xml.xml_element_name(xml.xml_parser_root(parser)), expected[mode]);
        EXPECT_STREQ(xml.xml_attribute_name(xml.xml_parser_root(parser), 0), "X-y");
        xml.xml_free_parser(parser);
    }
}

TEST_F(Handles, TracesWhatItReads) {
    const std::string trace = folder / "trace";
    ASSERT_TRUE(host::set_trace(10, trace));
    const std::uint32_t parser = open(
        "<?xml version='1.0' encoding='UTF-8'?><!--c--><?t d?><!DOCTYPE r SYSTEM 's' "
        "[<!ELEMENT r (a?, (b | c)*)><!ATTLIST r k CDATA 'v'><!ENTITY e SYSTEM 'x'>"
        "<!NOTATION n PUBLIC 'p'><!ENTITY u SYSTEM 'y' NDATA n>]>\n"
        "<r>\n<a x='1'>&e;</a><![CDATA[t]]></r>",
        0x7FFFC & ~std::uint32_t{XMLOPT_DEFAULT});
    xml.xml_free_parser(parser);
    EXPECT_EQ(xml.xml_open_file("<?xml version='1.0' encoding='X-NONE'?><a/>", WHOLE, 43), 0U);
    host::set_trace(0, "");
    EXPECT_EQ(file_text(trace), file_text(SXML_SOURCE_DIR "/tests/parser/expected/trace.txt"));
}

// What nobody handles goes to the default handler, token for token as Expat alone hands it out.
TEST_F(Handles, TheDefaultHandlerGetsEveryToken) {
    const std::string document =
        "<!DOCTYPE r [<!ENTITY e 'x&#38;y'><!ENTITY % p 'z'>\n<!ENTITY s SYSTEM 'u'><!-- c --> ]>"
        "<r k='&e;'>a&e;b</r>";
    std::string expected;
    XML_Parser expat = XML_ParserCreate(nullptr);
    XML_SetUserData(expat, &expected);
    XML_SetDefaultHandler(expat, [](void* lengths, const char*, int length) {
        *static_cast<std::string*>(lengths) += std::to_string(length) + " ";
    });
    XML_Parse(expat, document.data(), static_cast<int>(document.size()), 1);
    XML_ParserFree(expat);

    const std::string trace = folder / "trace";
    ASSERT_TRUE(host::set_trace(9, trace));
    xml.xml_free_parser(open(document, XMLOPT_DEFAULT | XMLOPT_PARSE_WHOLE));
    host::set_trace(0, "");
    const std::string text = file_text(trace);
    const std::string_view words = "default handler, data length ";
    std::string lengths;
    for (auto at = text.find(words); at != std::string::npos; at = text.find(words, at)) {
        at += words.size();
        lengths += text.substr(at, text.find('\n', at) - at) + " ";
    }
    EXPECT_EQ(lengths, expected);
}

// A released element is nobody's root or current element any more, and its number may be given out
// again to somebody else.
TEST_F(Handles, ReleasedElementsLeaveTheirParser) {
    const std::uint32_t built = xml.xml_open_file(nullptr, 0, 0);
    const std::uint32_t first = xml.xml_parser_new_root(built, "a");
    xml.xml_free_element(first);
    EXPECT_EQ(xml.xml_parser_root(built), 0U);
    const std::uint32_t second = xml.xml_parser_new_root(built, "b");
    EXPECT_STREQ(xml.xml_element_name(second), "b");
    EXPECT_EQ(xml.xml_element_parser(second), built);
    xml.xml_free_parser(built);

    const std::uint32_t parser = open("<a><r>1<s>", EVERYTHING);
    const std::uint32_t root = xml.xml_parser_root(parser);
    EXPECT_EQ(xml.SxmlParser_parse_record(parser), 1);
    EXPECT_STREQ(xml.xml_element_name(xml.xml_parser_current(parser)), "s");
    xml.xml_free_element(xml.xml_first_child(root));
    EXPECT_EQ(xml.xml_parser_current(parser), 0U);
    EXPECT_EQ(xml.xml_parser_root(parser), root);
    xml.xml_free_element(root);
    EXPECT_EQ(xml.xml_parser_root(parser), 0U);
    std::uint32_t stranger = 0;
    for (int i = 0; i < 1'000'000 && stranger != root; ++i) {
        xml.xml_free_element(stranger);
        stranger = xml.xml_add_child(0, "x");
    }
    ASSERT_EQ(stranger, root);
    EXPECT_EQ(xml.xml_element_parser(stranger), 0U);
    xml.xml_free_parser(parser);
    EXPECT_EQ(xml.xml_free_element(stranger), 1) << "released with a parser that it is not of";
}

TEST_F(Handles, ATreeReleasedUnderItsParserEndsTheParse) {
    const std::uint32_t parser = open("<a><r>1</r><r>2</r></a>", EVERYTHING);
    ASSERT_EQ(xml.SxmlParser_parse_record(parser), 1);
    xml.xml_free_element(xml.xml_parser_root(parser));
    xml.SxmlParser_parse_record(parser);
    EXPECT_EQ(file_error(), HOST_FILE_NO_MEMORY);
    xml.xml_free_parser(parser);
}

// Comments that a caller adds and comments that are read later stand in the order in which they
// came, in the text as in the document that is written.
TEST_F(Handles, AddedCommentsHideNoneThatIsRead) {
    const std::uint32_t parser = open("<a><r/></a><!--two--><!--three-->", EVERYTHING);
    EXPECT_EQ(xml.xml_add_top_comment(parser, "o"), 1);
    EXPECT_EQ(xml.xml_add_top_comment(parser, "ne"), 1);
    EXPECT_STREQ(xml.xml_top_comments(parser, nullptr), "one");
    for (int i = 0; i < 4; ++i) xml.SxmlParser_parse_record(parser);
    EXPECT_STREQ(xml.xml_top_comments(parser, nullptr), "one\ntwo\nthree");
    EXPECT_EQ(xml.xml_add_top_comment(parser, "four"), 1);
    std::uint64_t length = 0;
    EXPECT_STREQ(xml.xml_top_comments(parser, &length), "one\ntwo\nthree\nfour");
    EXPECT_EQ(length, 18U);
    const std::string out = folder / "out.xml";
    EXPECT_EQ(xml.xml_write_document(parser, out.c_str()), 1);
    EXPECT_NE(file_text(out).find("<!-- one -->\r\n<!-- two -->\r\n<!-- three -->\r\n"
                                  "<!-- four -->\r\n"),
              std::string::npos);
    xml.xml_free_parser(parser);
}

TEST_F(Handles, TurnsReparseDeferralOff) {
    deferral_calls = 0;
    xml.xml_free_parser(open("<a/>", EVERYTHING));
    EXPECT_EQ(deferral_calls, 1);
}

// The usage sample of the public header, on whole documents and on such as break off.
TEST_F(Handles, CProgramsReadRecordsDeclarationsAndElements) {
    const std::string out = folder / "out";
    const auto run = [&](const std::string& document) {
        file_with(document, "orders.xml");
        EXPECT_EQ(std::system(("cd '" + folder.string() + "' && '" C_PROGRAM "' '" + module_path() +
                               "' > '" + out + "' 2>&1")
                                  .c_str()),
                  0);
        return file_text(out);
    };
    const std::string start =
        "<!DOCTYPE orders [<!ELEMENT orders (order*)><!ELEMENT order (#PCDATA)>]>\n"
        "<orders><order>7</order>\n<order>8</order>";
    const std::string complaint = "the document cannot be read, or not to its end\n";
    const std::string two = "order 7\norder 8\n";
    const std::string models = "orders: type 6, 1 children\norder: type 3, 0 children\n";
    EXPECT_EQ(run(start + "</orders>\n"), two + models + two);
    EXPECT_EQ(run(start), two + complaint + models + two);
    EXPECT_EQ(run(start + "<order><x>9</x>").substr(0, two.size() + complaint.size()),
              two + complaint);
    EXPECT_EQ(run(start + "<order>9</oops>"), two + complaint);
    EXPECT_EQ(run("no document"), complaint);
}

// The example program, on a whole document and on one that is cut off.
TEST_F(Handles, AProgramSumsAField) {
    std::string document = "<?xml version='1.0'?>\n<orders>\n";
    for (int i = 1; i <= 2000; ++i)
        document += " <order><total>" + std::to_string(i) + ".25</total><id>7</id></order>\n";
    const std::string out = folder / "out";
    const auto run = [&](const std::string& bytes) {
        return std::system(("'" SUM_FIELD "' '" + module_path() + "' '" + file_with(bytes) +
                            "' total > '" + out + "' 2>&1")
                               .c_str());
    };
    EXPECT_EQ(run(document + "</orders>\n"), 0);
    EXPECT_EQ(file_text(out), "2000 records, sum of total: 2001500.00\n");
    EXPECT_NE(run(document + "<order><total>1"), 0);
    EXPECT_EQ(file_text(out),
              "2000 records, sum of total: 2001500.00\n"
              "sum_field: after record 2000: the document is not complete\n");
}

}  // namespace
