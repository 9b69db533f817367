// Building, walking, reading and editing elements, and what bad arguments do.
#include <functional>
#include <limits>

#include "host/handles.h"
#include "host/runtime/memory/memory_report.h"
#include "tests/elements/element_test.h"

namespace {

TEST_F(ElementTest, ReportsNoErrorBeforeTheFirstFailure) {
    EXPECT_EQ(api().first_code, XMLERR_NONE);
    EXPECT_EQ(api().first_message, "No error");
    EXPECT_EQ(api().first_is_element, 0);
}

TEST_F(ElementTest, RecordsCodeAndTextOfEachFailure) {
    const std::uint32_t top = xml.xml_add_child(0, "top");
    const std::uint32_t child = xml.xml_add_child(top, "child");
    struct Failure {
        std::int32_t code;
        const char* text;
        std::function<void()> call;
    };
    const Failure failing_calls[] = {
        {1, "Unable to create parser due to low memory",
         [&] {
             host::fail_allocation(1);
             EXPECT_EQ(xml.xml_add_child(top, "x"), 0U);
             host::fail_allocation(0);
         }},
        {6, "The passed handle is not a valid element handle", [&] { xml.xml_first_child(0); }},
        {7, "Invalid attribute number", [&] { xml.xml_attribute_name(top, 0); }},
        {10, "The specified element has no children", [&] { xml.xml_first_child(child); }},
        {11, "The specified element has no siblings", [&] { xml.xml_next_sibling(child); }},
        {12, "The specified element is a top-level element", [&] { xml.xml_parent(top); }},
        {13, "The specified element has no value", [&] { xml.xml_element_value(top, nullptr); }},
        {14, "The specified element has no attributes", [&] { xml.xml_attribute_count(top); }},
        {16, "The specified parser already has a top-level element",
         [&] { xml.xml_add_sibling(top, "x"); }},
    };
    for (const Failure& failure : failing_calls) {
        failure.call();
        EXPECT_EQ(last_error(), failure.code);
        EXPECT_STREQ(xml.xml_element_error(nullptr), failure.text);
    }
    xml.xml_free_element(top);
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

    using std::string_literals::operator""s;
    constexpr std::int64_t HUGE_LENGTH = std::numeric_limits<std::int64_t>::max();
    const auto own = [&] { return xml.xml_element_value(top, nullptr); };
    struct Step {
        std::function<std::int32_t()> change;
        std::string after;
        std::int32_t result;
        std::int32_t error = XMLERR_TOP_LEVEL;  // of the call before: none of its own
    };
    const Step steps[] = {
        {[&] { return xml.xml_append_element_value(top, "abcXY", 3, 7); }, "v[]=abc@7", 1},
        {[&] { return xml.xml_append_element_value(top, "def", -1, 2); }, "v[]=abcdef@7", 1},
        {[&] { return xml.xml_set_element_value(top, own(), 7, 3); }, "v[]=abcdef@3", 0},
        {[&] { return xml.xml_set_element_value(top, own(), HUGE_LENGTH, 5); }, "v[]=abcdef@5", 0},
        {[&] { return xml.xml_set_element_value(top, "x", HUGE_LENGTH, 7); }, "v[]=abcdef@5", 0,
         XMLERR_NO_MEMORY},
        {[&] { return xml.xml_append_element_value(top, "x", HUGE_LENGTH, 7); }, "v[]=abcdef@5", 0,
         XMLERR_NO_MEMORY},
        {[&] { return xml.xml_set_element_value(top, own(), 6, 7); }, "v[]=abcdef@7", 1},
        {[&] { return xml.xml_set_element_value(top, own(), -HUGE_LENGTH, 0); }, "v[]=abcdef@0", 1},
        {[&] { return xml.xml_set_element_value(top, own(), 4, 2); }, "v[]=abcd@2", 1},
        {[&] { return xml.xml_set_element_value(top, own() + 1, 2, 2); }, "v[]=bc@2", 1},
        {[&] { return xml.xml_append_element_value(top, own(), -1, 2); }, "v[]=bcbc@2", 1},
        {[&] { return xml.xml_set_element_value(top, "a longer text than before", -1, 0); },
         "v[]=a longer text than before@0", 1},
        {[&] { return xml.xml_set_element_value(top, "new", 3, 3); }, "v[]=new@3", 1},
        {[&] { return xml.xml_append_element_value(top, "\0r", 2, 3); }, "v[]=new\0r@3"s, 1},
        {[&] { return xml.xml_set_element_value(top, own(), -1, 3); }, "v[]=new@3", 1},
        {[&] { return xml.xml_set_element_value(top, own(), 0, 3); }, "v[]=@3", 1},
        {[&] { return xml.xml_set_element_value(top, "a\0b", 3, 3); }, "v[]=a\0b@3"s, 1},
        {[&] { return xml.xml_set_element_value(top, nullptr, 5, 1); }, "v[]=@1", 1},
        {[&] { return xml.xml_append_element_value(top, nullptr, -1, 2); }, "v[]=@1", 1},
    };
    for (const Step& step : steps) {
        xml.xml_parent(top);
        EXPECT_EQ(step.change(), step.result) << step.after;
        EXPECT_EQ(last_error(), step.error) << step.after;
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
    const auto refuses = [&](std::uint32_t number) {
        SCOPED_TRACE(number);
        const std::function<bool()> calls[] = {
            [&] { return xml.xml_attribute_name(top, number) != nullptr; },
            [&] { return xml.xml_attribute_value(top, number) != nullptr; },
            [&] { return xml.xml_delete_attribute(top, number) != 0; }};
        for (const auto& call : calls) {
            xml.xml_parent(top);
            EXPECT_FALSE(call());
            EXPECT_EQ(last_error(), XMLERR_BAD_ATTRIBUTE);
        }
        xml.xml_parent(top);
        EXPECT_EQ(xml.xml_set_attribute_value(top, number, "x"), 0);
        EXPECT_EQ(last_error(), XMLERR_TOP_LEVEL) << "no error of its own";
    };
    for (const std::uint32_t number : {3U, 0x80000000U, 0xFFFFFFFFU}) refuses(number);
    EXPECT_EQ(xml.xml_set_attribute_value(top, 1, "a value of more than a few bytes"), 1);
    EXPECT_EQ(describe(top), "e[] a:1 a:a value of more than a few bytes b:");
    EXPECT_EQ(xml.xml_set_attribute_value(top, 1, xml.xml_attribute_value(top, 1) + 27), 1);
    EXPECT_EQ(xml.xml_delete_attribute(top, 0), 1);
    EXPECT_EQ(describe(top), "e[] a:bytes b:");
    refuses(2);
    EXPECT_TRUE(xml.xml_delete_attribute(top, 0) && xml.xml_delete_attribute(top, 0));
    for (const std::uint32_t number : {0U, 0xFFFFFFFFU}) refuses(number);
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

    EXPECT_EQ(xml.xml_set_user_data(top, nullptr), 1);
    EXPECT_EQ(xml.xml_get_user_data(top), nullptr);
    EXPECT_EQ(xml.xml_set_user_data(top, &length), 1);
    EXPECT_EQ(xml.xml_set_user_data(top, this), 0);
    EXPECT_EQ(xml.xml_get_user_data(top), &length);
    EXPECT_EQ(last_error(), XMLERR_TOP_LEVEL);
    xml.xml_free_element(top);

    char copy[4] = {};
    EXPECT_EQ(xml.xml_copy_string(copy, 0, "abc"), 3U);
    EXPECT_STREQ(copy, "abc");
    EXPECT_EQ(xml.xml_copy_string(nullptr, 0, "abc"), 3U);
}

// The failure value of every function that takes an element, for a number that is not a handle.
const std::function<bool(const XmlApi&, std::uint32_t)> failures[] = {
    [](const XmlApi& x, std::uint32_t h) { return x.xml_free_element(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_set_user_data(h, &h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_get_user_data(h) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_first_child(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_next_sibling(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_previous_sibling(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_parent(h) == 0; },
    [](const XmlApi& x, std::uint32_t h) { return x.xml_element_name(h) == nullptr; },
    [](const XmlApi& x, std::uint32_t h) {
        std::uint64_t length = 77;
        return x.xml_element_value(h, &length) == nullptr && length == 77;
    },
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
    [](const XmlApi& x, std::uint32_t h) {
        std::uint64_t length = 77;
        return x.xml_element_comments(h, &length) == nullptr && length == 0;
    },
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
    // As a parent such a handle makes a top-level element; as a place to insert it is ignored.
    std::vector<std::uint32_t> children = {reused};
    for (const std::uint32_t bad : {stale, other, top}) {
        children.push_back(xml.xml_new_element(top, "last", bad));
        if (bad == top) continue;
        const std::uint32_t alone = xml.xml_new_element(bad, "alone", reused);
        EXPECT_EQ(xml.xml_parent(alone), 0U);
        EXPECT_EQ(xml.xml_free_element(alone), 1);
    }
    EXPECT_EQ(children_of(top), children);
    EXPECT_NE(host_handle_ptr(other), nullptr);
    host_handle_free(other, "test", __LINE__, 0);
    xml.xml_free_element(top);
}

}  // namespace
