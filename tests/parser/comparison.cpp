#include "tests/parser/comparison.h"

#include "tests/parser/parser_test.h"

namespace {

// What a parser holds at the end, which is then released.
Outcome finished(std::uint32_t parser) {
    const XmlApi& xml = api();
    Outcome outcome;
    outcome.file_error = file_error();
    if (outcome.file_error == HOST_FILE_XML) outcome.expat_error = *host_error_subcode();
    if (!parser) return outcome;
    const std::uint32_t root = xml.xml_parser_root(parser);
    outcome.tree = canonical_tree(root, outcome.expat_error ? xml.xml_parser_current(parser) : 0);
    if (root && outcome.tree.size() < 1'000'000) outcome.details = describe(root);
    for (std::uint32_t i = 0; i < xml.xml_pi_count(parser); ++i)
        outcome.details +=
            std::string("?") + xml.xml_pi_target(parser, i) + " " + xml.xml_pi_data(parser, i);
    outcome.details += "|" + text_or_null(xml.xml_top_comments(parser, nullptr)) + "|" +
                       text_or_null(xml.xml_parser_doctype_text(parser));
    xml.xml_free_parser(parser);
    return outcome;
}

std::string compare(const std::string& how, const Outcome& outcome, const std::string& tree,
                    int error) {
    std::string found;
    if (outcome.tree != tree) found += how + ": " + outcome.tree + "\n instead of " + tree + "\n";
    if (outcome.expat_error != error ||
        outcome.file_error != (error ? HOST_FILE_XML : HOST_FILE_END))
        found += how + ": error " + std::to_string(outcome.file_error) + "/" +
                 std::to_string(outcome.expat_error) + " instead of " + std::to_string(error) +
                 "\n";
    return found;
}

}  // namespace

Outcome parse_whole(const char* source, std::size_t length) {
    return finished(api().xml_open_file(source, WHOLE, length));
}

Outcome parse_by_record(const char* source, std::size_t length) {
    const XmlApi& xml = api();
    const std::uint32_t parser = xml.xml_open_file(source, EVERYTHING, length);
    if (!parser) return finished(parser);
    std::string trouble;
    std::uint32_t last = 0;
    while (file_error() == HOST_FILE_OK && xml.SxmlParser_parse_record(parser)) {
        last = last ? xml.xml_next_sibling(last) : xml.xml_first_child(xml.xml_parser_root(parser));
        if (!last || xml.xml_next_sibling(last)) trouble = "not one record at a time";
    }
    Outcome outcome = finished(parser);
    outcome.tree += trouble;
    return outcome;
}

std::string differences(const char* source, std::size_t length, const BareResult& bare) {
    const std::string whole =
        compare("whole", parse_whole(source, length), bare.error ? "" : bare.tree, bare.error);
    // Reading by record stops where the document element ends.
    return whole + compare("by record", parse_by_record(source, length), bare.tree,
                           bare.after_root ? 0 : bare.error);
}
