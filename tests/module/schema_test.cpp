// DTD and XML Schema, against expected files and judged by xmllint.
#include "tests/module/module_fixture.h"
#include "tests/module/sample_descriptions.h"

namespace {

using SchemaTest = ModuleTest;

TEST_F(SchemaTest, DtdDescribesTheDocument) {
    XfdBuilder builder = customers();
    expect_file(document(builder.xfd(), {SMITH, SMITH}), "customers_dtd.xml");
    expect_valid("--valid " + path("out.xml"));
}

TEST_F(SchemaTest, DtdOffersEveryLayout) {
    XfdBuilder builder = orders();
    expect_file(document(builder.xfd(true), {"H-text", "-D0012"}), "orders_dtd.xml");
    expect_valid("--valid " + path("out.xml"));
    // Without the flag the first is the only layout.
    EXPECT_NE(document(builder.xfd(false), {}).find(" (hdr)*>"), std::string::npos);
}

TEST_F(SchemaTest, SchemaDescribesTheDocument) {
    XfdBuilder builder = customers();
    const std::string schema = path("customer.xsd");
    set("SXML_CREATE_STYLE", "SCHEMA");
    set("SXML_SCHEMA_NAME", schema.c_str());
    const std::string text = document(builder.xfd(), {SMITH});
    EXPECT_NE(text.find("noNamespaceSchemaLocation=\"" + schema + "\">\r\n <customer>\r\n"),
              std::string::npos);
    expect_file(read(schema), "customer.xsd");
    expect_valid("--schema " + schema + " " + path("out.xml"));
}

// Tables in tables, a group in a table, a table after its group; a name that is met again.
TEST_F(SchemaTest, TablesAreDeclaredAtTheirFirstOccurrence) {
    XfdBuilder builder("shop");
    builder.group(1, "order");
    std::string record;
    for (int i = 1; i <= 2; ++i) {
        builder.group(2, "line", 9 * (i - 1));
        builder.occurrence({{i, 2}});
        builder.number(3, "price", 9 * (i - 1), 3, 5, -1, records::PACKED_SIGNED);
        builder.occurrence({{i, 2}});
        for (int j = 1; j <= 3; ++j) {
            builder.text(3, "size", 9 * (i - 1) + 1 + 2 * j, 2);
            builder.occurrence({{i, 2}, {j, 3}});
        }
        record += std::string("\x01\x23\x4D", 3) + "S M L ";
    }
    builder.text(2, "size", 3, 2);
    expect_file(document(builder.xfd(), {record}), "tables_dtd.xml");
    expect_valid("--valid " + path("out.xml"));

    const std::string schema = path("tables.xsd");
    set("SXML_CREATE_STYLE", "SCHEMA");
    set("SXML_SCHEMA_NAME", schema.c_str());
    set("SXML_SCHEMA_DOC", "first line\nsecond & last");
    set("SXML_ENCODING", "x-unknown");
    document(builder.xfd(), {});
    expect_file(read(schema), "tables.xsd");
}

}  // namespace
