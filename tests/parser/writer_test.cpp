// The document writer. Whole files are compared with expected ones, xmllint judges
// well-formedness, and what was written reads back as the same document.
#include "host/files.h"
#include "tests/parser/bare_expat.h"
#include "tests/parser/documents.h"
#include "tests/parser/parser_test.h"

namespace {

class Writer : public ParserTest {
  protected:
    // Writes a document; in the text given back the file's name, the version label and the date
    // are replaced by words.
    std::string written(std::uint32_t parser) const {
        EXPECT_EQ(xml.xml_write_document(parser, path.c_str()), 1);
        std::string text = file_text(path);
        char day[11];
        const int date = host_date();
        std::snprintf(day, sizeof day, "%04u/%02u/%02u", unsigned(date) / 10000 % 10000,
                      unsigned(date) / 100 % 100, unsigned(date) % 100);
        replace(text, path, "FILE");
        replace(text, std::string(" v") + SXML_VERSION_LABEL + " on ", " vLABEL on ");
        replace(text, day, "DATE");
        return text;
    }

    static void replace(std::string& text, const std::string& what, const std::string& by) {
        const auto at = text.find(what);
        ASSERT_NE(at, std::string::npos) << what << " is not in " << text;
        text.replace(at, what.size(), by);
    }

    void expect_well_formed() const {
        const std::string command = "xmllint --noout --nonet '" + path + "' 2>&1";
        EXPECT_TRUE(is_judged_well(command)) << file_text(path);
    }

    // Tree, comments and instructions of a document.
    std::string shown(std::uint32_t parser) const {
        std::string all = canonical_tree(xml.xml_parser_root(parser));
        all += "|" + text_or_null(xml.xml_top_comments(parser, nullptr));
        for (std::uint32_t i = 0; i < xml.xml_pi_count(parser); ++i)
            all +=
                std::string("?") + xml.xml_pi_target(parser, i) + " " + xml.xml_pi_data(parser, i);
        return all;
    }

    // The tree of a document, its texts in UTF-8 whatever it is stored in.
    std::string tree_of(std::uint32_t parser) const {
        std::string tree = canonical_tree(xml.xml_parser_root(parser));
        const char* name = xml.xml_parser_encoding(parser);
        if (!name || strcasecmp(name, "iso-8859-1") != 0) return tree;
        std::string utf8;
        for (const char c : tree) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte >= 0x80) utf8 += static_cast<char>(0xC0 | byte >> 6);
            utf8 += static_cast<char>(byte >= 0x80 ? 0x80 | (byte & 0x3F) : byte);
        }
        return utf8;
    }

    std::string path;
    void SetUp() override {
        ParserTest::SetUp();
        path = scratch_.file("out.xml");
    }
};

TEST_F(Writer, WritesWhatTheExpectedFilesShow) {
    const auto expect = [&](std::uint32_t parser, const std::string& file) {
        SCOPED_TRACE(file);
        EXPECT_EQ(written(parser), file_text(SXML_SOURCE_DIR "/tests/parser/expected/" + file));
        if (xml.xml_parser_root(parser)) expect_well_formed();
        xml.xml_free_parser(parser);
    };
    expect(xml.xml_open_file(nullptr, 0, 0), "empty.xml");
    expect(open("<a><b>1</b></a>", WHOLE), "undeclared.xml");
    expect(open("<?xml version='1.0' encoding='UTF-8'?><?app x=\"1\"?><!-- note -->"
                "<!DOCTYPE order SYSTEM 'order.dtd'><order/><!-- two\nlines -->",
                WHOLE),
           "system.xml");
    expect(open("<!DOCTYPE order PUBLIC '-//x' 'order.dtd'><order><?in side?><!-- c --></order>",
                WHOLE),
           "public.xml");
    expect(
        open("<!DOCTYPE o PUBLIC 'p' 's' [<!ENTITY e 'E'>\n<!ATTLIST o k CDATA '&e;'>]><o>&e;</o>",
             WHOLE),
        "internal.xml");

    const std::uint32_t built = xml.xml_open_file(nullptr, 0, 0);
    const std::uint32_t root = xml.xml_parser_new_root(built, "list");
    xml.xml_add_attribute(xml.xml_add_child(root, "row"), "k", "<&>");
    xml.xml_append_element_value(xml.xml_add_child(root, "row"), " a\tb ", -1, 2);
    xml.xml_set_parser_version(built, "1.0");
    xml.xml_set_parser_encoding(built, "ISO-8859-1");
    xml.xml_set_parser_standalone(built, 1);
    xml.xml_insert_pi(built, 0, "second", "2");
    xml.xml_insert_pi(built, 0, "first", "1");
    xml.xml_add_top_comment(built, "one ");
    xml.xml_add_top_comment(built, "comment");
    expect(built, "built.xml");
}

TEST_F(Writer, WhatIsWrittenReadsBackTheSame) {
    int compared = 0;
    for (const SampleDocument& document : sample_documents()) {
        SCOPED_TRACE(document.name);
        const BareResult bare = parse_bare(document.bytes);
        // The writer trims attributes, and knows nothing of elements that were never closed.
        if (bare.error || !bare.after_root || document.name == "line_ends") continue;
        const std::uint32_t parser = open(document.bytes, WHOLE);
        ASSERT_NE(parser, 0U);
        written(parser);
        expect_well_formed();
        const std::uint32_t again = xml.xml_open_file(path.c_str(), WHOLE, 0);
        ASSERT_NE(again, 0U) << *host_error_text() << file_text(path);
        EXPECT_EQ(shown(again), shown(parser));
        const std::string second = written(again);
        EXPECT_EQ(second.find("generated by"), second.rfind("generated by")) << "banners pile up";
        xml.xml_free_parser(again);
        xml.xml_free_parser(parser);
        ++compared;
    }
    EXPECT_GT(compared, 40);
}

// In which encoding a document is declared, and that its texts are in it.
TEST_F(Writer, DeclaresTheEncodingThatTheTextsAreIn) {
    const std::string accents = "\xC3\xA9\xC3\xBC";
    const auto document = [](const std::string& name, const std::string& text) {
        return "<?xml version='1.0' encoding='" + name + "'?><!--" + text + "--><?p " + text +
               "?><!DOCTYPE a [<!--" + text + "-->]><a k='" + text + "'><!--" + text + "--><b>" +
               text + "</b></a>";
    };
    const std::string latin1 = document("iso-8859-1", "\xE9\xFC");
    const std::string ascii = "<?xml version='1.0' encoding='us-ascii'?><a>&#233;&#252;</a>";
    const struct {
        const char* what;
        std::string bytes;
        const char* set_name;  // null: none
        const char* declared;
    } cases[] = {
        {"kept", document("UTF-8", accents), nullptr, "UTF-8"},
        {"kept", latin1, nullptr, "iso-8859-1"},
        {"16 bits", utf16(document("UTF-16", accents), true, true), nullptr, "UTF-8"},
        {"16 bits", utf16(document("UTF-16LE", accents), false, false), nullptr, "UTF-8"},
        {"plain ASCII", document("us-ascii", "e"), nullptr, "us-ascii"},
        {"not ASCII", ascii, nullptr, "UTF-8"},
        {"set", document("UTF-8", "e"), "ISO-8859-1", "ISO-8859-1"},
        {"set, other texts", document("UTF-8", accents), "ISO-8859-1", "UTF-8"},
        {"set, other texts", latin1, "UTF-8", "ISO-8859-1"},
        {"set, 16 bits", document("UTF-8", "e"), "UTF-16", "UTF-8"},
    };
    for (const auto& entry : cases) {
        SCOPED_TRACE(std::string(entry.what) + ": " + entry.declared);
        const std::uint32_t parser = open(entry.bytes, WHOLE);
        ASSERT_NE(parser, 0U);
        const std::string tree = tree_of(parser);
        if (entry.set_name) xml.xml_set_parser_encoding(parser, entry.set_name);
        EXPECT_NE(written(parser).find(" encoding=\"" + std::string(entry.declared) + "\""),
                  std::string::npos);
        expect_well_formed();
        const std::uint32_t again = xml.xml_open_file(path.c_str(), WHOLE, 0);
        ASSERT_NE(again, 0U);
        EXPECT_EQ(tree_of(again), tree);
        const char* data = xml.xml_pi_data(again, 0);
        EXPECT_TRUE(!data || data == accents || std::string(data) == "e") << data;
        xml.xml_free_parser(again);
        xml.xml_free_parser(parser);
    }
}

}  // namespace
