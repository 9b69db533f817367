// Tracked allocation: what the reports say about blocks, and damage.
#include "host/memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "host/runtime/memory/memory_report.h"
#include "tests/runtime/scratch.h"

namespace {

constexpr const char* SOURCE = "tests/runtime/memory";

std::size_t live_with(const char* description) {
    std::size_t count = 0;
    for (const host::BlockInfo& block : host::live_blocks()) {
        count += std::string(block.description) == description ? 1 : 0;
    }
    return count;
}

TEST(Memory, ReportsWhereBlocksComeFromOldestFirst) {
    const std::size_t before = host::live_blocks().size();
    void* first = host_alloc(24, HOST_BLOCK_RAW, SOURCE, 10, "first block", 0);
    void* second = host_alloc(100'000, HOST_BLOCK_ZEROED, SOURCE, 20, "second block", 0);
    char* third = host_strdup("third", SOURCE, 30);
    first = host_realloc(first, 25, SOURCE, 40, 0);
    const std::vector<host::BlockInfo> blocks = host::live_blocks();
    ASSERT_EQ(blocks.size(), before + 3);
    EXPECT_EQ(blocks[before].size, 25U);
    EXPECT_EQ(blocks[before].line, 40);
    EXPECT_STREQ(blocks[before].description, "first block");
    EXPECT_EQ(blocks[before].address, first);
    EXPECT_EQ(blocks[before + 1].address, second);
    EXPECT_EQ(blocks[before + 1].size, 100'000U);
    EXPECT_STREQ(blocks[before + 2].source, SOURCE);
    EXPECT_STREQ(third, "third");
    EXPECT_NE(host::leak_report().find("25 bytes, tests/runtime/memory line 40, \"first block\"\n"),
              std::string::npos);
    for (void* block : {first, second, static_cast<void*>(third)}) host_free(block, SOURCE, 1, 0);
    EXPECT_EQ(host::live_blocks().size(), before);
}

// What succeeds does not change why an allocation failed; a later failure has a reason of its own.
TEST(Memory, TellsWhyTheLastAllocationFailed) {
    const std::string by_limit = "more memory is needed than SXML_MEMORY_LIMIT allows";
    const auto allocate = [](std::size_t size) {
        void* const block = host_alloc(size, HOST_BLOCK_RAW, SOURCE, 50, "limited block", 0);
        host_free(block, SOURCE, 1, 0);
        return block != nullptr;
    };
    host::limit_memory(host::live_bytes() + 10'000);
    EXPECT_FALSE(allocate(20'000));
    EXPECT_TRUE(allocate(1'000));
    EXPECT_EQ(std::string(host::memory_problem()).find(by_limit), 0U);
    for (const bool is_failing : {true, false}) {
        host::fail_allocation(is_failing ? 1 : 0);
        EXPECT_EQ(allocate(1'000), !is_failing);
        EXPECT_STREQ(host::memory_problem(), "there is not enough memory");
    }
    host::limit_memory(0);
}

TEST(Memory, TotalsAddUpPerDescriptionWhateverThePlace) {
    std::vector<void*> blocks;
    for (int line = 1; line <= 10; ++line) {
        blocks.push_back(host_alloc(8, HOST_BLOCK_RAW, SOURCE, line, "counted block", 0));
    }
    for (int i = 0; i < 4; ++i) host_free(blocks[static_cast<std::size_t>(i)], SOURCE, 1, 0);
    bool is_found = false;
    for (const host::DescriptionTotal& total : host::description_totals()) {
        if (total.description != "counted block") continue;
        is_found = true;
        EXPECT_EQ(total.live_blocks, 6U);
        EXPECT_EQ(total.live_bytes, 48U);
        EXPECT_EQ(total.all_blocks, 10U);
    }
    EXPECT_TRUE(is_found);
    for (std::size_t i = 4; i < blocks.size(); ++i) host_free(blocks[i], SOURCE, 1, 0);
}

// Random sizes across the pools and beyond: contents survive, zeroed blocks are zero also when they
// were used before, the books balance.
TEST(Memory, RandomTrafficKeepsContents) {
    Random random;
    struct Block {
        unsigned char* data;
        std::size_t size;
        unsigned char mark;
    };
    std::vector<Block> blocks;
    const std::uint64_t bytes_before = host::live_bytes();
    const auto random_size = [&random] {
        return std::size_t{random.below(random.below(4) == 0 ? 5000 : 300)};
    };
    const auto check = [](const Block& block, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(block.data[i], block.mark);
    };
    for (int round = 0; round < 20'000; ++round) {
        const unsigned action = random.below(4);
        const auto mark = static_cast<unsigned char>(round | 1);
        if (blocks.empty() || action < 2) {
            const std::size_t size = random_size();
            auto* data = static_cast<unsigned char*>(
                host_alloc(size, HOST_BLOCK_ZEROED, SOURCE, 1, "random block", 0));
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(data) % alignof(std::max_align_t), 0U);
            check({data, size, 0}, size);
            std::memset(data, mark, size);
            blocks.push_back({data, size, mark});
            continue;
        }
        Block& block = blocks[random.below(static_cast<unsigned>(blocks.size()))];
        check(block, block.size);
        if (action == 2) {
            const std::size_t size = random_size();
            block.data = static_cast<unsigned char*>(host_realloc(block.data, size, SOURCE, 2, 0));
            check(block, std::min(size, block.size));
            block.size = size;
            std::memset(block.data, block.mark, size);
        } else {
            host_free(block.data, SOURCE, 1, 0);
            block = blocks.back();
            blocks.pop_back();
        }
    }
    EXPECT_EQ(live_with("random block"), blocks.size());
    for (const Block& block : blocks) host_free(block.data, SOURCE, 1, 0);
    EXPECT_EQ(host::live_bytes(), bytes_before);
    EXPECT_EQ(live_with("random block"), 0U);
}

TEST(Memory, ImpossibleSizesAreRefused) {
    EXPECT_EQ(host_alloc(SIZE_MAX, HOST_BLOCK_RAW, SOURCE, 1, "huge", 0), nullptr);
    void* block = host_realloc(nullptr, 10, SOURCE, 1, 0);
    ASSERT_NE(block, nullptr);
    std::memset(block, 'x', 10);
    EXPECT_EQ(host_realloc(block, SIZE_MAX - 8, SOURCE, 1, 0), nullptr);
    EXPECT_EQ(static_cast<char*>(block)[9], 'x');
    host_free(block, SOURCE, 1, 0);
    EXPECT_EQ(live_with("huge"), 0U);
}

TEST(Memory, DamageIsFoundAndReported) {
    if (!host::guards_blocks()) GTEST_SKIP() << "no guard bytes in this build";
    struct Case {
        const char* what;
        void (*damage)(char*);
        const char* report;
    };
    const Case cases[] = {
        {"behind", [](char* block) { block[20] = 0; }, "bytes after the block overwritten"},
        {"before", [](char* block) { block[-1] = 0; }, "bytes before the block overwritten"},
        {"twice", [](char* block) { host_free(block, SOURCE, 1, 0); },
         "released twice or never allocated"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        const std::uint64_t before = host::damaged_blocks();
        auto* block = static_cast<char*>(host_alloc(20, HOST_BLOCK_RAW, SOURCE, 7, "victim", 0));
        testing::internal::CaptureStderr();
        one.damage(block);
        host_free(block, SOURCE, 1, 0);
        EXPECT_NE(testing::internal::GetCapturedStderr().find(one.report), std::string::npos);
        EXPECT_EQ(host::damaged_blocks(), before + 1);
    }
}

TEST(MemoryDeathTest, LeaksArePrintedAtTheEndOfTheProcess) {
    const Environment wanted("SXML_HOST_LEAKS", "1");
    EXPECT_EXIT(
        {
            host_alloc(77, HOST_BLOCK_RAW, SOURCE, 5, "forgotten block", 0);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "77 bytes, tests/runtime/memory line 5, \"forgotten block\"");
}

}  // namespace
