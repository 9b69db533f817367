// What other programs see and give: a function of Expat that the module asks for, C programs, a
// pipe.
#include <dlfcn.h>
#include <expat.h>
#include <unistd.h>

#include <ctime>

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

class Programs : public ParserTest {};

TEST_F(Programs, TurnsReparseDeferralOff) {
    deferral_calls = 0;
    xml.xml_free_parser(open("<a/>", EVERYTHING));
    EXPECT_EQ(deferral_calls, 1);
}

// The usage sample of the public header, on whole documents and on such as break off.
TEST_F(Programs, CProgramsReadRecordsDeclarationsAndElements) {
    const std::string out = scratch_.file("out");
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
TEST_F(Programs, AProgramSumsAField) {
    std::string document = "<?xml version='1.0'?>\n<orders>\n";
    for (int i = 1; i <= 2000; ++i)
        document += " <order><total>" + std::to_string(i) + ".25</total><id>7</id></order>\n";
    const std::string out = scratch_.file("out");
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

// One text of a gigabyte, which no file needs to hold: it comes through a pipe.
TEST_F(Programs, ReadsAGigabyteOfText) {
    if (std::getenv("SXML_FULL_SIZES") == nullptr)
        GTEST_SKIP() << "runs when SXML_FULL_SIZES is set";
    const std::string pipe = scratch_.file("pipe");
    const std::string maker = "mkfifo '" + pipe +
                              "' && (printf '<a><r>'; head -c 1073741824 /dev/zero | tr '\\0' x; "
                              "printf '</r></a>') > '" +
                              pipe + "' &";
    ASSERT_EQ(std::system(maker.c_str()), 0);
    while (!std::filesystem::exists(pipe)) usleep(1000);
    const std::clock_t start = std::clock();
    const std::uint32_t parser = xml.xml_open_file(pipe.c_str(), EVERYTHING, 0);
    ASSERT_EQ(xml.SxmlParser_parse_record(parser), 1);
    const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    std::uint64_t length = 0;
    xml.xml_element_value(xml.xml_first_child(xml.xml_parser_root(parser)), &length);
    EXPECT_EQ(length, 1073741824U);
    std::printf("text of 1 GiB: %.2f s\n", taken);
    xml.xml_free_parser(parser);
}

}  // namespace
