// The calls that writing makes to its host, with their arguments and order. Some services
// of the host are replaced here: the module finds those of this program before the host's own.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <set>

#include "host/config.h"
#include "host/encoding.h"
#include "host/files.h"
#include "host/memory.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/trace_control.h"
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

struct Registration {
    const HostSetting* table;
    int count;
    int reserved;
};

Registration registration = {};
std::vector<std::string>* steps = nullptr;  // of the test that listens
std::size_t national_length = 0;            // of characters from 0x81 on; 0: as the host says
std::string number_text;                    // what every number converts to

void note(std::string step) {
    if (steps != nullptr) steps->push_back(std::move(step));
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

int host_register_settings(const HostSetting* table, int count, int reserved) {
    static auto* const real = next<decltype(host_register_settings)>("host_register_settings");
    registration = {table, count, reserved};
    return real(table, count, reserved);
}

void host_fclose(HostStream* stream) {
    static auto* const real = next<decltype(host_fclose)>("host_fclose");
    note("host_fclose");
    real(stream);
}

void host_free(void* block, const char* source, int line, int flags) {
    static auto* const real = next<decltype(host_free)>("host_free");
    note("host_free");
    real(block, source, line, flags);
}

std::size_t host_char_length(std::int32_t code, const void* text) {
    static auto* const real = next<decltype(host_char_length)>("host_char_length");
    const bool is_lead = *static_cast<const unsigned char*>(text) == 0x81;
    if (code == HOST_ENCODING_NATIONAL && national_length > 0 && is_lead) return national_length;
    return real(code, text);
}

namespace {

Q4XFDFreeFunction* real_free_xfd = nullptr;
Q4TestCOBOLCondFunction* real_test_condition = nullptr;

void free_xfd(Xfd* xfd) {
    note("Q4XFDFree");
    real_free_xfd(xfd);
}

int test_condition(Xfd* xfd, int number, const void* record) {
    note("condition " + std::to_string(number));
    return real_test_condition(xfd, number, record);
}

int convert(XfdDataDesc* destination, const XfdDataDesc* source, int mode) {
    note("Qconvert " + std::to_string(mode) + " of " +
         std::string(static_cast<const char*>(source->address), 2) + " to " +
         std::to_string(destination->type) + " " + std::to_string(destination->length) + " " +
         std::to_string(destination->digits) + " " + std::to_string(destination->scale));
    std::string text = number_text;
    text.resize(static_cast<std::size_t>(destination->length), ' ');
    text.copy(static_cast<char*>(destination->address), text.size());
    return 1;
}

class PromisesTest : public ModuleTest {
  protected:
    std::vector<std::string> steps_;

    void SetUp() override {
        ModuleTest::SetUp();
        real_free_xfd = replace("Q4XFDFree", free_xfd);
        real_test_condition = replace("Q4TestCOBOLCond", test_condition);
        real_convert_ = replace("Qconvert", convert);
    }
    void TearDown() override {
        steps = nullptr;
        national_length = 0;
        replace("Q4XFDFree", real_free_xfd);
        replace("Q4TestCOBOLCond", real_test_condition);
        replace("Qconvert", real_convert_);
        ModuleTest::TearDown();
    }
    template <typename Function>
    Function* replace(const char* name, Function* function) {
        auto* const put =
            reinterpret_cast<XmlSetHostFunctionEntry*>(module().slot(SLOT_SET_HOST_FUNCTION));
        const void* const before = put(name, reinterpret_cast<HostFunction*>(function));
        return reinterpret_cast<Function*>(const_cast<void*>(before));
    }
    std::string start_tag(Xfd* xfd) {
        const std::string text = document(xfd, {});
        const std::size_t start = text.find("<custfile");
        return text.substr(start, text.find(">\r\n", start) + 1 - start);
    }

  private:
    QconvertFunction* real_convert_ = nullptr;
};

TEST_F(PromisesTest, NeedsTheHostExpatAndTheCLibraryOnly) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "sanitizers need libraries of their own";
#endif
    FILE* const pipe = popen("LC_ALL=C readelf -d '" SXML_BUILD_DIR "/lib/sxml.so'", "r");
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> needed;
    for (char line[1024]; std::fgets(line, sizeof line, pipe) != nullptr;) {
        const std::string text = line;
        if (text.find("(NEEDED)") == std::string::npos) continue;
        const std::size_t start = text.find('[') + 1;
        needed.insert(text.substr(start, text.find(".so") - start));
    }
    EXPECT_EQ(pclose(pipe), 0);
    EXPECT_EQ(needed, (std::set<std::string>{"libc", "libexpat", "libsxml_host"}));
}

// What a document means does not depend on the locale that the program has set.
TEST_F(PromisesTest, LeavesTheLocaleAlone) {
    FILE* const pipe =
        popen("LC_ALL=C readelf --dyn-syms -W '" SXML_BUILD_DIR "/lib/sxml.so'", "r");
    ASSERT_NE(pipe, nullptr);
    std::string found;
    int imports = 0;
    for (char line[1024]; std::fgets(line, sizeof line, pipe) != nullptr;) {
        const std::string text = line;
        if (text.find(" UND ") == std::string::npos) continue;
        ++imports;
        for (const char* name : {" strcasecmp", " strncasecmp", " tolower", " toupper", " strcoll",
                                 " strtod", " __ctype_", " setlocale", " mbstowcs", " isalpha"}) {
            if (text.find(name) != std::string::npos) found += text;
        }
    }
    EXPECT_EQ(pclose(pipe), 0);
    EXPECT_GT(imports, 50);
    EXPECT_EQ(found, "");
}

TEST_F(PromisesTest, DeclaresItsSettings) {
    struct Expected {
        const char* name;
        std::uint64_t kind;
        const char* text;
        std::uint64_t number;
    };
    const Expected expected[] = {
        {"SXML_SCHEMA_DOC", 9, nullptr, 0},
        {"SXML_SCHEMA_NAME", 9, nullptr, 0},
        {"SXML_STYLESHEET_HREF", 9, nullptr, 0},
        {"SXML_SCHEMA_NAMESPACE_DATA", 9,
         "xmlns:xs=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
         "    xs:noNamespaceSchemaLocation=\"%s\"",
         0},
        {"SXML_ENCODING", 8, "UTF-8", 0},
        {"SXML_STYLESHEET_TYPE", 8, nullptr, 0},
        {"SXML_CREATE_STYLE", 5, nullptr, 1},
        {"SXML_CREATE_SCHEMA", 2, nullptr, 1},
        {"SXML_EXACT_TABLE_MATCH", 2, nullptr, 1},
        {"SXML_IGNORE_EMPTY_DATA", 2, nullptr, 0},
    };
    reinterpret_cast<XmlRegisterSettingsEntry*>(module().slot(SLOT_REGISTER_SETTINGS))();
    ASSERT_EQ(registration.count, 10);
    EXPECT_EQ(registration.reserved, 0);
    const HostSetting* setting = registration.table;
    for (const Expected& one : expected) {
        EXPECT_STREQ(setting->name, one.name);
        EXPECT_EQ(setting->kind, one.kind) << one.name;
        if (one.kind < 8) {
            EXPECT_EQ(setting->fallback.number, one.number) << one.name;
        } else {
            EXPECT_STREQ(setting->fallback.text, one.text) << one.name;
        }
        EXPECT_EQ(setting->value_count, one.kind == 5 ? 3U : 0U) << one.name;
        EXPECT_EQ(setting->values != nullptr, one.kind == 5) << one.name;
        EXPECT_EQ(setting->reserved[0] | setting->reserved[1], 0U) << one.name;
        ++setting;
    }
    const HostNamedValue* const styles = registration.table[6].values;
    const std::pair<const char*, std::uint64_t> expected_styles[] = {
        {"DTD", 1}, {"SCHEMA", 2}, {"NONE", 0}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_STREQ(styles[i].name, expected_styles[i].first);
        EXPECT_EQ(styles[i].value, expected_styles[i].second);
    }
}

TEST_F(PromisesTest, SettingsThatAreSetToNothingAndMarkupInNames) {
    XfdBuilder builder = customers();
    const std::string schema = path("a.xsd");
    set("SXML_CREATE_STYLE", "SCHEMA");
    set("SXML_SCHEMA_NAME", schema.c_str());
    set("SXML_SCHEMA_DOC", "");
    document(builder.xfd(), {});
    EXPECT_NE(read(schema).find("<xs:documentation>\r\n      \r\n      Created by "),
              std::string::npos);

    struct Case {
        const char* name;
        const char* format;
        const char* tag;
    };
    const Case cases[] = {
        {"", "x=\"%s\"", "<custfile x=\"\">"},
        {"a.xsd", "", "<custfile >"},
        {"\"R&D\" <1>.xsd", "x=\"&lt;%s\"",
         "<custfile x=\"&lt;&quot;R&amp;D&quot; &lt;1&gt;.xsd\">"},
        {"\xC3\xA9\xC3.xsd", "%s", "<custfile \xC3\xA9\xC3.xsd>"},
    };
    set("SXML_CREATE_SCHEMA", "no");
    for (const Case& c : cases) {
        set("SXML_SCHEMA_NAME", c.name);
        set("SXML_SCHEMA_NAMESPACE_DATA", c.format);
        EXPECT_EQ(start_tag(builder.xfd()), c.tag);
    }
}

TEST_F(PromisesTest, AnOpenSeesTheEnvironmentAsItIsThen) {
    XfdBuilder builder = customers();
    Xfd* const xfd = builder.xfd();
    EXPECT_NE(document(xfd, {}).find("<!DOCTYPE"), std::string::npos);
    setenv("SXML_CREATE_STYLE", "none", 1);
    EXPECT_EQ(document(xfd, {}).find("<!DOCTYPE"), std::string::npos);
    unsetenv("SXML_CREATE_STYLE");
    EXPECT_NE(document(xfd, {}).find("<!DOCTYPE"), std::string::npos);
}

TEST_F(PromisesTest, EveryEntryStartsWithoutError) {
    XfdBuilder builder = customers();
    const std::string name = path("a.xml");
    describe(name, builder.xfd());
    XmlFile* file = nullptr;
    const auto forward = [&](DispatchSlot slot) {
        reinterpret_cast<XmlCopyEntry*>(module().slot(slot))(path("x").c_str(), path("y").c_str());
    };
    const std::pair<const char*, std::function<void()>> entries[] = {
        {"make", [&] { module().make(path("no/a").c_str(), nullptr); }},
        {"open", [&] { file = module().open(name.c_str(), XML_OPEN_OUTPUT); }},
        {"write", [&] { module().write(file, SMITH.data(), 47); }},
        {"close", [&] { module().close(file); }},
        {"failing open", [&] { module().open(path("b").c_str(), XML_OPEN_OUTPUT); }},
        {"remove", [&] { forward(SLOT_REMOVE); }},
        {"rename", [&] { forward(SLOT_RENAME); }},
        {"copy", [&] { forward(SLOT_COPY); }},
    };
    for (const auto& [what, call] : entries) {
        *host_file_error() = 99;
        call();
        EXPECT_EQ(*host_file_error(), HOST_FILE_OK) << what;
    }
}

TEST_F(PromisesTest, TracesEntriesAtLevelOne) {
    XfdBuilder builder = customers();
    const std::string name = path("a.xml");
    const std::string missing = path("no/a");
    describe(name, builder.xfd());
    host::set_trace(1, path("trace"));
    module().make(name.c_str(), nullptr);
    module().make(missing.c_str(), "p");
    set("SXML_CREATE_STYLE", "SCHEMA");
    XmlFile* const file = module().open(name.c_str(), XML_OPEN_OUTPUT);
    module().write(file, SMITH.data(), 47);
    module().close(file);
    set("SXML_CREATE_STYLE", "DTD");
    host::fail_allocation(2);  // the index of declared names
    EXPECT_EQ(module().open(name.c_str(), XML_OPEN_OUTPUT), nullptr);
    module().make(name.c_str(), nullptr);
    reinterpret_cast<XmlOpenEntry*>(module().slot(SLOT_OPEN))("n", 2, 3, 4, 5, 6, "seven", 8);
    host::set_trace(0, "");
    const std::string made = "xml_smake: '" + name + "', 'NULL'\nLeaving, success\n";
    const std::string open = "xml_sopen: '" + name + "', 1, 0, 0, 0, 0, 'NULL', 0\n";
    EXPECT_EQ(read(path("trace")),
              made + "xml_smake: '" + missing + "', 'p'\nLeaving, failed to open, error 2\n" +
                  open + "  No schema file given, or unable to open file\nLeaving, success\n" +
                  "xml_swrite, 47\nLeaving\nxml_sclose\nLeaving\n" + open +
                  "Leaving, no memory for the declared names\n" + made +
                  "xml_sopen: 'n', 2, 3, 4, 5, 6, 'seven', 8\nLeaving, open mode not supported\n");
}

TEST_F(PromisesTest, FailedOpensCleanUpInOrder) {
    XfdBuilder builder = customers();
    XfdBuilder without_items("empty");
    XfdBuilder endless = customers();
    std::memset(endless.xfd()->name, 'n', XFD_NAME_SIZE);
    XfdBuilder endless_item = customers();
    std::memset(endless_item.item(9).name, 'n', XFD_ITEM_NAME_SIZE);
    struct Case {
        const char* name;
        Xfd* xfd;
        std::int32_t mode;
        std::uint64_t failing_allocation;
        std::vector<std::string> steps;
    };
    const Case cases[] = {
        {"memory", builder.xfd(), 1, 2, {"Q4XFDFree", "host_fclose", "host_free"}},
        {"empty", without_items.xfd(), 1, 0, {"Q4XFDFree", "host_fclose", "host_free"}},
        {"endless", endless.xfd(), 1, 0, {"Q4XFDFree", "host_fclose", "host_free"}},
        {"endless_item", endless_item.xfd(), 0, 0, {"Q4XFDFree", "host_free"}},
        {"unknown", nullptr, 1, 0, {"host_fclose", "host_free"}},
        {"no/folder", builder.xfd(), 1, 0, {"Q4XFDFree", "host_free"}},
    };
    for (const Case& c : cases) {
        if (c.xfd != nullptr) describe(path(c.name), c.xfd);
        steps_.clear();
        steps = &steps_;
        host::fail_allocation(c.failing_allocation);
        EXPECT_EQ(module().open(path(c.name).c_str(), c.mode), nullptr) << c.name;
        steps = nullptr;
        EXPECT_EQ(steps_, c.steps) << c.name;
    }
}

TEST_F(PromisesTest, WritesTestAllConditionsAndConvertOnce) {
    XfdBuilder builder("f");
    const int row = builder.group(1, "row");
    builder.number(2, "whole", 0, 2, 5);
    builder.number(2, "decimals", 2, 2, 7, -2);
    builder.number(2, "rounded", 4, 2, 3, 2);
    for (int i = 0; i < 3; ++i) builder.condition(0, 'x', row);
    builder.conventions().decimal_point = ',';
    number_text = "1,5";
    steps = &steps_;
    const std::string text = elements(builder.xfd(true), {"aabbcc"});
    steps = nullptr;
    EXPECT_EQ(text, lines(" <row>\n  <whole>1.5</whole>\n  <decimals>1.5</decimals>\n"
                          "  <rounded>1.5</rounded>\n </row>\n"));
    std::erase_if(steps_, [](const std::string& step) { return step.starts_with("host_"); });
    EXPECT_EQ(steps_,
              (std::vector<std::string>{
                  "condition 1", "condition 2", "condition 3", "Qconvert 1 of aa to 0 6 5 0",
                  "Qconvert 1 of bb to 0 9 7 -2", "Qconvert 1 of cc to 0 4 3 2", "Q4XFDFree"}));
}

TEST_F(PromisesTest, OnlyTextsOfZeroCountAsEmptyNumbers) {
    XfdBuilder builder("f");
    builder.number(1, "v", 0, 2, 5);
    set("SXML_IGNORE_EMPTY_DATA", "yes");
    const std::pair<const char*, bool> cases[] = {
        {"", true},      {"000", true}, {"-0.00", true}, {"+0", true},   {" 0 ", true},
        {"0.01", false}, {"9", false},  {"NaN", false},  {"INF", false}, {"0E0", false},
    };
    // The host's decimal point may be any character.
    builder.conventions().decimal_point = ';';
    number_text = "1;5,6";
    EXPECT_EQ(elements(builder.xfd(), {"aa"}), " <v>1.5,6</v>\r\n");
    for (const auto& [text, dropped] : cases) {
        number_text = text;
        EXPECT_EQ(elements(builder.xfd(), {"aa"}),
                  dropped ? "" : " <v>" + number_text + "</v>\r\n");
    }
}

// A host may have an encoding of its own whose characters take several bytes.
TEST_F(PromisesTest, TheHostSaysHowLongCharactersAre) {
    XfdBuilder builder("f");
    builder.number(1, "v", 0, 7, 0, 0, records::NATIONAL);
    const std::string record = "a\x81<\x82<\x81&";
    EXPECT_EQ(elements(builder.xfd(), {record}), " <v>a\x81&lt;\x82&lt;\x81&amp;</v>\r\n");
    national_length = 2;
    EXPECT_EQ(elements(builder.xfd(), {record}), " <v>a\x81<\x82&lt;\x81&</v>\r\n");
    national_length = 1000;
    EXPECT_EQ(elements(builder.xfd(), {record}), " <v>a" + record.substr(1) + "</v>\r\n");
}

}  // namespace
