// Building, walking, reading and editing elements, and what bad arguments do.
#include <cstring>
#include <functional>

#include "host/handles.h"
#include "tests/elements/element_test.h"

namespace {

TEST_F(ElementTest, ReportsNoErrorBeforeTheFirstFailure) {
    EXPECT_EQ(api().first_code, XMLERR_NONE);
    EXPECT_EQ(api().first_message, "No error");
    EXPECT_EQ(api().first_is_element, 0);
}

TEST_F(ElementTest, WalksAndInsertsInListOrder) {
    const std::uint32_t top = xml.xml_new_element(0, "top", 0);
    EXPECT_EQ(last_error(), XMLERR_BAD_ELEMENT);  // the lookup of parent 0
    EXPECT_EQ(xml.xml_first_child(top), 0U);
    EXPECT_EQ(last_error(), XMLERR_NO_CHILDREN);
    EXPECT_EQ(xml.xml_parent(top), 0U);
    EXPECT_EQ(last_error(), XMLERR_TOP_LEVEL);
    EXPECT_EQ(xml.xml_next_sibling(top), 0U);
    EXPECT_EQ(last_error(), XMLERR_NO_SIBLINGS);
    EXPECT_EQ(xml.xml_add_sibling(top, "x"), 0U);
    EXPECT_EQ(last_error(), XMLERR_HAS_TOP_LEVEL);
    EXPECT_EQ(xml.xml_add_sibling(0, "x"), 0U);
    EXPECT_EQ(last_error(), XMLERR_HAS_TOP_LEVEL);

    const std::uint32_t b = xml.xml_add_child(top, "b");
    EXPECT_EQ(xml.xml_first_child(top), b);
    EXPECT_EQ(last_error(), XMLERR_HAS_TOP_LEVEL) << "a success clears nothing";
    EXPECT_EQ(xml.xml_previous_sibling(b), 0U);
    EXPECT_EQ(last_error(), XMLERR_NO_SIBLINGS);
    const std::uint32_t a = xml.xml_new_element(top, "a", b);
    xml.xml_parent(top);
    const std::uint32_t e = xml.xml_add_sibling(b, "e");
    EXPECT_EQ(last_error(), XMLERR_NO_SIBLINGS) << "left behind by a last child";
    const std::uint32_t c = xml.xml_add_sibling(b, "c");
    const std::uint32_t below = xml.xml_add_child(c, "below");
    const std::uint32_t f = xml.xml_new_element(top, "f", below);
    const std::uint32_t g = xml.xml_new_element(top, "g", 0xFFFFFFFF);
    EXPECT_EQ(children_of(top), (std::vector<std::uint32_t>{a, b, c, e, f, g}));
    EXPECT_EQ(xml.xml_previous_sibling(c), b);
    EXPECT_EQ(xml.xml_parent(below), c);

    EXPECT_EQ(xml.xml_free_element(c), 1);
    EXPECT_EQ(xml.xml_is_element(below), 0);
    EXPECT_EQ(xml.xml_next_sibling(b), e);
    for (const std::uint32_t child : {a, b, e, f, g}) EXPECT_EQ(xml.xml_free_element(child), 1);
    EXPECT_EQ(describe(top), "top[]");
    EXPECT_EQ(xml.xml_first_child(top), 0U);
    EXPECT_EQ(last_error(), XMLERR_NO_CHILDREN) << "an empty list";
    EXPECT_EQ(xml.xml_free_element(top), 1);
}

TEST_F(ElementTest, KeepsCharacterData) {
    const std::uint32_t top = xml.xml_add_child(0, "v");
    std::uint64_t length = 77;
    EXPECT_EQ(xml.xml_element_value(top, &length), nullptr);
    EXPECT_EQ(last_error(), XMLERR_NO_VALUE);
    EXPECT_EQ(length, 77U);
    EXPECT_EQ(xml.xml_value_encoding(top), -1);

    const auto own = [&] { return xml.xml_element_value(top, nullptr); };
    struct Step {
        std::function<std::int32_t()> change;
        std::int32_t result;
        std::string after;
    };
    const Step steps[] = {
        {[&] { return xml.xml_append_element_value(top, "abcXY", 3, 7); }, 1, "v[]=abc@7"},
        {[&] { return xml.xml_append_element_value(top, "def", -1, 2); }, 1, "v[]=abcdef@7"},
        {[&] { return xml.xml_set_element_value(top, own(), 7, 7); }, 0, "v[]=abcdef@7"},
        {[&] { return xml.xml_set_element_value(top, own(), 6, 7); }, 1, "v[]=abcdef@7"},
        {[&] { return xml.xml_set_element_value(top, own(), 4, 2); }, 1, "v[]=abcd@2"},
        {[&] { return xml.xml_set_element_value(top, own() + 1, 2, 2); }, 1, "v[]=bc@2"},
        {[&] { return xml.xml_append_element_value(top, own(), -1, 2); }, 1, "v[]=bcbc@2"},
        {[&] { return xml.xml_set_element_value(top, "a longer text than before", -1, 0); }, 1,
         "v[]=a longer text than before@0"},
        {[&] { return xml.xml_set_element_value(top, "new", 3, 3); }, 1, "v[]=new@3"},
        {[&] { return xml.xml_set_element_value(top, nullptr, 5, 1); }, 1, "v[]=@1"},
        {[&] { return xml.xml_append_element_value(top, nullptr, -1, 2); }, 1, "v[]=@1"},
    };
    for (const Step& step : steps) {
        EXPECT_EQ(step.change(), step.result) << step.after;
        EXPECT_EQ(describe(top), step.after);
    }
    EXPECT_NE(xml.xml_element_value(top, &length), nullptr);
    EXPECT_EQ(length, 0U);
    xml.xml_free_element(top);
}

TEST_F(ElementTest, KeepsAttributesCommentsAndUserData) {
    const std::uint32_t top = xml.xml_add_child(0, "e");
    EXPECT_EQ(xml.xml_attribute_count(top), 0U);
    EXPECT_EQ(last_error(), XMLERR_NO_ATTRIBUTES);
    EXPECT_EQ(xml.xml_attribute_name(top, 0), nullptr);
    EXPECT_EQ(last_error(), XMLERR_BAD_ATTRIBUTE);
    EXPECT_EQ(xml.xml_set_attribute_value(top, 0, "x"), 0);
    EXPECT_EQ(last_error(), XMLERR_NO_ATTRIBUTES);
    EXPECT_EQ(xml.xml_add_attribute(top, "a", "1"), 1U);
    EXPECT_EQ(xml.xml_add_attribute(top, "a", "2"), 2U);
    EXPECT_EQ(xml.xml_add_attribute(top, "b", nullptr), 3U);
    EXPECT_EQ(xml.xml_set_attribute_value(top, 3, "x"), 0);
    EXPECT_EQ(last_error(), XMLERR_NO_ATTRIBUTES) << "no error of its own";
    EXPECT_EQ(xml.xml_attribute_value(top, 3), nullptr);
    EXPECT_EQ(last_error(), XMLERR_BAD_ATTRIBUTE);
    EXPECT_EQ(xml.xml_set_attribute_value(top, 1, "a value of more than a few bytes"), 1);
    EXPECT_EQ(describe(top), "e[] a:1 a:a value of more than a few bytes b:");
    EXPECT_EQ(xml.xml_set_attribute_value(top, 1, xml.xml_attribute_value(top, 1) + 27), 1);
    EXPECT_EQ(xml.xml_delete_attribute(top, 0), 1);
    EXPECT_EQ(describe(top), "e[] a:bytes b:");
    EXPECT_EQ(xml.xml_delete_attribute(top, 2), 0);
    EXPECT_EQ(last_error(), XMLERR_BAD_ATTRIBUTE);
    EXPECT_TRUE(xml.xml_delete_attribute(top, 0) && xml.xml_delete_attribute(top, 0));
    xml.xml_parent(top);
    EXPECT_EQ(xml.xml_attribute_count(top), 0U);
    EXPECT_EQ(last_error(), XMLERR_TOP_LEVEL) << "an emptied array is no error";

    std::uint64_t length = 5;
    EXPECT_EQ(xml.xml_element_comments(top, &length), nullptr);
    EXPECT_EQ(length, 0U);
    EXPECT_TRUE(xml.xml_add_comment(top, "one") && xml.xml_add_comment(top, "two"));
    EXPECT_STREQ(xml.xml_element_comments(top, &length), "onetwo");
    EXPECT_EQ(length, 6U);
    xml.xml_clear_comments(top);
    EXPECT_EQ(xml.xml_element_comments(top, nullptr), nullptr);

    EXPECT_EQ(xml.xml_get_user_data(top), nullptr);
    EXPECT_EQ(xml.xml_set_user_data(top, &length), 1);
    EXPECT_EQ(xml.xml_set_user_data(top, this), 0);
    EXPECT_EQ(xml.xml_get_user_data(top), &length);
    EXPECT_EQ(last_error(), XMLERR_TOP_LEVEL);
    xml.xml_free_element(top);

    char copy[4] = {};
    EXPECT_EQ(xml.xml_copy_string(copy, 0, "abc"), 3U);
    EXPECT_STREQ(copy, "abc");
}

// The failure value of every function that takes an element, for a handle that is none.
const std::function<bool(const XmlApi&, std::uint32_t)> failures[] = {
    [](const XmlApi& x, std::uint32_t h) { return x.xml_free_element(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_set_user_data(h, &h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_get_user_data(h) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_first_child(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_next_sibling(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_previous_sibling(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_parent(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_element_name(h) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_element_value(h, nullptr) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_last_index(h) == -1; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_element_index(h, 0) == XML_NO_INDEX; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_attribute_count(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_attribute_name(h, 0) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_attribute_value(h, 0) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_set_element_value(h, "", 0, 0) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_append_element_value(h, "", 0, 0) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_set_attribute_value(h, 0, "") == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_add_attribute(h, "", "") == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_delete_attribute(h, 0) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_add_comment(h, "") == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_clear_comments(h), true; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_element_comments(h, nullptr) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_write_element(nullptr, 0, h, 0), true; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_dump_children(h, 0), true; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_value_encoding(h) == -1; },
};

TEST_F(ElementTest, RefusesHandlesThatAreNoElements) {
    HostHandleType type{};
    type.object_size = 8;
    type.kind = HOST_HANDLE_KIND;
    const std::uint32_t other =
        host_handle_new(host_handle_type_register(&type), 0, 0, "test", __LINE__, "other type", 0);
    const std::uint32_t top = xml.xml_add_child(0, "top");
    const std::uint32_t stale = xml.xml_add_child(top, "stale");
    xml.xml_free_element(stale);
    const std::uint32_t reused = xml.xml_add_child(top, "reused");

    for (const std::uint32_t bad : {0U, stale, other, 1U, 0x7FFFFFFFU, 0xFFFFFFFFU, top + 77777U}) {
        for (std::size_t i = 0; i < std::size(failures); ++i) {
            xml.xml_parent(top);  // another code first
            EXPECT_TRUE(failures[i](xml, bad)) << "function " << i << ", handle " << bad;
            EXPECT_EQ(last_error(), XMLERR_BAD_ELEMENT) << "function " << i;
        }
        xml.xml_parent(top);
        EXPECT_EQ(xml.xml_is_element(bad), 0);
        EXPECT_EQ(last_error(), XMLERR_TOP_LEVEL) << "asking records nothing";
    }
    EXPECT_EQ(describe(top), "top[](reused[])");
    EXPECT_EQ(xml.xml_is_element(reused), 1);
    EXPECT_NE(host_handle_ptr(other), nullptr);
    host_handle_free(other, "test", __LINE__, 0);
    const std::uint32_t alone = xml.xml_add_child(stale, "alone");
    EXPECT_EQ(xml.xml_parent(alone), 0U);
    xml.xml_free_element(alone);
    xml.xml_free_element(top);
}

}  // namespace
