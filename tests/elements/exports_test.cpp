// What the module exports, a C program that uses it, and the cost of building trees, all seen from
// outside.
#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "tests/elements/element_test.h"

namespace {

// What a command prints on standard output; `status` is its exit status.
std::string output_of(const std::string& command, int& status) {
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    if (!pipe) return text;
    char buffer[4096];
    while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) text.append(buffer, n);
    status = pclose(pipe);
    return text;
}

// The symbols that nm lists, with their addresses.
std::map<std::string, std::string> symbols(const std::string& options) {
    int status = -1;
    std::istringstream lines(output_of("nm " + options + " '" + module_path() + "'", status));
    EXPECT_EQ(status, 0);
    std::map<std::string, std::string> found;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string address;
        std::string kind;
        std::string name;
        if (words >> address >> kind >> name) found[name] = address;
    }
    return found;
}

// The list kept with the tests: number and function, a line each.
std::map<int, std::string> expected_exports() {
    std::ifstream file(expected_file("exports.txt"));
    std::map<int, std::string> exports;
    int number = 0;
    for (std::string name; file >> number >> name;) exports[number] = name;
    EXPECT_FALSE(exports.empty());
    return exports;
}

TEST(Exports, AreTheOrdinalsAndOneName) {
    const auto all = symbols("--defined-only");
    std::set<std::string> expected = {"GetDispatchTable"};
    for (const auto& [number, name] : expected_exports()) {
        const std::string symbol = "ordinal_" + std::to_string(number);
        expected.insert(symbol);
        ASSERT_TRUE(all.contains(symbol) && all.contains(name)) << symbol;
        EXPECT_EQ(all.at(symbol), all.at(name)) << symbol;
    }
    std::set<std::string> exported;
    for (const auto& [name, address] : symbols("-D --defined-only")) exported.insert(name);
    EXPECT_EQ(exported, expected);

    std::string def = "LIBRARY sxml.dll\nEXPORTS\n    GetDispatchTable @100\n";
    for (const auto& [number, name] : expected_exports()) {
        def += "    " + name + " @" + std::to_string(number) + " NONAME\n";
    }
    EXPECT_EQ(file_text(SXML_BUILD_DIR "/fsi/xml/sxml.def"), def);
}

TEST(Exports, AModuleThatCannotBeUsedIsRefused) {
    const struct {
        const char* module;
        const char* problem;
    } cases[] = {
        {nullptr, "no module is named"},
        {"", "no module is named"},
        {"./no_such_module.so", "./no_such_module.so: cannot open shared object file"},
        {"libc.so.6", "libc.so.6 has no ordinal_1"},
        {PARTIAL_MODULE, PARTIAL_MODULE " has no ordinal_2"},
    };
    const XmlApi empty{};
    for (const auto& [module, expected] : cases) {
        XmlApi table = api();
        const char* const problem = xml_api_load(module, &table);
        EXPECT_EQ(std::memcmp(&table, &empty, sizeof table), 0) << expected;
        EXPECT_EQ(dlopen(PARTIAL_MODULE, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still loaded";
        ASSERT_NE(problem, nullptr);
        EXPECT_EQ(std::string(problem).rfind(expected, 0), 0U) << problem;
    }
}

TEST(Exports, TheMessagesMakeATableInC) {
    void* const module = dlopen(PARTIAL_MODULE, RTLD_NOW);
    ASSERT_NE(module, nullptr);
    const auto* const messages = static_cast<const char* const*>(dlsym(module, "messages"));
    ASSERT_NE(messages, nullptr);
    EXPECT_STREQ(messages[XMLERR_NO_MEMORY], "Unable to create parser due to low memory");
    EXPECT_STREQ(messages[XMLERR_NO_PI], "No processing instructions are available");
    EXPECT_EQ(messages[XMLERR_COUNT], nullptr);
    dlclose(module);
}

TEST(Example, BuildsATreeInC) {
    const std::string file = ::testing::TempDir() + "build_tree.xml";
    int status = -1;
    EXPECT_EQ(output_of("'" BUILD_TREE "' '" + module_path() + "' '" + file + "'", status),
              "item(1): Bolt <M8>\nitem(2): Nut & washer\nitem(3): Bracket\n");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(file_text(file), file_text(expected_file("build_tree.xml")));
    output_of("xmllint --noout '" + file + "'", status);
    EXPECT_EQ(status, 0) << "not well-formed";
}

TEST(Example, TellsThatADocumentWasNotWritten) {
    int status = -1;
    const std::string text =
        output_of("'" BUILD_TREE "' '" + module_path() + "' /dev/full 2>&1 >/dev/null", status);
    EXPECT_EQ(text, "/dev/full: No space left on device\n");
    EXPECT_NE(status, 0);
}

// Programs in C and C++ may include each of them by itself.
TEST(PublicHeaders, CompileAlone) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SXML_SOURCE_DIR "/include/sxml")) {
        if (entry.path().extension() != ".h") continue;
        ++count;
        for (const char* compiler :
             {C_COMPILER " -std=c11 -x c", CXX_COMPILER " -std=c++17 -x c++"}) {
            int status = -1;
            const std::string text =
                output_of(std::string(compiler) +
                              " -Wall -Wextra -Wpedantic -Werror "
                              "-fsyntax-only -I'" SXML_SOURCE_DIR "/include' -include '" +
                              entry.path().string() + "' /dev/null 2>&1",
                          status);
            EXPECT_EQ(status, 0) << entry.path() << compiler << text;
        }
    }
    EXPECT_GT(count, 4);
}

// Instructions that the cost driver takes, counted by valgrind; 0 when there is no valgrind.
std::uint64_t instructions(const std::string& shape, int count) {
    int status = -1;
    const std::string text =
        output_of("valgrind --tool=callgrind --callgrind-out-file=/dev/null '" COST_DRIVER "' " +
                      shape + ' ' + std::to_string(count) + " 2>&1",
                  status);
    const std::string label = "Collected : ";
    const std::size_t at = text.find(label);
    if (status != 0 || at == std::string::npos) return 0;
    return std::strtoull(text.c_str() + at + label.size(), nullptr, 10);
}

class Cost : public ::testing::TestWithParam<const char*> {};

TEST_P(Cost, IsLinear) {
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
    GTEST_SKIP() << "instructions are counted in release builds";
#endif
    int status = -1;
    output_of("valgrind --version", status);
    if (status != 0) GTEST_SKIP() << "valgrind is not installed";
    const auto start = instructions(GetParam(), 0);
    const auto few = instructions(GetParam(), 2'000);
    const auto many = instructions(GetParam(), 20'000);
    ASSERT_GT(start, 0U);
    ASSERT_GT(few, start);
    const double ratio = static_cast<double>(many - start) / static_cast<double>(few - start);
    std::cout << GetParam() << ": " << few - start << " and " << many - start
              << " instructions, ratio " << ratio << '\n';
    EXPECT_LE(ratio, 11.0);
}

INSTANTIATE_TEST_SUITE_P(Shapes, Cost, ::testing::Values("one_name", "all_different", "nested"),
                         [](const auto& shape) { return std::string(shape.param); });

}  // namespace
