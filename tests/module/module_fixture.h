// The module behind its dispatch table, on the embedded host, with the host functions handed over
// by name replaced by small ones that a test can steer and ask.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/errors.h"
#include "host/runtime/module.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/xfd_builder.h"

// One read: its result, the file error code, the record.
struct ReadResult {
    int result;
    int code;  // file error code
    std::string record;
    bool operator==(const ReadResult&) const = default;
};

void PrintTo(const ReadResult& result, std::ostream* out);

class ModuleTest : public ::testing::Test {
  protected:
    // Encoding support is granted or refused once, when the process loads the module.
    static bool encodings_granted;

    void SetUp() override;
    void TearDown() override;  // fails when blocks are live or descriptions not given back

    const host::Module& module();
    std::string path(std::string_view file) const { return folder_->file(file); }
    void set(const std::string& setting, const char* value);  // null unsets
    void unset_all();
    // What is found under the name of a data file.
    void describe(const std::string& name, Xfd* xfd);
    // The names under which descriptions were looked for.
    static const std::vector<std::string>& lookups();
    // Evaluates the conditions of compiled descriptions, until the test is over.
    static void use_compiled_conditions();
    // The most bytes that were live since the test's start when a condition was tested: on reading,
    // the whole record is in memory then.
    static std::uint64_t most_live_bytes();
    static void forget_live_bytes();
    // Makes the next lookups find nothing.
    static void refuse_lookups(int count);

    // Opens for output, writes the records, closes. Result: the document.
    std::string document(Xfd* xfd, const std::vector<std::string>& records);
    // The same with no description of the data, and without declaration, banner and end tag.
    std::string elements(Xfd* xfd, const std::vector<std::string>& records);

    // Reads a document to its end: each record into a buffer of `size` dots, the last result being
    // that of the read that found none; "(not opened)" when the open failed.
    std::vector<ReadResult> records(Xfd* xfd, const std::string& text, std::size_t size);

    // Compares with a file of tests/module/expected, in which @VERSION@ stands for the label.
    static void expect_file(const std::string& actual, const std::string& expected_file);
    static std::string read(const std::string& file);
    static void store(const std::string& file, std::string_view text);
    static void expect_valid(const std::string& judge_arguments);

  private:
    std::unique_ptr<ScratchFolder> folder_;
    std::vector<std::string> settings_;
};
