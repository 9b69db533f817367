// A host that refuses encoding support: the encoding setting is only a name.
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

class NoEncodingTest : public ModuleTest {
  protected:
    static void SetUpTestSuite() { encodings_granted = false; }
};

TEST_F(NoEncodingTest, NamesTheEncodingAsItIsSet) {
    const std::string schema = path("a.xsd");
    set("SXML_CREATE_STYLE", "SCHEMA");
    set("SXML_SCHEMA_NAME", schema.c_str());
    XfdBuilder builder = customers();
    const std::pair<const char*, std::string> cases[] = {
        {nullptr, "UTF-8"}, {"x-unknown", "x-unknown"}, {"UTF-16", "UTF-16"}, {"", ""}};
    for (const auto& [value, name] : cases) {
        set("SXML_ENCODING", value);
        const std::string expected = "<?xml version=\"1.0\" encoding=\"" + name + "\"?>\r\n<";
        EXPECT_TRUE(document(builder.xfd(), {}).starts_with(expected)) << name;
        EXPECT_TRUE(read(schema).starts_with(expected)) << name;
    }
}

}  // namespace
