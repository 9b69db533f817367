// COBOL programs, compiled and run in an empty folder.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/command/command_run.h"

namespace fs = std::filesystem;

inline const std::string PROGRAMS = SXML_SOURCE_DIR "/tests/gnucobol/";
inline const std::string SAMPLES = SXML_SOURCE_DIR "/examples/cobol/";

class CobolTest : public CommandTest {
  protected:
    void TearDown() override {
        for (const std::string& name : variables_) unsetenv(name.c_str());
        CommandTest::TearDown();
    }

    // Sets an environment variable until the test ends.
    void set(const std::string& name, const std::string& value) {
        setenv(name.c_str(), value.c_str(), 1);
        variables_.push_back(name);
    }

    static void compile_for_xml(const std::string& source, const std::string& program,
                                std::vector<std::string> more = {}) {
        std::vector<std::string> words = {"cob", source, "-o", program, "-I", SAMPLES};
        words.insert(words.end(), more.begin(), more.end());
        const Outcome outcome = sxml(words);
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
    }

    static void compile_plain(const std::string& source, const std::string& program,
                              std::vector<std::string> more = {}) {
        std::vector<std::string> words = {"cobc", "-x", source, "-o", program, "-I", SAMPLES};
        words.insert(words.end(), more.begin(), more.end());
        const Outcome outcome = run(words);
        ASSERT_EQ(outcome.status, 0) << outcome.err;
    }

    // Debian's libcob 3.2 begins each program with this line.
    static void remove_version_warnings(std::string& text) {
        const std::string warning = "Warning: program compiled against libxml ";
        for (std::size_t at = text.find(warning); at < text.size(); at = text.find(warning)) {
            text.erase(at, text.find('\n', at) + 1 - at);
        }
    }

    static Outcome run_program(const std::vector<std::string>& words) {
        Outcome outcome = run(words);
        remove_version_warnings(outcome.err);
        return outcome;
    }

    // The files of these names are NAME.suffix from now on.
    void assign(const std::vector<std::string>& names, const std::string& suffix) {
        for (const std::string& name : names) set("DD_" + name, name + suffix);
    }

    static std::string well_formed(const std::string& document) {
        const Outcome outcome = run({"xmllint", "--noout", "--valid", document});
        return outcome.err;
    }

    // Compiles a program of the tests plainly and for XML, and runs it either way with files of
    // these names. What it displays must be the same; that is the result.
    std::string same_output(const std::string& program, const std::vector<std::string>& names,
                            const std::vector<std::string>& more_sources = {}) {
        const std::string source = PROGRAMS + program + ".cbl";
        compile_plain(source, program + ".plain", more_sources);
        compile_for_xml(source, program, more_sources);
        set("SXML_PATH", PROGRAMS);
        assign(names, ".dat");
        std::string plain = run_program({"./" + program + ".plain"}).out;
        assign(names, ".xml");
        const Outcome xml = run_program({"./" + program});
        EXPECT_EQ(xml.out, plain);
        errors = xml.err;
        return plain;
    }

    std::string errors;  // messages of the last run with XML

  private:
    std::vector<std::string> variables_;
};
