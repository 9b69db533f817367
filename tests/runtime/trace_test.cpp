#include "host/trace.h"

#include <cstdlib>
#include <string>

#include "host/runtime/trace_control.h"
#include "tests/runtime/scratch.h"

namespace {

class Trace : public testing::Test {
  protected:
    ScratchFolder scratch_;
    std::string file_ = scratch_.file("trace");

    void TearDown() override { host::set_trace(0, ""); }
};

TEST_F(Trace, LinesAreIndentedByTheRunningSumOfSteps) {
    ASSERT_TRUE(host::set_trace(3, file_));
    EXPECT_EQ(host_trace_on, 3);
    host_trace(-1, 1, "Leaving, unmatched");
    host_trace(1, 1, "open %s, %d", "a.xml", 7);
    host_trace(1, 4, "hidden, but it steps");
    host_trace(0, 3, "within\n");
    host_trace(-1, 4, "Leaving hidden");
    host_trace(0, 2, "%s", "");
    host_trace_printf("%s", "plain");
    host_trace_printf("\n");
    host_trace_dump(0, 0, "0123456789abcdef\n<\xFF", 19);
    host_trace(-1, 1, "Leaving open");
    host_trace(0, 1, "%s", std::string(3000, 'x').c_str());
    EXPECT_EQ(read_file(file_),
              "Leaving, unmatched\n"
              "open a.xml, 7\n"
              "    within\n"
              "  \n"
              "plain\n"
              "  00000000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
              "  00000010  0a 3c ff                                         |.<.|\n"
              "Leaving open\n" +
                  std::string(3000, 'x') + "\n");
}

TEST_F(Trace, GoesToStandardErrorWithoutAFile) {
    EXPECT_FALSE(host::set_trace(1, scratch_.file("no/such/folder")));
    testing::internal::CaptureStderr();
    host_trace(0, 1, "to standard error");
    host_trace(0, 2, "above the level");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to standard error\n");
}

// Run by the test below in a process of its own, whose environment sets the trace.
TEST(TraceAtLoad, DISABLED_WritesALine) {
    host_trace(0, host_trace_on, "level %d", host_trace_on);
}

TEST_F(Trace, TheEnvironmentSetsItBeforeAnythingRuns) {
    const Environment level("SXML_TRACE", "9");
    const Environment name("SXML_TRACE_FILE", file_.c_str());
    const std::string command = std::string(SXML_BUILD_DIR) +
                                "/tests/runtime_test --gtest_also_run_disabled_tests "
                                "--gtest_filter='TraceAtLoad.*' > " +
                                scratch_.file("output");
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(read_file(file_), "level 9\n");
}

}  // namespace
