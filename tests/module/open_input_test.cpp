// Opening for input: names, retries, failures.
#include <filesystem>

#include "host/runtime/memory/memory_report.h"
#include "host/runtime/trace_control.h"
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

using OpenInputTest = ModuleTest;

TEST_F(OpenInputTest, NamesAndFailures) {
    struct Case {
        const char* name;    // to open
        const char* stored;  // name of the document; null: there is none
        const char* document;
        int code;  // 0: it opens
        const char* last_trace;
    };
    const char* const success = "Leaving, success";
    const char* const missing = "Leaving, open input failed: 2";
    const char* const invalid = nullptr;  // nothing of the open's own
    const Case cases[] = {
        {"a.xml", "a.xml", "<f/>", 0, success},
        {"a", "a.xml", "<f></f>", 0, success},
        {"a", "a", "<f><", 0, success},
        {"a", "a.xml", "<f>&x;", 0, success},
        {"a", nullptr, "", 15, missing},
        {"a.xml", nullptr, "", 15, missing},
        {"no/a", nullptr, "", 15, missing},
        {"a", "a", "", 8, invalid},
        {"a", "a", "<!-- nothing -->\n", 8, invalid},
        {"a", "a", "<f", 8, invalid},
        {"a", "a", "text", 8, invalid},
        {"a", "a", "<f a='1' a='2'>", 19, invalid},
        {"a", "a", "<?xml?><f/>", 19, invalid},
        {"a", "a.xml", "<?xml?><f/>", 15, "Leaving, open input failed: "},
        {"a", "a.xml", "", 8, invalid},
    };
    XfdBuilder builder = orders();
    for (const Case& c : cases) {
        const std::string name = path(c.name);
        describe(name, builder.xfd(true));
        const std::string stored = c.stored != nullptr ? path(c.stored) : "";
        if (c.stored != nullptr) store(stored, c.document);
        host::set_trace(1, path("trace"));
        XmlFile* const file = module().open(name.c_str(), XML_OPEN_INPUT);
        host::set_trace(0, "");
        EXPECT_EQ(*host_file_error(), c.code) << c.name << c.document;
        EXPECT_EQ(file != nullptr, c.code == 0);
        if (file != nullptr) module().close(file);
        EXPECT_TRUE(host::live_blocks().empty()) << c.name << c.document << host::leak_report();
        const std::string head = "xml_sopen: '" + name + "', 0, 0, 0, 0, 0, 'NULL', 0\n";
        const std::string trace = read(path("trace"));
        EXPECT_TRUE(trace.starts_with(head + (c.last_trace != nullptr ? c.last_trace : "")))
            << c.name << c.document << trace;
        if (c.last_trace == nullptr) {
            EXPECT_EQ(trace, head);
        }
        std::filesystem::remove(stored);
    }
}

TEST_F(OpenInputTest, UrlsThatCannotBeFetched) {
    XfdBuilder builder = orders();
    describe("http://127.0.0.1:1/orders.xml", builder.xfd(true));
    EXPECT_EQ(module().open("http://127.0.0.1:1/orders.xml", XML_OPEN_INPUT), nullptr);
    EXPECT_EQ(*host_file_error(), HOST_FILE_CANNOT_OPEN);
}

}  // namespace
