// Exhausted memory: every allocation of an operation fails in turn. Operations report it, leave
// nothing behind and can be tried again.
#include <functional>

#include "host/runtime/memory/memory_report.h"
#include "tests/parser/bare_expat.h"
#include "tests/parser/parser_test.h"

namespace {

const std::string DOCUMENT =
    "<?xml version='1.0' encoding='ISO-8859-1'?><!-- top -->\n"
    "<!DOCTYPE list [<!ELEMENT list (row*)><!ATTLIST row k CDATA 'v'>"
    "<!ENTITY r '<row>e</row>'>]><?app data?>\n"
    "<list><!-- c --><row name='\xE9'>one</row><row><long-name-of-an-element>" +
    std::string(500, 't') + "</long-name-of-an-element></row><!-- d -->&r;&r;<row/></list>";

class Sweep : public ParserTest {
  protected:
    // Runs `operation` with its n-th allocation failing, for n = 1, 2, ... until none fails.
    void sweep(const std::function<void()>& operation) const {
        for (std::uint64_t n = 1;; ++n) {
            ASSERT_LT(n, 5000U);
            SCOPED_TRACE("allocation " + std::to_string(n));
            host::fail_allocation(n);
            operation();
            const bool failed = host::allocation_failed();
            host::fail_allocation(0);
            if (!failed) {
                EXPECT_GT(n, 1U) << "nothing was allocated";
                return;
            }
        }
    }

    // Both ways in which a failed open tells that memory ran out.
    static void expect_open_failed() {
        if (parser_error() == XMLERR_NO_MEMORY) {
            EXPECT_TRUE(file_error() == HOST_FILE_NO_MEMORY || file_error() == HOST_FILE_OK);
            return;
        }
        EXPECT_EQ(parser_error(), XMLERR_PARSE);
        if (file_error() == HOST_FILE_XML)
            EXPECT_EQ(*host_error_subcode(), 1) << "Expat's own code for exhausted memory";
        else
            EXPECT_EQ(file_error(), HOST_FILE_NO_MEMORY);
    }
};

TEST_F(Sweep, OpeningGivesTheWholeTreeOrFails) {
    const std::string path = file_with(DOCUMENT);
    for (const char* source : {path.c_str(), DOCUMENT.c_str()}) {
        const auto open = [&] {
            return xml.xml_open_file(source, WHOLE | XMLOPT_ELEMENT_DECLS, DOCUMENT.size());
        };
        const std::uint32_t good = open();
        const std::string expected = canonical_tree(xml.xml_parser_root(good));
        xml.xml_free_parser(good);
        sweep([&] {
            const std::uint32_t parser = open();
            if (!parser) return expect_open_failed();
            // Losing a comment, an instruction or a declaration is not an error; data is.
            EXPECT_EQ(canonical_tree(xml.xml_parser_root(parser)), expected);
            xml.xml_free_parser(parser);
        });
    }
}

TEST_F(Sweep, RecordsAreWholeOrTheErrorIsTold) {
    const std::string path = file_with(DOCUMENT);
    sweep([&] {
        const std::uint32_t parser = xml.xml_open_file(path.c_str(), EVERYTHING, 0);
        if (!parser) return expect_open_failed();
        std::string records;
        while (xml.SxmlParser_parse_record(parser) && file_error() == HOST_FILE_OK) {
            const std::uint32_t record = xml.xml_first_child(xml.xml_parser_root(parser));
            records += canonical_tree(record);
            xml.xml_free_element(record);
        }
        const std::int16_t ended = file_error();
        if (ended == HOST_FILE_END)
            EXPECT_EQ(records, "row name:\xE9 k:v=one()row k:v(long-name-of-an-element=" +
                                   std::string(500, 't') + "())row k:v=e()row k:v=e()row k:v()");
        else
            EXPECT_TRUE(ended == HOST_FILE_NO_MEMORY || ended == HOST_FILE_XML) << ended;
        // Going on repeats the outcome.
        EXPECT_EQ(xml.SxmlParser_parse_record(parser), 0);
        EXPECT_EQ(file_error(), ended);
        xml.xml_free_parser(parser);
    });
}

TEST_F(Sweep, EditingLeavesTheDocumentAsItWas) {
    const std::uint32_t parser = open(DOCUMENT, WHOLE);
    const std::string longer(200, 'x');
    const auto all = [&] {
        std::string text = text_or_null(xml.xml_parser_version(parser)) + "|" +
                           text_or_null(xml.xml_parser_encoding(parser)) + "|" +
                           text_or_null(xml.xml_parser_doctype_text(parser)) + "|" +
                           text_or_null(xml.xml_top_comments(parser, nullptr));
        for (std::uint32_t i = 0; i < xml.xml_pi_count(parser); ++i)
            text += std::string("?") + xml.xml_pi_target(parser, i) + xml.xml_pi_data(parser, i);
        return text;
    };
    const auto edit = [&](const std::function<void()>& change) {
        const std::string before = all();
        sweep([&] {
            change();
            if (!host::allocation_failed()) return;
            EXPECT_EQ(parser_error(), XMLERR_NO_MEMORY);
            EXPECT_EQ(all(), before);
        });
        EXPECT_NE(all(), before);
    };
    edit([&] { xml.xml_set_parser_version(parser, longer.c_str()); });
    edit([&] { xml.xml_set_parser_encoding(parser, longer.c_str()); });
    edit([&] { xml.xml_set_parser_doctype_text(parser, longer.c_str()); });
    edit([&] { xml.xml_add_top_comment(parser, longer.c_str()); });
    xml.xml_clear_top_comments(parser);
    edit([&] { xml.xml_add_top_comment(parser, longer.c_str()); });
    edit([&] { xml.xml_insert_pi(parser, 0, longer.c_str(), longer.c_str()); });
    xml.xml_free_parser(parser);

    const std::uint32_t built = xml.xml_open_file(nullptr, 0, 0);
    sweep([&] {
        const bool done = xml.xml_insert_pi(built, 7, "t", "d") != 0;
        EXPECT_EQ(xml.xml_pi_count(built), done ? 1U : 0U);
    });
    sweep([&] {
        const bool made = xml.xml_parser_new_root(built, longer.c_str()) != 0;
        EXPECT_NE(made, host::allocation_failed());
    });
    xml.xml_free_parser(built);
}

TEST_F(Sweep, WritingWritesEverythingOrNothing) {
    const std::uint32_t parser = open(DOCUMENT, WHOLE);
    const std::string path = scratch_.file("out.xml");
    ASSERT_EQ(xml.xml_write_document(parser, path.c_str()), 1);
    const std::string expected = file_text(path);
    sweep([&] {
        std::filesystem::remove(path);
        if (xml.xml_write_document(parser, path.c_str())) {
            EXPECT_EQ(file_text(path), expected);
            return;
        }
        EXPECT_TRUE(parser_error() == XMLERR_NO_MEMORY || parser_error() == XMLERR_OPEN_FILE);
        EXPECT_FALSE(std::filesystem::exists(path));
    });
    xml.xml_free_parser(parser);
}

}  // namespace
