#include "tests/records/cobc_program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace layout_tests {

bool has_cobc() {
    return std::system("cobc --version > /dev/null 2>&1") == 0;
}

std::vector<std::string> run_cobc(const std::string& program, const std::string& name,
                                  const std::string& options) {
    const auto folder = std::filesystem::path(SXML_BUILD_DIR) / "tests" / ("probe_" + name);
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "probe.cob") << program;
    const std::string in_folder = "cd '" + folder.string() + "' && ";
    const std::string compile = in_folder + "cobc -x -free -w " + options + " probe.cob > log 2>&1";
    EXPECT_EQ(std::system(compile.c_str()), 0) << "see " << (folder / "log");
    EXPECT_EQ(std::system((in_folder + "./probe > out").c_str()), 0);
    std::ifstream out(folder / "out");
    std::vector<std::string> lines;
    for (std::string line; std::getline(out, line);) lines.push_back(line);
    return lines;
}

}  // namespace layout_tests
