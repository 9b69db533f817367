// Make, open for output and close: prologue, settings, failures.
#include <filesystem>
#include <sstream>

#include "host/runtime/memory/memory_report.h"
#include "host/runtime/trace_control.h"
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

using OpenTest = ModuleTest;

TEST_F(OpenTest, MakesEmptyFiles) {
    const std::string name = path("made.xml");
    *host_file_error() = HOST_FILE_XML;
    EXPECT_EQ(module().make(name.c_str(), nullptr), 1);
    EXPECT_EQ(*host_file_error(), HOST_FILE_OK);
    EXPECT_EQ(read(name), "");
    EXPECT_EQ(module().make(path("no/such/folder").c_str(), "params"), 0);
    EXPECT_EQ(*host_file_error(), HOST_FILE_OK);
}

TEST_F(OpenTest, SettingsShapeTheProlog) {
    struct Case {
        const char* settings;  // name=value, without the prefix, separated by blanks
        const char* expected;  // what follows the banner; with "!" first, the declaration
    };
    const std::string bare = "<customers>\n</customers>\n";
    const Case cases[] = {
        {"CREATE_STYLE=NONE", ""},
        {"", "<!DOCTYPE customers [\n<!ELEMENT customers (row)*>\n <!ELEMENT row (#PCDATA)>\n]>\n"},
        {"STYLESHEET_TYPE=text/xsl CREATE_STYLE=NONE", ""},
        {"STYLESHEET_HREF=a.xsl CREATE_STYLE=NONE", ""},
        {"STYLESHEET_TYPE=text/xsl STYLESHEET_HREF=a.xsl CREATE_STYLE=NONE",
         "<?xml-stylesheet type=\"text/xsl\" href=\"a.xsl\"?>"},
        {"STYLESHEET_TYPE=text/css STYLESHEET_HREF= CREATE_STYLE=NONE",
         "<?xml-stylesheet type=\"text/css\" href=\"\"?>"},
        {"CREATE_STYLE=SCHEMA", ""},
        {"CREATE_STYLE=SCHEMA SCHEMA_NAME=", ""},
        {"CREATE_STYLE=SCHEMA SCHEMA_NAME=no/such/folder/a.xsd", ""},
        {"CREATE_STYLE=SCHEMA CREATE_SCHEMA=no SCHEMA_NAME=a%d.xsd "
         "SCHEMA_NAMESPACE_DATA=x=\"100%%%d%s\n%s%\"",
         "<customers x=\"100%%da%d.xsd\n%s%\">\n</customers>\n"},
        {"CREATE_STYLE=SCHEMA CREATE_SCHEMA=no SCHEMA_NAME=a.xsd",
         "<customers xmlns:xs=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
         "    xs:noNamespaceSchemaLocation=\"a.xsd\">\n</customers>\n"},
        {"ENCODING=ISO-8859-1", "!<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"},
        {"ENCODING=", "!<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"},
        {"ENCODING=x-unknown", "!<?xml version=\"1.0\" encoding=\"x-unknown\"?>\n"},
    };
    const std::string banner =
        lines("<!-- Created by Tarnel(tm) version " SXML_VERSION_LABEL " on 2026/11/18 -->\n");
    XfdBuilder builder("customers");
    builder.group(1, "row");
    for (const Case& c : cases) {
        std::istringstream words(c.settings);
        for (std::string word; std::getline(words, word, ' ');) {
            const std::size_t equals = word.find('=');
            set("SXML_" + word.substr(0, equals), word.substr(equals + 1).c_str());
        }
        const std::string text = document(builder.xfd(), {});
        const std::size_t at = text.find(banner);
        ASSERT_NE(at, std::string::npos) << text;
        const std::string expected = c.expected;
        if (expected.starts_with('!')) {
            EXPECT_EQ(text.substr(0, at), lines(expected.substr(1)));
        } else {
            const std::string rest = expected.starts_with("<customers") ? "" : bare;
            EXPECT_EQ(text.substr(at + banner.size()), lines(expected + rest)) << c.settings;
        }
        unset_all();
    }
}

TEST_F(OpenTest, LongSchemaReferencesAreWrittenWhole) {
    const std::string filler(10'000, 'f');
    const std::string name(10'000, 'n');
    set("SXML_CREATE_STYLE", "SCHEMA");
    set("SXML_CREATE_SCHEMA", "no");
    set("SXML_SCHEMA_NAME", name.c_str());
    set("SXML_SCHEMA_NAMESPACE_DATA", ("a=\"" + filler + "%s\"").c_str());
    XfdBuilder builder = customers();
    const std::string text = document(builder.xfd(), {});
    EXPECT_NE(text.find("<custfile a=\"" + filler + name + "\">\r\n"), std::string::npos);
}

TEST_F(OpenTest, FindsDescriptionsWithAndWithoutSuffix) {
    XfdBuilder builder = customers();
    Xfd* const xfd = builder.xfd();
    struct Case {
        const char* name;
        int refused;
        bool found;
        std::size_t lookups;
    };
    const Case cases[] = {{"one.xml", 0, true, 1},  {"one.xml", 1, true, 2},
                          {"two.XmL", 1, true, 2},  {"two.xml", 2, false, 2},
                          {"one.txt", 1, false, 1}, {"xml", 1, false, 1}};
    for (const Case& c : cases) {
        const std::string name = path(c.name);
        const std::string shorter = name.substr(0, name.rfind('.'));
        describe(name, xfd);
        describe(shorter, xfd);
        refuse_lookups(c.refused);
        const std::size_t before = lookups().size();
        XmlFile* const file = module().open(name.c_str(), 0x7FFFFFF1);
        EXPECT_EQ(file != nullptr, c.found) << c.name;
        EXPECT_EQ(lookups().size() - before, c.lookups) << c.name;
        EXPECT_EQ(lookups().back(), c.lookups == 2 ? shorter : name);
        EXPECT_EQ(*host_file_error(), HOST_FILE_OK);
        EXPECT_TRUE(std::filesystem::exists(name));
        if (file != nullptr) module().close(file);
    }
}

TEST_F(OpenTest, FailuresLeaveTheirCodeAndTrace) {
    XfdBuilder builder = customers();
    XfdBuilder without_items("empty");
    describe(path("known"), builder.xfd());
    describe(path("no/folder/known"), builder.xfd());
    describe(path("empty"), without_items.xfd());
    struct Case {
        const char* name;
        std::int32_t mode;
        int code;
        const char* last_trace;
    };
    const Case cases[] = {
        {"known", 2, HOST_FILE_UNSUPPORTED, "Leaving, open mode not supported"},
        {"known", 3, HOST_FILE_UNSUPPORTED, "Leaving, open mode not supported"},
        {"unknown", 1, HOST_FILE_OK, "Leaving, failed to parse XFD file"},
        {"empty", 1, HOST_FILE_OK, "Leaving, failed to parse XFD file"},
        {"no/folder/known", 1, HOST_FILE_OK, "Leaving, failed to open xml file"},
    };
    for (const Case& c : cases) {
        const std::string name = path(c.name);
        host::set_trace(1, path("trace"));
        EXPECT_EQ(module().open(name.c_str(), c.mode), nullptr);
        host::set_trace(0, "");
        EXPECT_EQ(*host_file_error(), c.code) << c.name;
        EXPECT_EQ(read(path("trace")), "xml_sopen: '" + name + "', " + std::to_string(c.mode) +
                                           ", 0, 0, 0, 0, 'NULL', 0\n" + c.last_trace + "\n");
    }
    EXPECT_FALSE(std::filesystem::exists(path("known")));
    EXPECT_TRUE(std::filesystem::exists(path("unknown")));
}

// Whatever allocation fails, the open reports it or succeeds, and nothing is left behind.
TEST_F(OpenTest, EveryAllocationMayFail) {
    XfdBuilder builder = customers();
    describe(path("sweep"), builder.xfd());
    const std::string name = path("sweep.xml");
    const std::string schema = path("sweep.xsd");
    set("SXML_SCHEMA_NAME", schema.c_str());
    for (const char* style : {"NONE", "DTD", "SCHEMA"}) {
        set("SXML_CREATE_STYLE", style);
        bool failed = true;
        for (std::uint64_t n = 1; failed; ++n) {
            ASSERT_LT(n, 1000U);
            refuse_lookups(1);  // so that the name is copied
            host::fail_allocation(n);
            XmlFile* const file = module().open(name.c_str(), XML_OPEN_OUTPUT);
            const int code = *host_file_error();
            if (file != nullptr) {
                module().write(file, SMITH.data(), static_cast<std::uint32_t>(SMITH.size()));
                module().close(file);
                EXPECT_NE(read(name).find("</custfile>"), std::string::npos);
            }
            failed = host::allocation_failed();
            host::fail_allocation(0);
            EXPECT_EQ(code, file != nullptr ? HOST_FILE_OK : HOST_FILE_NO_MEMORY) << style << n;
            EXPECT_TRUE(failed || file != nullptr);
            EXPECT_TRUE(host::live_blocks().empty()) << style << n << host::leak_report();
        }
    }
}

}  // namespace
