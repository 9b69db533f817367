// Runs programs the way a shell does, and gives tests a folder to work in.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

struct Outcome {
    int status;  // exit status; 128 + n when ended by signal n
    std::string out;
    std::string err;
};

// Runs a program found on PATH. `input` is given to it as standard input. `output` names a file or
// device that its standard output goes to; empty: it is caught.
Outcome run(const std::vector<std::string>& words, const std::string& input = "",
            const std::string& output = "");

// The program under test: the one of this build, or what SXML_COMMAND names.
std::string command_under_test();

// Each test has an empty folder, which is the current one while the test runs, and a fixed date.
class CommandTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // The command with these words after its name.
    static Outcome sxml(std::vector<std::string> words, const std::string& input = "",
                        const std::string& output = "");
    // Names of all files in the folder, hidden ones included, in order.
    static std::vector<std::string> files();

    static const std::string EXAMPLES;  // folder of the sample programs

  private:
    std::unique_ptr<ScratchFolder> folder_;
};
