// Every sample document from every side: whole and record by record, with input cut anywhere, from
// a file and from memory. The outcome is always what Expat alone makes of the document.
#include "tests/parser/bare_expat.h"
#include "tests/parser/documents.h"
#include "tests/parser/parser_test.h"

namespace {

constexpr std::size_t READ_SIZES[] = {1, 2, 3, 7, 64, 32000};

// How a parse of the module went.
struct Outcome {
    std::string tree;     // canonical
    std::string details;  // with numbers, encodings, comments; without its parser's document parts
    int file_error = 0;
    int expat_error = 0;
};

class Parsing : public ParserTest {
  protected:
    Outcome finished(std::uint32_t parser) const {
        Outcome outcome;
        outcome.file_error = file_error();
        if (outcome.file_error == HOST_FILE_XML) {
            outcome.expat_error = *host_error_subcode();
            EXPECT_NE(std::string(*host_error_text()), "");
        }
        if (!parser) {
            EXPECT_EQ(parser_error(), XMLERR_PARSE);
            return outcome;
        }
        const std::uint32_t root = parser ? xml.xml_parser_root(parser) : 0;
        outcome.tree = canonical_tree(root);
        if (root) outcome.details = describe(root);
        for (std::uint32_t i = 0; i < xml.xml_pi_count(parser); ++i)
            outcome.details +=
                std::string("?") + xml.xml_pi_target(parser, i) + " " + xml.xml_pi_data(parser, i);
        outcome.details += "|" + text_or_null(xml.xml_top_comments(parser, nullptr)) + "|" +
                           text_or_null(xml.xml_parser_doctype_text(parser));
        xml.xml_free_parser(parser);
        return outcome;
    }

    Outcome whole(const char* source, std::size_t length = 0) const {
        return finished(xml.xml_open_file(source, WHOLE, length));
    }

    // Leaves every record in the tree.
    Outcome by_record(const char* source, std::size_t length = 0) const {
        const std::uint32_t parser = xml.xml_open_file(source, EVERYTHING, length);
        const std::uint32_t root = parser ? xml.xml_parser_root(parser) : 0;
        std::uint32_t last = 0;
        while (parser && file_error() == HOST_FILE_OK && xml.SxmlParser_parse_record(parser)) {
            const std::uint32_t record =
                last ? xml.xml_next_sibling(last) : xml.xml_first_child(root);
            EXPECT_NE(record, 0U);
            EXPECT_EQ(xml.xml_next_sibling(record), 0U) << "two records at once";
            last = record;
        }
        return finished(parser);
    }

    // The records one by one, each released before the next is read.
    std::string released_records(const char* source) const {
        std::string all;
        const std::uint32_t parser = xml.xml_open_file(source, EVERYTHING, 0);
        while (parser && file_error() == HOST_FILE_OK && xml.SxmlParser_parse_record(parser)) {
            const std::uint32_t record = xml.xml_first_child(xml.xml_parser_root(parser));
            all += canonical_tree(record);
            xml.xml_free_element(record);
        }
        if (parser) xml.xml_free_parser(parser);
        return all;
    }

    void compare_records(const Outcome& outcome, const BareResult& bare) const {
        EXPECT_EQ(outcome.tree, bare.tree);
        EXPECT_EQ(outcome.expat_error, bare.after_root ? 0 : bare.error);
        EXPECT_EQ(outcome.file_error, outcome.expat_error ? HOST_FILE_XML : HOST_FILE_END);
    }

    void compare_whole(const Outcome& outcome, const BareResult& bare) const {
        EXPECT_EQ(outcome.tree, bare.error ? "" : bare.tree);
        EXPECT_EQ(outcome.expat_error, bare.error);
        EXPECT_EQ(outcome.file_error, bare.error ? HOST_FILE_XML : HOST_FILE_END);
    }
};

TEST_F(Parsing, GivesWhatExpatGivesHoweverTheInputIsCut) {
    for (const SampleDocument& document : sample_documents()) {
        SCOPED_TRACE(document.name);
        const BareResult bare = parse_bare(document.bytes, document.latin1);
        const std::string path = file_with(document.bytes);
        Outcome first;
        for (const std::size_t size : READ_SIZES) {
            SCOPED_TRACE("reads of " + std::to_string(size));
            host::limit_read_size(size);
            const Outcome all = whole(path.c_str());
            compare_whole(all, bare);
            // Without a start tag there is nothing to go on with after an error.
            const Outcome records = by_record(path.c_str());
            if (bare.tree.empty())
                compare_whole(records, bare);
            else
                compare_records(records, bare);
            if (size == 1) first = all;
            EXPECT_EQ(all.details, first.details);
        }
        if (!document.bytes.starts_with("<?xml ")) continue;
        compare_whole(whole(document.bytes.c_str(), document.bytes.size()), bare);
        if (!bare.tree.empty())
            compare_records(by_record(document.bytes.c_str(), document.bytes.size()), bare);
    }
}

TEST_F(Parsing, GivesTheSameRecordsWhenTheyAreReleased) {
    for (const SampleDocument& document : sample_documents()) {
        SCOPED_TRACE(document.name);
        const std::string path = file_with(document.bytes);
        const std::uint32_t parser = xml.xml_open_file(path.c_str(), WHOLE, 0);
        if (!parser || !xml.xml_parser_root(parser)) {
            if (parser) xml.xml_free_parser(parser);
            continue;
        }
        std::string expected;
        for (const std::uint32_t record : children_of(xml.xml_parser_root(parser)))
            expected += canonical_tree(record);
        xml.xml_free_parser(parser);
        for (const std::size_t size : READ_SIZES) {
            host::limit_read_size(size);
            EXPECT_EQ(released_records(path.c_str()), expected) << size;
        }
    }
}

}  // namespace
