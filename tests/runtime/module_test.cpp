#include "host/runtime/module.h"

#include <sys/stat.h>

#include <cerrno>
#include <stdexcept>

#include "host/config.h"
#include "host/runtime/memory/memory_failure.h"
#include "tests/runtime/scratch.h"

namespace {

const std::string PLAIN_MODULE = std::string(SXML_BUILD_DIR) + "/tests/plain_module.so";

void* own_function() {
    return &errno;
}

TEST(Module, IsInitialisedAndGetsFunctionsAndSettings) {
    (void)host::take_memory_failure();  // of other tests in this process
    host::grant_encoding_support(false);
    const host::Module module = host::Module::load(
        PLAIN_MODULE, {{"Qconvert", reinterpret_cast<HostFunction*>(&own_function)},
                       {"unknown", reinterpret_cast<HostFunction*>(&own_function)}});
    host::grant_encoding_support(true);
    EXPECT_EQ(module.make("anything", nullptr), 0);  // the answer to the query
    EXPECT_EQ(module.make("Qconvert", nullptr), 0);  // the function given
    EXPECT_EQ(module.make("QTrace", nullptr), 1);    // nobody has it: a stand-in gives null
    EXPECT_STREQ(host_config_string("SXML_PLAIN_SETTING", nullptr), "plain");
    EXPECT_NE(module.symbol("GetDispatchTable"), nullptr);
    EXPECT_EQ(module.symbol("no_such_symbol"), nullptr);

    const Environment named("SXML_MODULE", PLAIN_MODULE.c_str());
    EXPECT_EQ(host::Module::load("", {}).make("anything", nullptr), 1);
}

TEST(Module, LoadingSaysWhatIsWrongWithWhichFile) {
    const ScratchFolder scratch;
    write_file(scratch.file("text.so"), "no library");
    for (const std::string& file : {scratch.file("missing.so"), scratch.file("text.so")}) {
        try {
            host::Module::load(file, {});
            ADD_FAILURE() << file;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(file), std::string::npos);
        }
    }
}

TEST(FileFunctions, CopyReplacesTheTargetWholeOrNotAtAll) {
    const ScratchFolder scratch;
    const std::string source = scratch.file("source");
    const std::string target = scratch.file("target");
    const std::string text(200'000, 's');
    write_file(source, text);
    write_file(target, "old");
    chmod(source.c_str(), 0640);
    EXPECT_EQ(f_copy(source.c_str(), target.c_str()), 1);
    EXPECT_TRUE(read_file(target) == text);
    struct stat status {};
    stat(target.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640U);

    EXPECT_EQ(f_copy(scratch.file("").c_str(), target.c_str()), 0);  // a folder cannot be read
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(f_copy(scratch.file("missing").c_str(), target.c_str()), 0);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(f_copy(source.c_str(), scratch.file("no/folder").c_str()), 0);
    EXPECT_EQ(f_copy(nullptr, target.c_str()), 0);
    EXPECT_TRUE(read_file(target) == text);
    EXPECT_EQ(scratch.size(), 2U);

    EXPECT_EQ(f_rename(target.c_str(), source.c_str()), 1);
    EXPECT_EQ(f_rename(target.c_str(), source.c_str()), 0);
    EXPECT_EQ(f_remove(source.c_str()), 1);
    EXPECT_EQ(f_remove(source.c_str()), 0);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(scratch.size(), 0U);
}

}  // namespace
