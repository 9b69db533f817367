// Elements written as XML and dumped to the trace, byte for byte.
#include <unistd.h>

#include "host/files.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/trace_control.h"
#include "tests/elements/element_test.h"

namespace {

class ElementOutput : public ElementTest {
  protected:
    std::string path = ::testing::TempDir() + "element_output" + std::to_string(getpid());

    ~ElementOutput() override { std::filesystem::remove(path); }

    std::string written(std::uint32_t element, std::uint32_t indent = 0) {
        HostStream* const stream = host_fopen(path.c_str(), "wb", 0);
        const std::uint64_t before = host::allocation_count();
        xml.xml_write_element(stream, 0, element, indent);
        EXPECT_EQ(host::allocation_count(), before) << "writing allocates nothing";
        host_fclose(stream);
        return file_text(path);
    }

    std::string dumped(std::uint32_t element, std::uint32_t indent = 0) {
        host::set_trace(0, path);
        xml.xml_dump_children(element, indent);
        host::set_trace(0, "");
        return file_text(path);
    }
};

TEST_F(ElementOutput, WritesElements) {
    const std::uint32_t order = xml.xml_add_child(0, "order");
    xml.xml_add_comment(order, "first");
    xml.xml_add_attribute(order, "id", "7");
    xml.xml_add_attribute(order, "note", "a<b");
    xml.xml_set_element_value(order, "x < y\t& z", -1, 0);
    const std::uint32_t item = xml.xml_add_child(order, "item");
    xml.xml_append_element_value(item, "1", 1, 0);
    EXPECT_EQ(written(order),
              "<!-- first -->\r\n<order\r\n     id=\"7\"\r\n"
              "     note=\"a&lt;b\">x &lt; y&#x09;&amp; z\r\n  <item>1</item>\r\n</order>\r\n");

    // Comment lines, a line feed in a value, an empty list of children, elements without content.
    xml.xml_clear_comments(order);
    xml.xml_add_comment(order, " one \n\n two> ");
    xml.xml_set_element_value(item, " a\nb ", -1, 2);
    xml.xml_free_element(xml.xml_add_child(item, "gone"));
    xml.xml_set_element_value(order, "", -1, 0);
    const std::uint32_t empty = xml.xml_add_child(order, "empty");
    xml.xml_free_element(xml.xml_add_child(empty, "gone"));
    xml.xml_add_attribute(xml.xml_add_child(order, "only"), "k", " v\t");
    EXPECT_EQ(written(order, 1),
              " <!-- one\r\n      \r\n      two&gt; -->\r\n <order\r\n      id=\"7\"\r\n"
              "      note=\"a&lt;b\">\r\n   <item>a&#x0a;b\r\n   </item>\r\n   <empty/>\r\n"
              "   <only\r\n        k=\"v\"/>\r\n </order>\r\n");
    xml.xml_free_element(order);
}

TEST_F(ElementOutput, DumpsChildren) {
    const std::uint32_t top = xml.xml_add_child(0, "top");
    EXPECT_EQ(dumped(top), "");
    EXPECT_EQ(last_error(), XMLERR_NO_CHILDREN);
    const std::uint32_t row = xml.xml_add_child(top, "row");
    xml.xml_add_attribute(row, "k", "v");
    xml.xml_add_attribute(xml.xml_add_child(top, "row"), "k", "v");
    xml.xml_set_element_value(xml.xml_add_child(top, "item"), "1", 1, 0);
    EXPECT_EQ(dumped(top), " row( 1)\n    k = v\n row( 2)\n    k = v\n item = 1\n");
    EXPECT_EQ(last_error(), XMLERR_NO_SIBLINGS);
    const std::uint32_t cell = xml.xml_add_child(row, "cell");
    xml.xml_add_child(row, "cell");
    xml.xml_add_child(cell, "deep");
    EXPECT_EQ(dumped(top, 2),
              "  row( 1)\n      k = v\n   cell( 1, 1)\n    deep( 1, 1)\n   cell( 1, 2)\n"
              "  row( 2)\n      k = v\n  item = 1\n");
    xml.xml_free_element(top);
}

TEST_F(ElementOutput, WritesStringsAndLineEnds) {
    HostStream* const stream = host_fopen(path.c_str(), "wb", 0);
    EXPECT_EQ(xml.xml_write_newline(stream, 2), 2U);
    EXPECT_EQ(xml.xml_write_string(stream, 2, " <a \n b> ", XML_TEXT_ESCAPE | XML_TEXT_TRIM), 12U);
    host_fclose(stream);
    EXPECT_EQ(file_text(path), "\r\n&lt;a\r\nb&gt;") << "flags work line by line";
}

TEST_F(ElementOutput, IndentsUpToTheLimit) {
    const std::uint32_t top = xml.xml_add_child(0, "e");
    const std::string limit(XML_INDENT_LIMIT, ' ');
    EXPECT_EQ(written(top, XML_INDENT_LIMIT), limit + "<e/>\r\n");
    EXPECT_EQ(written(top, 0xFFFFFFFF), limit + "<e/>\r\n");
    xml.xml_add_child(top, "f");
    EXPECT_EQ(dumped(top, 0xFFFFFFFF), limit + "f\n");
    xml.xml_free_element(top);
}

}  // namespace
