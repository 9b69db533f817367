// Every service that allocates, with each of its allocations failing in turn: it says so in its own
// way, what was there before stands, and nothing is left behind.
#include <functional>
#include <string>
#include <vector>

#include "host/arrays.h"
#include "host/handles.h"
#include "host/lists.h"
#include "host/memory.h"
#include "host/name_index.h"
#include "host/regex.h"
#include "host/runtime/memory/memory_report.h"
#include "host/strings.h"
#include "host/tables.h"
#include "tests/runtime/scratch.h"

namespace {

constexpr const char* SOURCE = "tests/runtime/failure";
const std::string LONG_TEXT(100, 'x');

struct Record {
    const char* key;
};
Record records[9] = {{"a"}, {"b"}, {"c"}, {"d"}, {"e"}, {"f"}, {"g"}, {"h"}, {"i"}};

// What a service works on, and how it looked before.
struct Fixture {
    Fixture() {
        const HostArrayType array_type{8, 1, HOST_ARRAY_KIND, "array"};
        array = host_array_new(&array_type, SOURCE, 1);
        array = host_array_insert(array, &number, HOST_ARRAY_END, SOURCE, 1);
        string = host_string_new("string", 0, SOURCE, 1, 0);
        other = host_string_new("other", 0, SOURCE, 1, 0);
        host_string_append(string, "small", SOURCE, 1, 0);
        host_string_append(other, "entry", SOURCE, 1, 0);
        const HostNameIndexType index_type{HOST_KEY_STRING, {}, nullptr, "index", 0};
        index = host_hash_new(&index_type, SOURCE, 1, 0);
        for (int i = 0; i < 8; ++i) host_hash_insert(index, &records[i], SOURCE, 1, 0);
        const HostListType list_type{"list", 0};
        list = host_list_new(&list_type, SOURCE, 1, 0);
        value = host_alloc(4, HOST_BLOCK_RAW, SOURCE, 1, "value", 0);
        table = host_table_put(nullptr, "old", host_alloc(4, 0, SOURCE, 1, "v", 0), SOURCE, 1,
                               "table", 0);
        block = host_strdup("block", SOURCE, 1);
    }
    ~Fixture() {
        host_array_free(array, SOURCE, 1);
        host_string_free(string, SOURCE, 1);
        host_string_free(other, SOURCE, 1);
        host_hash_free(index, SOURCE, 1, 0);
        host_list_free(list, SOURCE, 1, 0);
        host_table_free(table, SOURCE, 1);
        host_free(value, SOURCE, 1, 0);
        host_free(block, SOURCE, 1, 0);
    }
    Fixture(const Fixture&) = delete;
    Fixture& operator=(const Fixture&) = delete;

    void expect_unchanged() const {
        EXPECT_EQ(host_array_count(array), 1U);
        EXPECT_STREQ(host_string_text(string), "small");
        EXPECT_EQ(host_string_length(string), 5U);
        EXPECT_EQ(host_string_entry_count(string), 1U);
        EXPECT_EQ(host_hash_find(index, "h"), &records[7]);
        EXPECT_EQ(host_hash_find(index, "i"), nullptr);
        EXPECT_EQ(list->count, 0U);
        EXPECT_EQ(host_table_count(table), 1U);
        EXPECT_STREQ(block, "block");
    }

    std::uint64_t number = 1;
    void* array;
    std::uint32_t string;
    std::uint32_t other;
    HostNameIndex* index;
    HostList* list;
    HostTable* table;
    void* value;
    char* block;
};

struct Service {
    const char* name;
    std::function<bool(Fixture&)> call;  // true: done, and undone again
};

const HostHandleType OBJECT{64, {}, HOST_HANDLE_KIND, {}, nullptr};

bool freed(void* block) {
    host_free(block, SOURCE, 1, 0);
    return block != nullptr;
}

std::vector<Service> services() {
    static const std::uint32_t object_type = host_handle_type_register(&OBJECT);
    return {
        {"alloc", [](Fixture&) { return freed(host_alloc(9, 2, SOURCE, 1, "b", 0)); }},
        {"strdup", [](Fixture&) { return freed(host_strdup("text", SOURCE, 1)); }},
        {"realloc of null", [](Fixture&) { return freed(host_realloc(nullptr, 9, SOURCE, 1, 0)); }},
        {"realloc",
         [](Fixture& f) {
             void* moved = host_realloc(f.block, 5000, SOURCE, 1, 0);
             if (moved != nullptr) f.block = static_cast<char*>(moved);
             return moved != nullptr;
         }},
        {"handle",
         [](Fixture&) {
             const std::uint32_t handle = host_handle_new(object_type, 0, 0, SOURCE, 1, "o", 0);
             host_handle_free(handle, SOURCE, 1, 0);
             return handle != 0;
         }},
        {"string with room",
         [](Fixture&) {
             const std::uint32_t handle = host_string_new("s", 50, SOURCE, 1, 0);
             host_string_free(handle, SOURCE, 1);
             return handle != 0;
         }},
        {"append",
         [](Fixture& f) {
             return host_string_append(f.string, LONG_TEXT.c_str(), SOURCE, 1, 0) == 1;
         }},
        {"add entry",
         [](Fixture& f) {
             return host_string_add_entry(f.string, LONG_TEXT.c_str(), SOURCE, 1) == 1;
         }},
        {"add entries",
         [](Fixture& f) { return host_string_add_entries(f.string, f.other, SOURCE, 1) == 1; }},
        {"new array",
         [](Fixture&) {
             const HostArrayType type{8, 5, HOST_ARRAY_KIND, "a"};
             void* array = host_array_new(&type, SOURCE, 1);
             host_array_free(array, SOURCE, 1);
             return array != nullptr;
         }},
        {"array insert",
         [](Fixture& f) {
             void* moved = host_array_insert(f.array, &f.number, 0, SOURCE, 1);
             if (moved != nullptr) f.array = moved;
             return moved != nullptr;
         }},
        {"new index",
         [](Fixture&) {
             const HostNameIndexType type{HOST_KEY_STRING, {}, nullptr, "i", 0};
             HostNameIndex* index = host_hash_new(&type, SOURCE, 1, 0);
             host_hash_free(index, SOURCE, 1, 0);
             return index != nullptr;
         }},
        {"index insert",
         [](Fixture& f) { return host_hash_insert(f.index, &records[8], SOURCE, 1, 0) == 1; }},
        {"new list",
         [](Fixture&) {
             const HostListType type{"l", 0};
             HostList* list = host_list_new(&type, SOURCE, 1, 0);
             host_list_free(list, SOURCE, 1, 0);
             return list != nullptr;
         }},
        {"list insert",
         [](Fixture& f) { return host_list_insert(1, f.list, nullptr, SOURCE, 1, 0) != nullptr; }},
        {"new table",
         [](Fixture& f) {
             HostTable* table = host_table_put(nullptr, "n", f.value, SOURCE, 1, "t", 0);
             if (table == nullptr) return false;
             f.value = nullptr;
             host_table_free(table, SOURCE, 1);
             return true;
         }},
        {"table put",
         [](Fixture& f) {
             const HostTable* table = host_table_put(f.table, "new", f.value, SOURCE, 1, "t", 0);
             if (table != nullptr) f.value = nullptr;
             return table != nullptr;
         }},
        {"regular expression",
         [](Fixture&) {
             const std::uint32_t expression = host_regex_compile("b", HOST_REGEX_FLAGS);
             std::size_t at = 0;
             const std::uint32_t match = host_regex_match(expression, "abc", 3, &at, &at);
             host_regex_match_free(match);
             host_regex_free(expression);
             return match != 0;
         }},
    };
}

TEST(AllocationFailure, LeavesEverythingAsItWas) {
    for (const Service& service : services()) {
        SCOPED_TRACE(service.name);
        const std::size_t blocks = host::live_blocks().size();
        const std::uint64_t bytes = host::live_bytes();
        std::uint64_t n = 0;
        bool is_swept = false;
        while (!is_swept) {
            Fixture fixture;
            host::fail_allocation(++n);
            const bool is_done = service.call(fixture);
            is_swept = !host::allocation_failed();
            host::fail_allocation(0);
            ASSERT_EQ(is_done, is_swept) << "allocation " << n;
            if (!is_swept) fixture.expect_unchanged();
            ASSERT_LT(n, 100U);
        }
        EXPECT_GT(n, 1U) << "the service allocates nothing";
        EXPECT_EQ(host::live_blocks().size(), blocks);
        EXPECT_EQ(host::live_bytes(), bytes);
    }
}

}  // namespace
