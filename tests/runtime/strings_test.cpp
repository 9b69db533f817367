#include "host/strings.h"

#include <string>
#include <vector>

#include "host/handles.h"
#include "host/runtime/memory/memory_report.h"
#include "tests/runtime/scratch.h"

namespace {

constexpr const char* SOURCE = "tests/runtime/strings";

class Strings : public testing::Test {
  protected:
    std::uint32_t string_ = host_string_new("test string", 0, SOURCE, 1, 0);

    void SetUp() override { ASSERT_NE(string_, 0U); }
    void TearDown() override { host_string_free(string_, SOURCE, 1); }

    std::string text() const { return {host_string_text(string_), host_string_length(string_)}; }
    std::vector<std::string> entries() const {
        std::vector<std::string> result;
        for (std::size_t i = 0; i < host_string_entry_count(string_); ++i) {
            result.emplace_back(host_string_entry(string_, i));
        }
        EXPECT_EQ(host_string_entry(string_, result.size()), nullptr);
        return result;
    }
};

TEST_F(Strings, RandomEditsAgainstAModel) {
    Random random;
    std::string model;
    for (int round = 0; round < 20'000; ++round) {
        const std::size_t n = random.below(12);
        switch (random.below(5)) {
            case 0:
            case 1: {
                const std::string added(n, static_cast<char>('a' + random.below(26)));
                ASSERT_EQ(host_string_append_n(string_, added.data(), n, SOURCE, 1, 0), 1);
                model += added;
                break;
            }
            case 2: {  // a part of itself
                const std::size_t from = random.below(static_cast<unsigned>(model.size() + 1));
                const std::string part = model.substr(from, 40);
                ASSERT_EQ(host_string_append_n(string_, host_string_text(string_) + from,
                                               part.size(), SOURCE, 1, 0),
                          1);
                model += part;
                break;
            }
            case 3:
                host_string_chop(string_, n * 4);
                model.resize(model.size() > n * 4 ? model.size() - n * 4 : 0);
                break;
            default:
                if (n == 0) {
                    host_string_clear(string_);
                    model.clear();
                }
        }
        ASSERT_EQ(text(), model);
        ASSERT_EQ(host_string_text(string_)[model.size()], '\0');
    }
}

// Around the room for short texts, appended whole and byte by byte, to itself too.
TEST_F(Strings, ShortAndLongTextsMeetWithoutASeam) {
    for (std::size_t length = 0; length < 40; ++length) {
        const std::string wanted =
            std::string("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOP", length);
        const std::uint64_t before = host::allocation_count();
        host_string_clear(string_);
        for (const char c : wanted) host_string_append_n(string_, &c, 1, SOURCE, 1, 0);
        ASSERT_EQ(text(), wanted);
        if (length <= 15) {
            EXPECT_EQ(host::allocation_count(), before) << length;
        }
        const std::uint32_t copy = host_string_new("copy", length, SOURCE, 1, 0);
        host_string_append(copy, host_string_text(string_), SOURCE, 1, 0);
        EXPECT_EQ(host_string_compare(copy, string_), 0);
        host_string_append(copy, host_string_text(copy), SOURCE, 1, 0);
        EXPECT_EQ(host_string_text(copy), wanted + wanted);
        EXPECT_EQ(host_string_compare(copy, string_) == 0, length == 0);
        host_string_free(copy, SOURCE, 1);
    }
}

TEST_F(Strings, EntriesAndAppendedTextAreKeptApart) {
    using List = std::vector<std::string>;
    EXPECT_EQ(entries(), List{});
    EXPECT_EQ(text(), "");
    host_string_append(string_, "text", SOURCE, 1, 0);
    EXPECT_EQ(entries(), List{"text"});
    host_string_add_entry(string_, "one", SOURCE, 1);
    host_string_add_entry(string_, "", SOURCE, 1);
    EXPECT_EQ(entries(), (List{"one", "", "text"}));
    EXPECT_EQ(text(), "text");
    host_string_chop(string_, 4);
    EXPECT_EQ(text(), "one\n");
    EXPECT_EQ(entries(), (List{"one", ""}));
    host_string_add_entries(string_, string_, SOURCE, 1);  // its own joined text
    EXPECT_EQ(entries(), (List{"one", "", "one\n"}));
    EXPECT_EQ(text(), "one\n\none\n");

    const std::uint32_t other = host_string_new("other", 0, SOURCE, 1, 0);
    EXPECT_EQ(host_string_add_entries(string_, other, SOURCE, 1), 1);  // empty: nothing to add
    EXPECT_EQ(host_string_entry_count(string_), 3U);
    host_string_add_entry(other, "x", SOURCE, 1);
    host_string_add_entry(other, "y", SOURCE, 1);
    host_string_clear(string_);
    EXPECT_EQ(entries(), List{});
    EXPECT_EQ(host_string_add_entries(string_, other, SOURCE, 1), 1);
    EXPECT_EQ(entries(), List{"x\ny"});
    EXPECT_EQ(host_string_compare(string_, other), 0);
    host_string_free(other, SOURCE, 1);
}

TEST_F(Strings, WhatIsNoStringIsLeftAlone) {
    const HostHandleType type{64, {}, HOST_HANDLE_KIND, {}, nullptr};
    const std::uint32_t object =
        host_handle_new(host_handle_type_register(&type), 0, 0, SOURCE, 1, "no string", 0);
    const std::uint32_t stale = host_string_new("stale", 0, SOURCE, 1, 0);
    host_string_free(stale, SOURCE, 1);
    for (const std::uint32_t handle : {0U, object, stale, 0xFFFFFFFFU}) {
        EXPECT_EQ(host_string_append(handle, "x", SOURCE, 1, 0), 0);
        EXPECT_EQ(host_string_add_entry(handle, "x", SOURCE, 1), 0);
        EXPECT_EQ(host_string_add_entries(string_, handle, SOURCE, 1), 0);
        EXPECT_EQ(host_string_text(handle), nullptr);
        EXPECT_EQ(host_string_length(handle), 0U);
        EXPECT_EQ(host_string_entry(handle, 0), nullptr);
        EXPECT_NE(host_string_compare(string_, handle), 0);
        host_string_clear(handle);
        host_string_chop(handle, 1);
        host_string_free(handle, SOURCE, 1);
    }
    EXPECT_NE(host_handle_ptr(object), nullptr);
    host_handle_free(object, SOURCE, 1, 0);
}

}  // namespace
