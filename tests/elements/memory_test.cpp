// Exhausted memory, and what an element costs.
#include <algorithm>
#include <functional>
#include <string_view>

#include "host/runtime/memory/memory_report.h"
#include "tests/elements/element_test.h"

namespace {

// Live blocks except the indexes of names, which may remain for the next child.
std::size_t blocks_of_the_tree() {
    const auto blocks = host::live_blocks();
    return static_cast<std::size_t>(
        std::count_if(blocks.begin(), blocks.end(), [](const host::BlockInfo& block) {
            return std::string_view(block.description) != "XML children names";
        }));
}

// Makes every allocation of `change` fail in turn: the change gives 0 with XMLERR_NO_MEMORY and
// leaves the tree as it was, until it succeeds in the end.
void sweep(std::uint32_t top, const char* what, const std::function<std::uint32_t()>& change) {
    SCOPED_TRACE(what);
    const auto tree = [&] { return top ? describe(top) : ""; };
    const std::string before = tree();
    const std::size_t blocks = blocks_of_the_tree();
    for (std::uint64_t n = 1;; ++n) {
        ASSERT_LT(n, 100U);
        host::fail_allocation(n);
        const std::uint32_t result = change();
        const bool failed = host::allocation_failed();
        host::fail_allocation(0);
        if (!failed) {
            EXPECT_NE(result, 0U);
            EXPECT_GT(n, 1U) << "nothing was allocated";
            return;
        }
        EXPECT_EQ(result, 0U) << "allocation " << n;
        EXPECT_EQ(last_error(), XMLERR_NO_MEMORY);
        EXPECT_EQ(blocks_of_the_tree(), blocks) << "allocation " << n;
        EXPECT_EQ(tree(), before) << "allocation " << n;
    }
}

TEST_F(ElementTest, LeavesTheTreeAsItWasWhenMemoryIsExhausted) {
    const std::string longer(200, 'x');
    std::uint32_t top = 0;
    sweep(0, "top", [&] { return top = xml.xml_add_child(0, longer.c_str()); });
    std::uint32_t row = 0;
    sweep(top, "first child", [&] { return row = xml.xml_add_child(top, "row"); });
    sweep(top, "below", [&] { return xml.xml_add_child(row, "below"); });
    sweep(top, "sibling", [&] { return xml.xml_new_element(top, "row", row); });
    for (int i = 0; i < 40; ++i) {
        const std::string name = "name" + std::to_string(i / 2);
        sweep(top, "child", [&] { return xml.xml_add_child(top, name.c_str()); });
    }
    const auto flag = [](std::int32_t result) { return static_cast<std::uint32_t>(result); };
    const auto value = [&](const std::string& text) {
        return flag(xml.xml_set_element_value(row, text.c_str(), -1, 2));
    };
    EXPECT_EQ(value("short"), 1U);
    sweep(top, "value", [&] { return value(longer); });
    sweep(top, "longer value", [&] { return value(longer + longer); });
    sweep(top, "appended",
          [&] { return flag(xml.xml_append_element_value(row, longer.c_str(), -1, 0)); });
    sweep(top, "comment", [&] { return flag(xml.xml_add_comment(row, "c")); });
    sweep(top, "more comment", [&] { return flag(xml.xml_add_comment(row, longer.c_str())); });
    for (int i = 0; i < 20; ++i) {
        sweep(top, "attribute", [&] { return xml.xml_add_attribute(row, "a", "v"); });
    }
    sweep(top, "attribute value",
          [&] { return flag(xml.xml_set_attribute_value(row, 3, longer.c_str())); });
    sweep(top, "appended first",
          [&] { return flag(xml.xml_append_element_value(top, longer.c_str(), -1, 0)); });
    xml.xml_free_element(top);
}

// A small element: name and value of 15 characters, no attributes.
TEST_F(ElementTest, CostsLittleMemory) {
#if defined(__SANITIZE_ADDRESS__)
    constexpr std::uint64_t COUNT = 100'000;
#else
    constexpr std::uint64_t COUNT = 1'000'000;
#endif
    for (const bool all_different : {false, true}) {
        const std::uint32_t top = xml.xml_add_child(0, "top");
        const std::uint64_t before = host::live_bytes();
        for (std::uint64_t i = 0; i < COUNT; ++i) {
            const std::string number = std::to_string(1'000'000'000 + i);
            const std::string name = all_different ? "cust-" + number : "customer-number";
            const std::uint32_t element = xml.xml_add_child(top, name.c_str());
            xml.xml_append_element_value(element, (number + ".1234").c_str(), 15, 2);
        }
        const std::uint64_t bytes = (host::live_bytes() - before) / COUNT;
        xml.xml_free_element(top);
        RecordProperty(all_different ? "bytes_different_names" : "bytes_one_name",
                       std::to_string(bytes));
        std::cout << bytes << " bytes an element, "
                  << (all_different ? "all names different" : "one name") << '\n';
#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__)
        EXPECT_LT(bytes, all_different ? 350U : 250U);
#endif
    }
}

}  // namespace
