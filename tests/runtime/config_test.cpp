#include "host/config.h"

#include <string>
#include <vector>

#include "host/files.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/settings/settings.h"
#include "tests/runtime/scratch.h"

namespace {

constexpr HostNamedValue STYLES[] = {{"DTD", 1}, {"SCHEMA", 2}, {"NONE", 0}};
const HostSetting SETTINGS[] = {
    {"SXML_TEST_TEXT", HOST_SETTING_TEXT, {nullptr}, nullptr, 0, {}},
    {"SXML_TEST_WORD", HOST_SETTING_WORD, {"UTF-8"}, nullptr, 0, {}},
    {"SXML_TEST_STYLE", HOST_SETTING_CHOICE, {.number = 1}, STYLES, 3, {}},
    {"SXML_TEST_FLAG", HOST_SETTING_FLAG, {.number = 1}, nullptr, 0, {}},
};

class Config : public testing::Test {
  protected:
    ScratchFolder scratch_;
    Environment file_{"SXML_CONFIG", nullptr};

    void SetUp() override {
        EXPECT_EQ(host_register_settings(SETTINGS, 4, 0), 4);
        EXPECT_EQ(host_register_settings(SETTINGS, 4, 0), 4);
        host::reload_config();
    }
    void TearDown() override {
        unsetenv("SXML_CONFIG");
        host::reload_config();
    }
    void use_file(const std::string& text) {
        write_file(scratch_.file("settings"), text);
        setenv("SXML_CONFIG", scratch_.file("settings").c_str(), 1);
        host::reload_config();
    }
    // All settings in one line.
    static std::string values() {
        const auto text = [](const char* name) {
            const char* value = host_config_string(name, nullptr);
            return value != nullptr ? std::string("'").append(value).append("'") : "none";
        };
        std::string all = text("SXML_TEST_TEXT");
        all.append(" ").append(text("SXML_TEST_WORD"));
        all.append(" ").append(std::to_string(host_config_choice("SXML_TEST_STYLE", 0)));
        all.append(" ").append(std::to_string(host_config_flag("SXML_TEST_FLAG", 0)));
        all.append(" ").append(std::to_string(host_config_number("4GL_COLUMN_CASE", 0)));
        return all;
    }
};

TEST_F(Config, FilesAreReadAndSlipsReported) {
    struct Case {
        const char* file;
        const char* values;
        const char* report;  // without the file's name
    };
    const Case cases[] = {
        {"", "none 'UTF-8' 1 1 0", ""},
        {"# a comment\n\n  SXML_TEST_TEXT   two words # kept \r\n",
         "'two words # kept' 'UTF-8' 1 1 0", ""},
        {"SXML_TEST_TEXT=a=b\nSXML_TEST_WORD = x\n", "'a=b' 'x' 1 1 0", ""},
        {"SXML_TEST_TEXT\nSXML_TEST_WORD=\n", "'' '' 1 1 0", ""},
        {"SXML_TEST_STYLE schema\nSXML_TEST_FLAG Off", "none 'UTF-8' 2 0 0", ""},
        {"SXML_TEST_STYLE NONE\nSXML_TEST_STYLE DTD\n", "none 'UTF-8' 1 1 0", ""},
        {"4GL_COLUMN_CASE 2\n", "none 'UTF-8' 1 1 2", ""},
        {"SXML_COLUMN_CASE=5\n", "none 'UTF-8' 1 1 5", ""},
        {"\xEF\xBB\xBFSXML_TEST_TEXT x\n", "'x' 'UTF-8' 1 1 0", ""},
        {"\nSXML_TEST_FLAG maybe\nSXML_TEST_STYLE 7\n", "none 'UTF-8' 1 1 0",
         "sxml: :3: SXML_TEST_STYLE: \"7\" is not one of DTD, SCHEMA, NONE\n"
         "sxml: :2: SXML_TEST_FLAG: \"maybe\" is not yes or no\n"},
        {"4GL_COLUMN_CASE 40000\n", "none 'UTF-8' 1 1 0",
         "sxml: :1: 4GL_COLUMN_CASE: \"40000\" is not a whole number\n"},
        {"SXML_TSET_FLAG no\nOTHER x\nSXML_FILES *\nSXML_LAYOUT_a a.cpy\nSXML_FETCH_LIMIT 5\n",
         "none 'UTF-8' 1 1 0", "sxml: :1: unknown setting SXML_TSET_FLAG\n"},
        {"= no\n", "none 'UTF-8' 1 1 0", "sxml: :1: a setting's name is missing before \"=\"\n"},
        {"SXML_TRACE 3\n", "none 'UTF-8' 1 1 0",
         "sxml: :1: SXML_TRACE is read from the environment only\n"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.file);
        testing::internal::CaptureStderr();
        use_file(one.file);
        EXPECT_EQ(values(), one.values);
        EXPECT_EQ(values(), one.values);  // reported once
        std::string report = testing::internal::GetCapturedStderr();
        const std::string name = scratch_.file("settings");
        for (std::size_t at = report.find(name); at != report.npos; at = report.find(name)) {
            report.erase(at, name.size());
        }
        EXPECT_EQ(report, one.report);
    }
}

TEST_F(Config, ProgramComesBeforeEnvironmentBeforeFile) {
    use_file("SXML_TEST_TEXT file\nSXML_COLUMN_CASE 1\n");
    EXPECT_EQ(values(), "'file' 'UTF-8' 1 1 1");
    const Environment text("SXML_TEST_TEXT", "");
    const Environment number("SXML_COLUMN_CASE", "2");
    host::reload_config();
    EXPECT_EQ(values(), "'' 'UTF-8' 1 1 2");
    EXPECT_TRUE(host::set_config("SXML_TEST_TEXT", "program"));
    EXPECT_TRUE(host::set_config("4GL_COLUMN_CASE", "-3"));
    EXPECT_EQ(values(), "'program' 'UTF-8' 1 1 -3");
    host::set_config("SXML_TEST_TEXT", std::nullopt);
    EXPECT_EQ(values(), "'' 'UTF-8' 1 1 -3");
    host::reload_config();
    EXPECT_EQ(values(), "'' 'UTF-8' 1 1 2");
}

TEST_F(Config, WrongValuesAreRefusedByTheProgrammedWay) {
    std::string problem;
    EXPECT_FALSE(host::set_config("SXML_TEST_STYLE", "XSD", &problem));
    EXPECT_EQ(problem, "SXML_TEST_STYLE takes one of DTD, SCHEMA, NONE");
    EXPECT_FALSE(host::set_config("SXML_TEST_FLAG", "", &problem));
    EXPECT_EQ(problem, "SXML_TEST_FLAG takes yes or no");
    EXPECT_FALSE(host::set_config("SXML_COLUMN_CASE", "x", &problem));
    EXPECT_EQ(values(), "none 'UTF-8' 1 1 0");
    EXPECT_TRUE(host::is_known_setting("SXML_TEST_FLAG"));
    EXPECT_TRUE(host::is_known_setting("SXML_PATH"));
    EXPECT_FALSE(host::is_known_setting("SXML_TEST_FLAGS"));
}

TEST_F(Config, ValuesMaySetBeforeTheirSettingIsDeclared) {
    static const HostSetting late[] = {
        {"SXML_TEST_LATE", HOST_SETTING_FLAG, {.number = 1}, nullptr, 0, {}},
        {"SXML_TEST_LATE_BAD", HOST_SETTING_FLAG, {.number = 1}, nullptr, 0, {}},
    };
    EXPECT_EQ(host_config_flag("SXML_TEST_LATE", 7), 7);
    EXPECT_TRUE(host::set_config("SXML_TEST_LATE", "no"));
    EXPECT_TRUE(host::set_config("SXML_TEST_LATE_BAD", "never"));
    // What a setting cannot take is reported at once, and only then.
    testing::internal::CaptureStderr();
    host_register_settings(late, 2, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "sxml: set by the program: SXML_TEST_LATE_BAD: \"never\" is not yes or no\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(host_config_flag("SXML_TEST_LATE", 7), 0);
    EXPECT_EQ(host_config_flag("SXML_TEST_LATE_BAD", 7), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Config, AChangedEnvironmentIsSeenAtTheNextOpen) {
    const std::pair<const char*, void (*)()> opens[] = {
        {"stream", [] { host_fclose(host_fopen("/dev/null", "w", 1)); }},
        {"description", [] { host_xfd_name("a.xml"); }},
        {"address", [] { EXPECT_EQ(host_fetch_url("no url"), nullptr); }},
    };
    host::set_config("SXML_TEST_WORD", "program");
    const std::string before = "none 'program' 1 1 0";
    EXPECT_EQ(values(), before);
    for (const auto& [what, open] : opens) {
        SCOPED_TRACE(what);
        {
            const Environment word("SXML_TEST_WORD", "later");
            const Environment text("SXML_TEST_TEXT", what);
            const Environment flag("SXML_TEST_FLAG", "maybe");
            const Environment number("SXML_COLUMN_CASE", "2");
            EXPECT_EQ(values(), before);
            open();
            testing::internal::CaptureStderr();
            EXPECT_EQ(values(), std::string("'") + what + "' 'program' 1 1 2");
            EXPECT_EQ(testing::internal::GetCapturedStderr(),
                      "sxml: environment: SXML_TEST_FLAG: \"maybe\" is not yes or no\n");
        }
        open();
        EXPECT_EQ(values(), before);
    }
}

TEST_F(Config, NamesThatNobodyDeclaredHaveTheCallersDefault) {
    EXPECT_EQ(host_config_number("no_such_name", 12), 12);
    EXPECT_STREQ(host_config_string("no_such_name", "default"), "default");
    EXPECT_EQ(host_config_string("sxml_test_word", nullptr), nullptr);  // case counts
    for (int i = 0; i < 1000; ++i) {
        host::set_config("name" + std::to_string(i), std::to_string(i));
        ASSERT_EQ(host_config_number(("name" + std::to_string(i)).c_str(), -1), i);
    }
    EXPECT_EQ(host_config_number("name500", -1), 500);
}

}  // namespace
