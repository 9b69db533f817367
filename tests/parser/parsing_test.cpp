// Every sample document from every side: whole and record by record, with input cut anywhere, from
// a file and from memory. The outcome is always that of Expat alone.
#include "tests/parser/comparison.h"
#include "tests/parser/documents.h"
#include "tests/parser/parser_test.h"

namespace {

constexpr std::size_t READ_SIZES[] = {1, 2, 3, 7, 64, 32000};

class Parsing : public ParserTest {
  protected:
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
};

TEST_F(Parsing, GivesWhatExpatGivesHoweverTheInputIsCut) {
    for (const SampleDocument& document : sample_documents()) {
        SCOPED_TRACE(document.name);
        const BareResult bare = parse_bare(document.bytes);
        const std::string path = file_with(document.bytes);
        std::string details;
        for (const std::size_t size : READ_SIZES) {
            SCOPED_TRACE("reads of " + std::to_string(size));
            host::limit_read_size(size);
            EXPECT_EQ(differences(path.c_str(), 0, bare), "");
            const Outcome again = parse_whole(path.c_str(), 0);
            if (size == READ_SIZES[0]) details = again.details;
            EXPECT_EQ(again.details, details);
        }
        if (!document.bytes.starts_with("<?xml ")) continue;
        EXPECT_EQ(differences(document.bytes.c_str(), document.bytes.size(), bare), "");
    }
}

TEST_F(Parsing, GivesTheSameRecordsWhenTheyAreReleased) {
    for (const SampleDocument& document : sample_documents()) {
        SCOPED_TRACE(document.name);
        const std::string path = file_with(document.bytes);
        const std::uint32_t parser = xml.xml_open_file(path.c_str(), WHOLE, 0);
        if (!parser) continue;
        std::string expected;
        if (xml.xml_parser_root(parser)) {
            for (const std::uint32_t record : children_of(xml.xml_parser_root(parser)))
                expected += canonical_tree(record);
        }
        xml.xml_free_parser(parser);
        for (const std::size_t size : READ_SIZES) {
            host::limit_read_size(size);
            EXPECT_EQ(released_records(path.c_str()), expected) << size;
        }
    }
}

}  // namespace
