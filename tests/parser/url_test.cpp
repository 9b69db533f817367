// Documents fetched from a web server, which runs on this machine for the time of the test.
#include <csignal>
#include <cstdio>

#include "tests/parser/bare_expat.h"
#include "tests/parser/parser_test.h"

namespace {

class Urls : public ParserTest {
  protected:
    void SetUp() override {
        ParserTest::SetUp();
        // Local copies go where the test can see them.
        setenv("TMPDIR", folder.c_str(), 1);
        const std::string command =
            "echo $$; exec python3 '" SXML_SOURCE_DIR "/tests/parser/serve.py'";
        server = popen(command.c_str(), "r");
        ASSERT_NE(server, nullptr);
        ASSERT_EQ(std::fscanf(server, "%d %d", &process, &port), 2);
    }
    void TearDown() override {
        if (process > 0) kill(process, SIGTERM);
        if (server) pclose(server);
        unsetenv("TMPDIR");
        ParserTest::TearDown();
    }

    std::string url(const std::string& path, int at_port) const {
        return "HTTP://127.0.0.1:" + std::to_string(at_port) + path;
    }
    bool no_copy_is_left() const { return std::filesystem::is_empty(folder); }

    FILE* server = nullptr;
    int process = 0;
    int port = 0;
};

TEST_F(Urls, AreReadAndTheLocalCopyGoes) {
    const std::string good = url("/good.xml", port);
    const std::uint32_t whole = xml.xml_open_file(good.c_str(), WHOLE, 0);
    ASSERT_NE(whole, 0U);
    EXPECT_TRUE(no_copy_is_left());
    EXPECT_EQ(canonical_tree(xml.xml_parser_root(whole)), "a(r=1()r=2())");
    xml.xml_free_parser(whole);

    const std::uint32_t parser = xml.xml_open_file(good.c_str(), EVERYTHING, 0);
    ASSERT_NE(parser, 0U);
    EXPECT_FALSE(no_copy_is_left()) << "the copy is where this test does not look";
    EXPECT_EQ(xml.SxmlParser_parse_record(parser), 1);
    xml.xml_free_parser(parser);
    EXPECT_TRUE(no_copy_is_left());
}

TEST_F(Urls, ThatCannotBeHadWholeAreRefused) {
    for (const std::string& bad :
         {url("/missing.xml", port), url("/short.xml", port), url("/good.xml", 1)}) {
        EXPECT_EQ(xml.xml_open_file(bad.c_str(), WHOLE, 0), 0U) << bad;
        EXPECT_EQ(parser_error(), XMLERR_URL) << bad;
        EXPECT_TRUE(no_copy_is_left()) << bad;
    }
}

}  // namespace
