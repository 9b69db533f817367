// What the tests of the element API share: the module, called through its ordinals, and a fixture
// that finds leaks.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/runtime/memory/memory_report.h"
#include "sxml/xml_api.h"
#include "tests/support/system.h"

inline std::string file_text(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string module_path() {
    return built_module();
}

inline std::string expected_file(const std::string& name) {
    return SXML_SOURCE_DIR "/tests/elements/expected/" + name;
}

// The module's functions, and what it said before anything was called.
struct LoadedApi : XmlApi {
    std::int32_t first_code = -1;
    std::string first_message;
    std::int32_t first_is_element = -1;

    LoadedApi() : XmlApi{} {
        const std::string module = module_path();
        if (const char* problem = xml_api_load(module.c_str(), this)) {
            ADD_FAILURE() << problem;
            std::abort();
        }
        first_message = xml_element_error(&first_code);
        first_is_element = xml_is_element(1);
    }
};

inline const LoadedApi& api() {
    static const LoadedApi loaded;
    return loaded;
}

inline std::int32_t last_error() {
    std::int32_t code = -1;
    api().xml_element_error(&code);
    return code;
}

// Adds one to occurrence numbers written as "1,2".
inline void append_number(std::string& numbers, std::uint32_t number) {
    if (!numbers.empty()) numbers += ',';
    numbers += std::to_string(number);
}

// An element's occurrence numbers; empty when it has none.
inline std::string numbers_of(std::uint32_t element) {
    std::string numbers;
    for (std::int32_t i = 0; i <= api().xml_last_index(element); ++i) {
        append_number(numbers, api().xml_element_index(element, i));
    }
    return numbers;
}

inline std::vector<std::uint32_t> children_of(std::uint32_t element) {
    std::vector<std::uint32_t> children;
    for (std::uint32_t child = api().xml_first_child(element); child != 0;
         child = api().xml_next_sibling(child)) {
        children.push_back(child);
    }
    return children;
}

// Everything that can be read of an element and what is below it (for trees of moderate depth).
inline std::string describe(std::uint32_t element) {
    const XmlApi& xml = api();
    std::uint64_t length = 0;
    std::string text = xml.xml_element_name(element);
    text += '[' + numbers_of(element) + ']';
    if (const char* value = xml.xml_element_value(element, &length)) {
        text += '=' + std::string(value, length) + '@';
        text += std::to_string(xml.xml_value_encoding(element));
    }
    if (const char* comments = xml.xml_element_comments(element, &length)) {
        text += '!' + std::string(comments, length);
    }
    for (std::uint32_t i = 0; i < xml.xml_attribute_count(element); ++i) {
        text += std::string(" ") + xml.xml_attribute_name(element, i) + ':';
        text += xml.xml_attribute_value(element, i);
    }
    const auto children = children_of(element);
    if (children.empty()) return text;
    text += '(';
    for (const std::uint32_t child : children) text += describe(child) + ' ';
    text.back() = ')';
    return text;
}

// Every test starts with no live block of the module and must leave none.
class ElementTest : public ::testing::Test {
  protected:
    void SetUp() override { api(); }
    void TearDown() override {
        EXPECT_EQ(host::live_blocks().size(), 0U) << host::leak_report();
        EXPECT_EQ(host::damaged_blocks(), 0U);
    }
    const XmlApi& xml = api();
};
