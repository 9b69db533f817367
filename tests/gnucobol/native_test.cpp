// Files other than documents: whatever a program does with them, it works as without the adapter.
#include <gtest/gtest.h>

#include "tests/gnucobol/cobol_test.h"

namespace {

class NativeTest : public CobolTest {
  protected:
    void SetUp() override {
        CobolTest::SetUp();
        compile_plain(PROGRAMS + "plain.cbl", "native");
        compile_for_xml(PROGRAMS + "plain.cbl", "ours");
    }

    // Runs a command in an empty folder below this one. Result: what it prints, how it ends, and
    // what is in its files.
    static std::string trace_of(const std::string& command) {
        fs::create_directory("run");
        fs::current_path("run");
        const Outcome outcome = run_program({"bash", "-c", command});
        std::string trace =
            outcome.out + outcome.err + "ends with " + std::to_string(outcome.status) + "\n";
        for (const std::string& file : files()) {
            if (!file.ends_with(".xml")) trace += "== " + file + "\n" + read_file(file);
        }
        fs::current_path("..");
        fs::remove_all("run");
        return trace;
    }
};

TEST_F(NativeTest, PlainFilesBehaveAsWithTheCompilerAlone) {
    set("DD_BESIDE", "beside.xml");
    const std::string native = trace_of("../native alone");
    // LINAGE, REEL, LOCK, a full disk, relative files, a return code.
    for (const std::string part : {"end of page 008", "reel 07", "locked 38", "full 34", "next 00",
                                   "ends with 7", "== items.dat\n"}) {
        EXPECT_NE(native.find(part), std::string::npos) << part << native;
    }
    EXPECT_EQ(trace_of("../ours alone"), native);
    // Then the calls for plain files go through us.
    EXPECT_EQ(trace_of("../ours beside"), native);
}

TEST_F(NativeTest, ErrorsThatNobodyHandlesEndTheProgramAlike) {
    const std::string native = trace_of("../native fail");
    EXPECT_NE(native.find("ends with 1\n"), std::string::npos) << native;
    EXPECT_EQ(trace_of("../ours fail"), native);
    // A document that is missing ends it like a file that is missing.
    set("DD_nowhere_dat", "nowhere.xml");
    const std::string missing = trace_of("../native fail");
    EXPECT_EQ(trace_of("../ours fail"),
              "sxml: nowhere.xml: OPEN INPUT: file status 35: there is no such file\n" + missing);
}

TEST_F(NativeTest, LocksOfPlainFilesAreTheSame) {
    const auto held = [](const std::string& holder, const std::string& other) {
        return trace_of("touch items.dat; ../" + holder +
                        " hold >held & while ! grep -qs hold held; do sleep 0.02; done; ../" +
                        other + " try; { kill $!; wait $!; } 2>/dev/null");
    };
    const std::string native = held("native", "native");
    EXPECT_NE(native.find("try 61\ntry 61\n"), std::string::npos) << native;
    EXPECT_EQ(held("ours", "native"), native);
    EXPECT_EQ(held("native", "ours"), native);
}

}  // namespace
