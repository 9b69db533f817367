#include "tests/module/module_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "host/files.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/settings/settings.h"
#include "host/runtime/trace_control.h"
#include "records/description.h"
#include "records/numbers.h"
#include "tests/support/system.h"

namespace {

std::map<std::string, Xfd*> descriptions;
std::vector<std::string> names_looked_up;
int descriptions_out = 0;
int lookups_refused = 0;
std::uint64_t live_bytes_at_conditions = 0;
bool conditions_are_compiled = false;

Xfd* parse_xfd(const char* name, int first, int second) {
    EXPECT_EQ(first, 14);
    EXPECT_EQ(second, 30);
    names_looked_up.emplace_back(name);
    const auto found = descriptions.find(name);
    if (lookups_refused-- > 0 || found == descriptions.end()) return nullptr;
    ++descriptions_out;
    // A reader of descriptions may open files of its own.
    if (found->second->item_count > 0) *host_file_error() = 99;
    return found->second;
}

void free_xfd(Xfd*) {
    --descriptions_out;
}

int test_condition(Xfd* xfd, int number, const void* record) {
    EXPECT_GE(number, 1);
    EXPECT_LE(number, xfd->condition_count);
    live_bytes_at_conditions = std::max(live_bytes_at_conditions, host::live_bytes());
    if (conditions_are_compiled) return Q4TestCOBOLCond(xfd, number, record);
    XfdBuilder::test_condition(xfd, number, record);
    return 0;
}

template <typename Function>
host::NamedFunction named(const char* name, Function* function) {
    return {name, reinterpret_cast<HostFunction*>(function)};
}

void replace_all(std::string& text, std::string_view what, std::string_view with) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), with);
    }
}

}  // namespace

void PrintTo(const ReadResult& result, std::ostream* out) {
    *out << "{" << result.result << ", code " << result.code << ", "
         << ::testing::PrintToString(result.record) << "}";
}

bool ModuleTest::encodings_granted = true;

const host::Module& ModuleTest::module() {
    static const host::Module loaded = [] {
        host::grant_encoding_support(encodings_granted);
        return host::Module::load(
            built_module(),
            {named("Q4ParseXFD", parse_xfd), named("Q4XFDFree", free_xfd),
             named("Q4TestCOBOLCond", test_condition), named("Qconvert", Qconvert)});
    }();
    return loaded;
}

void ModuleTest::SetUp() {
    set_variable("SOURCE_DATE_EPOCH", "1795003200");  // 2026-11-18
    folder_ = std::make_unique<ScratchFolder>();
    names_looked_up.clear();
    refuse_lookups(0);
    forget_live_bytes();
    module();
}

void ModuleTest::TearDown() {
    unset_all();
    descriptions.clear();
    conditions_are_compiled = false;
    folder_.reset();
    EXPECT_TRUE(host::live_blocks().empty()) << host::leak_report();
    EXPECT_EQ(descriptions_out, 0);
    EXPECT_EQ(host::damaged_blocks(), 0U);
}

void ModuleTest::set(const std::string& setting, const char* value) {
    settings_.push_back(setting);
    const auto text = value != nullptr ? std::optional<std::string>(value) : std::nullopt;
    ASSERT_TRUE(host::set_config(setting, text)) << setting;
}

void ModuleTest::unset_all() {
    for (const std::string& setting : settings_) host::set_config(setting, std::nullopt);
    settings_.clear();
}

void ModuleTest::describe(const std::string& name, Xfd* xfd) {
    descriptions[host_xfd_name(name.c_str())] = xfd;
}

const std::vector<std::string>& ModuleTest::lookups() {
    return names_looked_up;
}

void ModuleTest::use_compiled_conditions() {
    conditions_are_compiled = true;
}

std::uint64_t ModuleTest::most_live_bytes() {
    return live_bytes_at_conditions;
}

void ModuleTest::forget_live_bytes() {
    live_bytes_at_conditions = 0;
}

void ModuleTest::refuse_lookups(int count) {
    lookups_refused = count;
}

std::string ModuleTest::document(Xfd* xfd, const std::vector<std::string>& records) {
    const std::string name = path("out.xml");
    describe(name, xfd);
    XmlFile* const file = module().open(name.c_str(), XML_OPEN_OUTPUT);
    if (file == nullptr) return "(not opened)";
    for (const std::string& record : records) {
        const std::uint64_t before = host::allocation_count();
        EXPECT_EQ(module().write(file, record.data(), static_cast<std::uint32_t>(record.size())),
                  1);
        EXPECT_EQ(*host_file_error(), HOST_FILE_OK);
        EXPECT_EQ(host::allocation_count(), before);
    }
    EXPECT_EQ(module().close(file), 0);
    return read(name);
}

std::string ModuleTest::elements(Xfd* xfd, const std::vector<std::string>& records) {
    set("SXML_CREATE_STYLE", "NONE");
    std::string text = document(xfd, records);
    const std::string start_tag = "<" + std::string(xfd->name) + ">\r\n";
    const std::size_t start = text.find(start_tag);
    const std::size_t end = text.rfind("</" + std::string(xfd->name));
    if (start == std::string::npos || end == std::string::npos) return text;
    const std::size_t first = start + start_tag.size();
    return text.substr(first, end - first);
}

std::vector<ReadResult> ModuleTest::records(Xfd* xfd, const std::string& text, std::size_t size) {
    const std::string name = path("in.xml");
    store(name, text);
    describe(name, xfd);
    XmlFile* const file = module().open(name.c_str(), XML_OPEN_INPUT);
    if (file == nullptr) return {{0, *host_file_error(), "(not opened)"}};
    std::vector<ReadResult> results;
    do {
        std::vector<char> buffer(size, '.');
        const int result = module().read(file, buffer.data());
        results.push_back({result, *host_file_error(), {buffer.begin(), buffer.end()}});
    } while (results.back().result > 0);
    EXPECT_EQ(module().close(file), 0);
    return results;
}

void ModuleTest::expect_file(const std::string& actual, const std::string& expected_file) {
    std::string expected = read(SXML_SOURCE_DIR "/tests/module/expected/" + expected_file);
    replace_all(expected, "@VERSION@", SXML_VERSION_LABEL);
    EXPECT_EQ(actual, expected) << expected_file;
}

std::string ModuleTest::read(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.good()) << file;
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

void ModuleTest::store(const std::string& file, std::string_view text) {
    // File systems may wait for the disk when a file is emptied and written anew.
    std::filesystem::remove(file);
    std::ofstream(file, std::ios::binary) << text;
}

void ModuleTest::expect_valid(const std::string& judge_arguments) {
    const std::string command = "xmllint --noout --nonet " + judge_arguments;
    EXPECT_TRUE(is_judged_well(command)) << command;
}
