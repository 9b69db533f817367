// Arrays, lists, name indexes and tables against the standard containers.
#include <algorithm>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/arrays.h"
#include "host/lists.h"
#include "host/memory.h"
#include "host/name_index.h"
#include "host/runtime/memory/memory_report.h"
#include "host/tables.h"
#include "tests/runtime/scratch.h"

namespace {

constexpr const char* SOURCE = "tests/runtime/containers";

TEST(Arrays, RandomEditsAgainstAModel) {
    Random random;
    for (const std::uint32_t growth : {0U, 1U, 5U}) {
        const HostArrayType type{8, growth, HOST_ARRAY_KIND, "test array"};
        void* array = host_array_new(&type, SOURCE, 1);
        std::vector<std::uint64_t> model;
        for (int round = 0; round < 5'000; ++round) {
            const unsigned index = random.below(static_cast<unsigned>(model.size() + 3));
            const auto* items = static_cast<const std::uint64_t*>(array);
            const std::uint64_t fresh = static_cast<std::uint64_t>(round) << 20;
            if (random.below(3) > 0) {
                // Sometimes one of its own items, which the insertion itself moves.
                const std::uint64_t* item =
                    index < model.size() && random.below(2) == 0 ? items + index : &fresh;
                const std::uint64_t value = *item;
                const unsigned at = random.below(static_cast<unsigned>(model.size() + 1));
                if (random.below(4) == 0) {
                    array = host_array_insert(array, item, HOST_ARRAY_END, SOURCE, 1);
                    model.push_back(value);
                } else {
                    array = random.below(2) == 0 ? host_array_insert(array, item, at, SOURCE, 1)
                                                 : host_array_insert_at(array, item, at, SOURCE, 1);
                    model.insert(model.begin() + at, value);
                }
            } else {
                const unsigned count = random.below(4);
                host_array_delete(array, index, count);
                const std::size_t first = std::min<std::size_t>(index, model.size());
                const std::size_t last = std::min<std::size_t>(first + count, model.size());
                model.erase(model.begin() + static_cast<std::ptrdiff_t>(first),
                            model.begin() + static_cast<std::ptrdiff_t>(last));
            }
            items = static_cast<const std::uint64_t*>(array);
            ASSERT_EQ(host_array_count(array), model.size());
            ASSERT_TRUE(std::equal(model.begin(), model.end(), items));
        }
        host_array_delete(array, 0, HOST_ARRAY_END);
        EXPECT_EQ(host_array_count(array), 0U);
        host_array_free(array, SOURCE, 1);
    }
    EXPECT_EQ(host_array_count(nullptr), 0U);
    host_array_delete(nullptr, 0, 1);
    host_array_free(nullptr, SOURCE, 1);
}

TEST(Lists, RandomEditsAgainstAModel) {
    Random random;
    const HostListType type{"test list", 0};
    HostList* list = host_list_new(&type, SOURCE, 1, 0);
    std::list<std::uint32_t> model;
    for (std::uint32_t round = 0; round < 5'000; ++round) {
        HostListNode* node = list->first;
        auto place = model.begin();
        for (unsigned steps = random.below(20); steps > 0 && node != nullptr; --steps) {
            node = node->next;
            ++place;
        }
        if (node == nullptr || random.below(5) < 3) {
            HostListNode* added = host_list_insert(round, list, node, SOURCE, 1, 0);
            ASSERT_EQ(added->list, list);
            model.insert(place, round);
        } else {
            host_list_remove(node, SOURCE, 1, 0);
            model.erase(place);
        }
    }
    ASSERT_EQ(list->count, model.size());
    const HostListNode* node = list->first;
    for (const std::uint32_t value : model) {
        ASSERT_EQ(node->value, value);
        node = node->next;
    }
    node = list->last;
    for (auto value = model.rbegin(); value != model.rend(); ++value, node = node->previous) {
        ASSERT_EQ(node->value, *value);
    }
    EXPECT_EQ(node, nullptr);
    host_list_free(list, SOURCE, 1, 0);
}

struct Record {
    int number;
    const char* key;
};
std::multiset<int> released;

void note_released(void* record) {
    released.insert(static_cast<Record*>(record)->number);
}

class NameIndex : public testing::Test {
  protected:
    HostNameIndex* make_index() const {
        const HostNameIndexType type{
            HOST_KEY_STRING, {}, note_released, "test index", offsetof(Record, key)};
        return host_hash_new(&type, SOURCE, 1, 0);
    }
    void insert(HostNameIndex* index, Record& record) const {
        ASSERT_EQ(host_hash_insert(index, &record, SOURCE, 1, 0), 1);
    }
};

TEST_F(NameIndex, RandomKeysAgainstAModel) {
    Random random;
    HostNameIndex* index = make_index();
    for (int round = 0; round < 20; ++round) {
        const unsigned keys = 1 + random.below(3000);
        std::vector<std::string> names(keys);
        for (std::string& name : names)
            name = std::string(random.below(20), 'k') + std::to_string(random.below(keys));
        std::vector<Record> records(keys);
        std::map<std::string, Record*> model;
        std::multiset<int> all;
        for (unsigned i = 0; i < keys; ++i) {
            records[i] = {static_cast<int>(i), names[i].c_str()};
            insert(index, records[i]);
            model.try_emplace(names[i], &records[i]);
            all.insert(static_cast<int>(i));
        }
        for (const auto& [name, record] : model)
            ASSERT_EQ(host_hash_find(index, name.c_str()), record);
        EXPECT_EQ(host_hash_find(index, "absent"), nullptr);
        released.clear();
        host_hash_clear(index, SOURCE, 1, 0);
        EXPECT_EQ(released, all);
        for (const auto& [name, record] : model)
            ASSERT_EQ(host_hash_find(index, name.c_str()), nullptr);
    }
    host_hash_free(index, SOURCE, 1, 0);
}

TEST_F(NameIndex, AClearedIndexIsFilledAgainWithoutAllocation) {
    HostNameIndex* index = make_index();
    std::vector<std::string> names;
    std::vector<Record> records;
    names.reserve(1000);
    records.reserve(1000);
    for (int i = 0; i < 1000; ++i) names.push_back("name" + std::to_string(i));
    for (int i = 0; i < 1000; ++i)
        records.push_back({i, names[static_cast<std::size_t>(i)].c_str()});
    for (Record& record : records) insert(index, record);
    const std::uint64_t before = host::allocation_count();
    for (int round = 0; round < 3; ++round) {
        host_hash_clear(index, SOURCE, 1, 0);
        for (Record& record : records) insert(index, record);
    }
    EXPECT_EQ(host::allocation_count(), before);
    released.clear();
    host_hash_free(index, SOURCE, 1, 0);
    EXPECT_EQ(released.size(), records.size());
}

// A document may repeat one name as often as it likes; if chains grew with it, this would not end.
TEST_F(NameIndex, ManyRecordsOfOneKeyStayCheap) {
    HostNameIndex* index = make_index();
    std::vector<Record> records(300'000, Record{0, "same"});
    for (Record& record : records) insert(index, record);
    EXPECT_EQ(host_hash_find(index, "same"), &records.front());
    host_hash_free(index, SOURCE, 1, 0);
}

void* block(int value) {
    auto* number =
        static_cast<int*>(host_alloc(sizeof(int), HOST_BLOCK_RAW, SOURCE, 1, "table value", 0));
    *number = value;
    return number;
}

TEST(Tables, KeepValuesUnderNamesInOrder) {
    const std::size_t before = host::live_blocks().size();
    HostTable* table = nullptr;
    for (int i = 0; i < 500; ++i) {
        const std::string name = "name" + std::to_string(i % 300);
        table = host_table_put(table, name.c_str(), block(i), SOURCE, 1, "test table", 0);
        ASSERT_NE(table, nullptr);
    }
    ASSERT_EQ(host_table_count(table), 300U);
    EXPECT_STREQ(host_table_name(table, 7), "name7");
    EXPECT_EQ(host_table_name(table, 300), nullptr);
    EXPECT_EQ(*static_cast<int*>(host_table_get(table, "name7")), 307);
    EXPECT_EQ(*static_cast<int*>(host_table_get(table, "name250")), 250);
    EXPECT_EQ(host_table_get(table, "absent"), nullptr);

    const std::string longest(255, 'n');
    table = host_table_put(table, (longest + "x").c_str(), block(1), SOURCE, 1, "test table", 0);
    EXPECT_EQ(host_table_name(table, 300), longest);
    EXPECT_EQ(*static_cast<int*>(host_table_get(table, (longest + "y").c_str())), 1);
    host_table_free(table, SOURCE, 1);
    EXPECT_EQ(host::live_blocks().size(), before);

    EXPECT_EQ(host_table_count(nullptr), 0U);
    EXPECT_EQ(host_table_name(nullptr, 0), nullptr);
    EXPECT_EQ(host_table_get(nullptr, "name"), nullptr);
    host_table_free(nullptr, SOURCE, 1);
}

}  // namespace
