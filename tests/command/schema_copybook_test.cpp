// Copybooks made from XML Schemas: cobc compiles them, xmllint says which documents are valid, and
// with the copybook such a document goes into records and comes back.

#include <filesystem>
#include <utility>

#include "tests/command/command_run.h"
#include "tests/command/contents.h"

namespace {

const std::string BEGIN =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns='urn:o' "
    "targetNamespace='urn:o' elementFormDefault='qualified'>\n";

std::string record_of(const std::string& elements) {
    return BEGIN +
           "<xs:element name='all'><xs:complexType><xs:sequence>"
           "<xs:element name='r' maxOccurs='unbounded'><xs:complexType><xs:sequence>" +
           elements +
           "</xs:sequence></xs:complexType></xs:element>"
           "</xs:sequence></xs:complexType></xs:element></xs:schema>";
}

const std::string ORDERS =
    BEGIN +
    "<xs:include schemaLocation='sub/types.xsd'/>\n"
    "<xs:import namespace='urn:c' schemaLocation='sub/common.xsd'/>\n"
    "<xs:import namespace='http://www.w3.org/XML/1998/namespace' "
    "schemaLocation='http://localhost:1/xml.xsd'/>\n"
    "<xs:element name='orders'><xs:complexType><xs:sequence>"
    "<xs:element name='order' type='Order' maxOccurs='unbounded'/>"
    "</xs:sequence></xs:complexType></xs:element>\n"
    "<xs:complexType name='Base'><xs:sequence>"
    "<xs:element name='code' type='xs:unsignedInt'/><xs:element name='day' type='xs:date'/>"
    "</xs:sequence></xs:complexType>\n"
    "<xs:complexType name='Order'><xs:complexContent><xs:extension base='Base'>"
    "<xs:sequence><xs:element name='customer' xmlns:c='urn:c' type='c:Party'/>"
    "<xs:group ref='Totals'/><xs:element name='item' maxOccurs='3'><xs:complexType>"
    "<xs:sequence><xs:element name='article' type='Article'/>"
    "<xs:element name='price' type='Money'/></xs:sequence></xs:complexType></xs:element>"
    "<xs:choice><xs:element name='pickup' type='xs:boolean'/>"
    "<xs:element ref='delivery'/></xs:choice>"
    "<xs:element name='discount' nillable='true' type='Money'/></xs:sequence>"
    "</xs:extension></xs:complexContent></xs:complexType>\n"
    "<xs:element name='delivery' abstract='true'/>"
    "<xs:element name='courier' substitutionGroup='delivery' type='Article'/>"
    "<xs:group name='Totals'><xs:sequence><xs:element name='net' type='Money'/>"
    "</xs:sequence></xs:group></xs:schema>";

const std::string ORDER_DOCUMENT =
    "<orders xmlns='urn:o'><order><code>4294967295</code><day>2026-11-23+01:00</day><customer>"
    "<name xmlns=''>Forty characters are as many as it takes</name><land xmlns=''>FRA</land>"
    "</customer><net>-123456789</net><item><article>twelve chars</article><price>1234567.89</price>"
    "</item><item><article>b</article><price>2.00</price></item><courier>c</courier>"
    "<discount>-1.5</discount></order></orders>";

TEST_F(CommandTest, MakesACopybookOfASchema) {
    write_file("orders.xsd", ORDERS);
    std::filesystem::create_directory("sub");
    write_file("sub/types.xsd",
               "<schema xmlns='http://www.w3.org/2001/XMLSchema'>"
               "<include schemaLocation='../orders.xsd'/>"
               "<simpleType name='Article'><restriction base='token'><maxLength value='12'/>"
               "</restriction></simpleType><simpleType name='Money'><restriction base='decimal'>"
               "<totalDigits value='9'/><fractionDigits value='2'/></restriction></simpleType>"
               "</schema>");
    write_file("sub/common.xsd",
               "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:c='urn:c' "
               "targetNamespace='urn:c'><xs:complexType name='Party'><xs:sequence>"
               "<xs:element name='name' type='c:Name'/><xs:element name='land'><xs:simpleType>"
               "<xs:restriction base='xs:string'><xs:enumeration value='DE'/>"
               "<xs:enumeration value='FRA'/></xs:restriction></xs:simpleType></xs:element>"
               "</xs:sequence></xs:complexType><xs:simpleType name='Name'><xs:restriction "
               "base='xs:string'><xs:maxLength value='40'/></xs:restriction></xs:simpleType>"
               "</xs:schema>");
    write_file("orders.xml", ORDER_DOCUMENT);
    write_file("reader.cbl",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. READER.\n"
               "       DATA DIVISION.\n       WORKING-STORAGE SECTION.\n"
               "       COPY \"orders.cpy\".\n       PROCEDURE DIVISION.\n           STOP RUN.\n");
    const Outcome made = sxml({"copybook", "orders.xsd", "-o", "orders.cpy"});
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(made.err, "");
    const std::string copybook = read_file("orders.cpy");
    for (const std::string part :
         {"CODE PIC 9(10).", "*>   xs:date, at most 16 characters\n", "NAME PIC X(40).",
          "*>   xs:string: DE FRA\n", "LAND PIC X(3).", "NET PIC S9(9)V9(2).", "ITEM OCCURS 3.",
          "*>   1 to 3 times\n", "ARTICLE PIC X(12).",
          "*>   xs:boolean, at most 5 characters; optional\n", "COURIER PIC X(12).",
          "DISCOUNT PIC X(13)."}) {
        EXPECT_NE(copybook.find(part), std::string::npos) << part << "\nin: " << copybook;
    }
    const Outcome compiled = run({"cobc", "-fsyntax-only", "reader.cbl"});
    EXPECT_EQ(compiled.status, 0) << compiled.err << copybook;
    const Outcome valid =
        run({"xmllint", "--nonet", "--noout", "--schema", "orders.xsd", "orders.xml"});
    EXPECT_EQ(valid.status, 0) << valid.err;
    const Outcome checked = sxml({"check", "orders.xml", "--layout", "orders.cpy"});
    EXPECT_EQ(checked.status, 0) << checked.out << checked.err;
    ASSERT_EQ(sxml({"from-xml", "orders.xml", "o.dat", "-l", "orders.cpy", "--strict"}).status, 0);
    ASSERT_EQ(sxml({"to-xml", "o.dat", "again.xml", "-l", "orders.cpy"}).status, 0);
    std::string sent = ORDER_DOCUMENT;
    sent.replace(sent.find("-123456789<"), 10, "-123456789.00");
    EXPECT_EQ(contents_of(read_file("again.xml")), contents_of(sent)) << copybook;

    // Samples say what the schema leaves open, and how names are written.
    write_file("o.xml",
               "<p:orders xmlns:p='urn:o'><p:order><p:code>1</p:code></p:order></p:orders>");
    const Outcome both = sxml({"copybook", "o.xml", "orders.xsd"});
    EXPECT_NE(both.out.find("sxml: name p:net"), std::string::npos) << both.out << both.err;
    EXPECT_NE(both.out.find("sxml: name p:code"), std::string::npos) << both.out;
    const Outcome sampled = sxml({"copybook", "o.xml", "orders.xsd", "--sampled"});
    EXPECT_EQ(sampled.out.find("p:net"), std::string::npos) << sampled.out;
    const Outcome path = sxml({"copybook", "orders.xsd", "--record", "orders/order/item"});
    EXPECT_NE(path.out.find("01  ITEM-RECORD."), std::string::npos) << path.out << path.err;
}

// Types and what fields they get.
TEST_F(CommandTest, TakesFieldsFromTheTypesOfASchema) {
    const auto restricted = [](const std::string& base, const std::string& facets) {
        return "<xs:simpleType><xs:restriction base='xs:" + base + "'>" + facets +
               "</xs:restriction></xs:simpleType>";
    };
    const std::string two_digits = "<xs:totalDigits value='18'/><xs:fractionDigits value='5'/>";
    const std::vector<std::pair<std::string, std::string>> types = {
        {restricted("string", "<xs:length value='7'/>"), "PIC X(7)"},
        {restricted("hexBinary", "<xs:length value='7'/>"), "PIC X(14)"},
        {restricted("base64Binary", "<xs:maxLength value='7'/>"), "PIC X(12)"},
        {restricted("string",
                    "<xs:enumeration value=''/><xs:enumeration value='\xC3\xA9\xC3\xA9'/>"),
         "PIC X(2)"},
        {restricted("decimal", two_digits), "PIC S9(13)V9(5)"},
        {restricted("decimal", "<xs:totalDigits value='4'/>"), "PIC S9(4)V9(4)"},
        {restricted("decimal", "<xs:totalDigits value='60'/>"), "PIC X(62)"},
        {restricted("decimal",
                    "<xs:fractionDigits value='2'/><xs:minInclusive value='0'/>"
                    "<xs:maxExclusive value='01000'/>"),
         "PIC 9(4)V9(2)"},
        {restricted("integer", "<xs:minInclusive value='-99999'/><xs:maxInclusive value='9'/>"),
         "PIC S9(5)"},
        {restricted("int", "<xs:enumeration value='1'/><xs:enumeration value='250'/>"), "PIC 9(3)"},
        {restricted("dateTime", ""), "PIC X(35)"},
        {restricted("long", ""), "PIC S9(19)"},
        {restricted("unsignedByte", ""), "PIC 9(3)"},
        {"<xs:simpleType><xs:union memberTypes='xs:short'><xs:simpleType><xs:restriction "
         "base='xs:string'><xs:enumeration value=''/></xs:restriction></xs:simpleType></xs:union>"
         "</xs:simpleType>",
         "PIC X(7)"},
        {"<xs:complexType><xs:simpleContent><xs:restriction base='Amount'><xs:totalDigits "
         "value='5'/></xs:restriction></xs:simpleContent></xs:complexType>",
         "PIC S9(5)V9(2)"},
        {"<xs:complexType/>", "PIC X(1)"},
    };
    std::string elements;
    for (std::size_t i = 0; i < types.size(); ++i) {
        elements +=
            "<xs:element name='f" + std::to_string(i) + "'>" + types[i].first + "</xs:element>\n";
    }
    std::string schema = record_of(elements);
    schema.insert(schema.rfind("</xs:schema>"),
                  "<xs:complexType name='Amount'><xs:simpleContent><xs:extension base='Cents'/>"
                  "</xs:simpleContent></xs:complexType><xs:simpleType name='Cents'>"
                  "<xs:restriction base='xs:decimal'><xs:fractionDigits value='2'/>"
                  "</xs:restriction></xs:simpleType>");
    write_file("t.xsd", schema);
    write_file("reader.cbl",
               "       IDENTIFICATION DIVISION.\n       PROGRAM-ID. READER.\n"
               "       DATA DIVISION.\n       WORKING-STORAGE SECTION.\n"
               "       COPY \"t.cpy\".\n       PROCEDURE DIVISION.\n           STOP RUN.\n");
    const Outcome made = sxml({"copybook", "t.xsd", "-o", "t.cpy"});
    EXPECT_EQ(made.err, "");
    const std::string copybook = read_file("t.cpy");
    for (std::size_t i = 0; i < types.size(); ++i) {
        const std::string entry = "F" + std::to_string(i) + " " + types[i].second + ".\n";
        EXPECT_NE(copybook.find(entry), std::string::npos) << entry << "in: " << copybook;
    }
    const Outcome compiled = run({"cobc", "-fsyntax-only", "reader.cbl"});
    EXPECT_EQ(compiled.status, 0) << compiled.err << copybook;
    // xmllint rejects a schema that is none.
    write_file("t.xml", "<t/>");
    EXPECT_EQ(run({"xmllint", "--noout", "--schema", "t.xsd", "t.xml"}).status, 3);
}

std::string groups_of_groups() {
    std::string schema = BEGIN +
                         "<xs:group name='g0'><xs:sequence><xs:element name='a'/>"
                         "</xs:sequence></xs:group>";
    for (int i = 1; i <= 50; ++i) {
        const std::string inner = "<xs:group ref='g" + std::to_string(i - 1) + "'/>";
        schema += "<xs:group name='g" + std::to_string(i) + "'><xs:sequence>" + inner + inner +
                  "</xs:sequence></xs:group>";
    }
    return schema +
           "<xs:element name='all'><xs:complexType><xs:group ref='g50'/></xs:complexType>"
           "</xs:element></xs:schema>";
}

std::string types_of_types() {
    std::string schema = BEGIN + "<xs:element name='all' type='t0'/>";
    for (int i = 0; i < 40; ++i) {
        const std::string type = "' type='t" + std::to_string(i + 1) + "'/>";
        schema += "<xs:complexType name='t" + std::to_string(i) + "'><xs:sequence>";
        for (const std::string name : {"a", "b", "c"}) {
            schema += "<xs:element name='" + name + type;
        }
        schema += "</xs:sequence></xs:complexType>";
    }
    return schema + "<xs:complexType name='t40'/></xs:schema>";
}

std::string deep_groups() {
    std::string schema = BEGIN;
    for (int i = 0; i < 300; ++i) schema += "<xs:sequence>";
    return schema;
}

// No document nests deeper than is allowed, but they do together.
std::string deep_groups_of_groups() {
    std::string schema = BEGIN;
    for (int i = 0; i < 20; ++i) {
        schema += "<xs:group name='g" + std::to_string(i) + "'>";
        for (int depth = 0; depth < 245; ++depth) schema += "<xs:sequence>";
        schema += "<xs:group ref='g" + std::to_string(i + 1) + "'/>";
        for (int depth = 0; depth < 245; ++depth) schema += "</xs:sequence>";
        schema += "</xs:group>";
    }
    return schema +
           "<xs:group name='g20'><xs:sequence/></xs:group><xs:element name='all'><xs:complexType>"
           "<xs:group ref='g0'/></xs:complexType></xs:element></xs:schema>";
}

// What has no form in records is said with its place; what is hostile ends with an error.
TEST_F(CommandTest, SaysWhatASchemaHasThatRecordsHaveNot) {
    struct Case {
        const char* name;
        std::string schema;
        int status;
        std::string said;
    };
    std::string bomb = "<!DOCTYPE s [<!ENTITY e0 'ha'>";
    for (int i = 1; i < 40; ++i) {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + inner + inner + "'>";
    }
    const std::string node = "<xs:element name='id' type='xs:int'/>";
    const std::vector<Case> cases = {
        {"mixed",
         record_of("<xs:element name='m'><xs:complexType mixed='true'><xs:sequence>" + node +
                   "</xs:sequence></xs:complexType></xs:element>"),
         0, "t.xsd:2:"},
        {"mixed by a number",
         record_of("<xs:element name='m'><xs:complexType><xs:complexContent mixed='1'>"
                   "<xs:restriction base='xs:anyType'><xs:sequence>" +
                   node +
                   "</xs:sequence></xs:restriction></xs:complexContent></xs:complexType>"
                   "</xs:element>"),
         0, "r/m: mixed content"},
        {"any", record_of(node + "<xs:any/>"), 0, "r: may hold elements of any name"},
        {"attribute",
         record_of(node + "<xs:element name='m'><xs:complexType><xs:sequence>" + node +
                   "</xs:sequence><xs:attribute name='a'/></xs:complexType>"
                   "</xs:element>"),
         0, "r/m: attributes cannot be read"},
        {"no limit", record_of("<xs:element name='m' type='xs:string'/>"), 0,
         "t.xsd:2:125: r/m: may be of any length; the picture is a guess"},
        {"unbounded",
         record_of("<xs:element name='m' type='xs:int' maxOccurs='99999999999999999999'/>"), 0,
         "r/m: may occur any number of times; 10 is a guess"},
        {"recursion",
         BEGIN +
             "<xs:element name='all'><xs:complexType><xs:sequence><xs:element name='r' "
             "type='N'/></xs:sequence></xs:complexType></xs:element><xs:complexType name='N'>"
             "<xs:sequence>" +
             node +
             "<xs:element name='n' type='N'/></xs:sequence>"
             "</xs:complexType></xs:schema>",
         0, "r/n: contains elements of its own type"},
        {"type of itself",
         record_of("<xs:element name='m' type='T'/>")
             .insert(BEGIN.size(),
                     "<xs:simpleType name='T'><xs:restriction base='T'/></xs:simpleType>"),
         1, "derived from itself"},
        {"extends itself",
         record_of("<xs:element name='m' type='T'/>")
             .insert(BEGIN.size(),
                     "<xs:complexType name='T'><xs:complexContent><xs:extension base='T'/>"
                     "</xs:complexContent></xs:complexType>"),
         1, "contains or extends itself"},
        {"group of itself",
         record_of("<xs:group ref='g'/>")
             .insert(
                 BEGIN.size(),
                 "<xs:group name='g'><xs:sequence><xs:group ref='g'/></xs:sequence></xs:group>"),
         1, "contains or extends itself"},
        {"unknown type", record_of("<xs:element name='m' type='T'/>"), 1,
         "t.xsd:2:125: the type T is not declared"},
        {"groups", groups_of_groups(), 1, "too large when its groups are put together"},
        {"types", types_of_types(), 1, "more than 100000 different elements"},
        {"depth", deep_groups(), 1, "nests deeper than 256"},
        {"depth over groups", deep_groups_of_groups(), 1, "or nests too deep"},
        {"entities", bomb + "]>" + BEGIN + "<xs:documentation>&e39;</xs:documentation></xs:schema>",
         1, "t.xsd:"},
        {"missing file", BEGIN + "<xs:include schemaLocation='no.xsd'/></xs:schema>", 1,
         "t.xsd:2:1: no.xsd: No such file"},
        {"endless file", BEGIN + "<xs:include schemaLocation='/dev/zero'/></xs:schema>", 1,
         "t.xsd:2:1: /dev/zero: not a regular file"},
        {"no schema", BEGIN + "<xs:include schemaLocation='s.xml'/></xs:schema>", 1,
         "s.xml:1:1: the document is not an XML Schema"},
        {"no element", BEGIN + "</xs:schema>", 1, "declares no element"},
        {"several", BEGIN + "<xs:element name='a'/><xs:element name='b'/></xs:schema>", 1,
         "several elements can be the document element: a, b"},
        {"redefine", BEGIN + "<xs:redefine schemaLocation='s.xml'/></xs:schema>", 1,
         "t.xsd:2:1: xs:redefine is not supported"},
        {"unclosed", BEGIN + "<xs:element name='all'>", 1, "t.xsd:2:24: no element found"},
        {"tables",
         record_of("<xs:element name='m' maxOccurs='30000'><xs:complexType><xs:sequence>"
                   "<xs:element name='n' maxOccurs='30000' type='xs:int'/>"
                   "</xs:sequence></xs:complexType></xs:element>"),
         1, "a record would have more than 1000000 fields"},
    };
    write_file("s.xml", "<s/>");
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        write_file("t.xsd", one.schema);
        const Outcome outcome = sxml({"copybook", "t.xsd"});
        EXPECT_EQ(outcome.status, one.status) << outcome.err;
        EXPECT_NE(outcome.err.find(one.said), std::string::npos) << outcome.err << outcome.out;
        EXPECT_EQ(read_file("t.xsd"), one.schema);
    }
    write_file("t.xsd", record_of(node));
    EXPECT_EQ(sxml({"copybook", "t.xsd", "--sampled"}).status, 2);
    EXPECT_EQ(sxml({"copybook", "t.xsd", "-o", "t.xsd"}).status, 2);
    const Outcome other = sxml({"copybook", "t.xsd", "s.xml"});
    EXPECT_NE(other.err.find("no schema declares the document element s"), std::string::npos);
}

// Numbers of a sample fit, whatever the schema leaves for them.
TEST_F(CommandTest, MakesRoomForTheNumbersOfASample) {
    const auto decimals = [](int digits) { return "type='D" + std::to_string(digits) + "'/>"; };
    std::string schema = record_of(
        "<xs:element name='a' " + decimals(18) + "<xs:element name='b' " + decimals(20) +
        "<xs:element name='c' " + decimals(37) + "<xs:element name='d' type='xs:unsignedByte'/>");
    for (const int digits : {18, 20, 37}) {
        const std::string number = std::to_string(digits);
        schema.insert(BEGIN.size(), "<xs:simpleType name='D" + number +
                                        "'><xs:restriction base='xs:decimal'><xs:fractionDigits "
                                        "value='" +
                                        number + "'/></xs:restriction></xs:simpleType>");
    }
    write_file("t.xsd", schema);
    write_file("s.xml",
               "<all xmlns='urn:o'><r><a>12.5</a><b>-312.5</b><c>12.5</c><d>-1234</d></r></all>");
    ASSERT_EQ(sxml({"copybook", "t.xsd", "s.xml", "-o", "t.cpy"}).err, "");
    const std::string copybook = read_file("t.cpy");
    for (const std::string part :
         {"A PIC S9(2)V9(18).", "B PIC S9(3)V9(20).", "C PIC X(41).", "D PIC S9(4)."}) {
        EXPECT_NE(copybook.find(part), std::string::npos) << part << "\nin: " << copybook;
    }
    ASSERT_EQ(sxml({"from-xml", "s.xml", "s.dat", "-l", "t.cpy", "--strict"}).status, 0);
    ASSERT_EQ(sxml({"to-xml", "s.dat", "again.xml", "-l", "t.cpy"}).status, 0);
    EXPECT_EQ(
        contents_of(read_file("again.xml")),
        (std::vector<std::string>{"r/a/12.5" + std::string(17, '0'),
                                  "r/b/-312.5" + std::string(19, '0'), "r/c/12.5", "r/d/-1234"}));
    // Without the sample, too, something is before the point.
    EXPECT_NE(sxml({"copybook", "t.xsd"}).out.find("B PIC S9(1)V9(20)."), std::string::npos);
}

// Schemas that import each other count as given in any order. One from standard input names files
// of the current folder, not of that where a copy of it is kept.
TEST_F(CommandTest, FindsTheSchemasThatAreGiven) {
    std::string imported = record_of("<xs:element name='id' type='T'/>");
    imported.insert(BEGIN.size(), "<xs:include schemaLocation='types.xsd'/>");
    write_file("o.xsd", imported);
    write_file("first.xsd",
               "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:import "
               "namespace='urn:o' schemaLocation='o.xsd'/><xs:element name='x'/></xs:schema>");
    const auto types = [](const std::string& length) {
        return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:simpleType name='T'>"
               "<xs:restriction base='xs:string'><xs:length value='" +
               length + "'/></xs:restriction></xs:simpleType></xs:schema>";
    };
    write_file("types.xsd", types("5"));
    write_file("s.xml", "<all xmlns='urn:o'><r><id>7</id></r></all>");
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"copybook", "first.xsd", "o.xsd", "s.xml"},
          {"copybook", "o.xsd", "first.xsd", "s.xml"},
          {"copybook", "o.xsd", "o.xsd"},
          {"copybook", "-"}}) {
        const Outcome made = sxml(words, imported);
        EXPECT_NE(made.out.find("ID PIC X(5)."), std::string::npos) << words[1] << made.err;
    }
    std::filesystem::create_directory("tmp");
    std::filesystem::rename("types.xsd", "tmp/types.xsd");
    const std::string folder = "TMPDIR=" + (std::filesystem::current_path() / "tmp").string();
    const Outcome missing = run({"env", folder, command_under_test(), "copybook", "-"}, imported);
    EXPECT_EQ(missing.err, "sxml: standard input:2:1: types.xsd: No such file or directory\n");
}

}  // namespace
