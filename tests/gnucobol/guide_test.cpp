// Runs what docs/cobol.md tells the reader to do.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "tests/gnucobol/cobol_test.h"

namespace {

// The guide's parts between lines of three backquotes: what stands after the opening ones, and the
// lines.
struct Block {
    std::string label;
    std::string text;
};

std::vector<Block> blocks_of(const std::string& guide) {
    std::vector<Block> blocks;
    bool is_inside = false;
    std::istringstream lines(guide);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("```")) {
            is_inside = !is_inside;
            if (is_inside) blocks.push_back({line.substr(3), ""});
        } else if (is_inside) {
            blocks.back().text += line + "\n";
        }
    }
    return blocks;
}

// `cobol FILE` and `xml FILE` give files; `sh` is run, and `text` after it is what it prints.
TEST_F(CobolTest, TheGuideDoesWhatItSays) {
    std::string script = "PATH=" SXML_BUILD_DIR "/bin:$PATH\nset -e\n";
    std::string expected;
    for (const Block& block : blocks_of(read_file(SXML_SOURCE_DIR "/docs/cobol.md"))) {
        const std::size_t blank = block.label.find(' ');
        if (blank != std::string::npos) write_file(block.label.substr(blank + 1), block.text);
        if (block.label == "text") expected += block.text;
        if (block.label != "sh") continue;
        std::istringstream lines(block.text);
        for (std::string line; std::getline(lines, line);) {
            script += line + "\n";
        }
    }
    ASSERT_NE(expected, "");
    Outcome outcome = run_program({"bash", "-c", script});
    remove_version_warnings(outcome.out);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, expected);
    EXPECT_EQ(outcome.err, "");
}

}  // namespace
