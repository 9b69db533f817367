#include "host/handles.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

#include "host/runtime/memory/memory_report.h"
#include "host/strings.h"
#include "tests/runtime/scratch.h"

namespace {

constexpr const char* SOURCE = "tests/runtime/handles";

std::vector<std::uint32_t> destroyed;

void note_destroyed(std::uint32_t handle) {
    EXPECT_NE(host_handle_ptr(handle), nullptr);  // still there for its destroy routine
    host_handle_free(handle, SOURCE, 1, 0);       // under way already: no second round
    destroyed.push_back(handle);
}

std::uint32_t register_type(std::uint32_t size, void (*destroy)(std::uint32_t)) {
    const HostHandleType type{size, {}, HOST_HANDLE_KIND, {}, destroy};
    return host_handle_type_register(&type);
}

std::uint32_t new_object(std::uint32_t type) {
    return host_handle_new(type, 0, 0, SOURCE, 1, "test object", 0);
}

std::set<std::uint32_t> walk(std::uint32_t type) {
    std::set<std::uint32_t> found;
    for (std::uint32_t handle = host_handle_next(0, type); handle != 0;
         handle = host_handle_next(handle, type)) {
        EXPECT_TRUE(found.insert(handle).second);
    }
    return found;
}

TEST(Handles, ObjectsLiveFromNewToFree) {
    const std::uint32_t type = register_type(160, note_destroyed);
    const std::uint32_t handle = new_object(type);
    ASSERT_NE(handle, 0U);
    EXPECT_EQ(host_handle_type(handle), type);
    auto* object = static_cast<unsigned char*>(host_handle_ptr(handle));
    EXPECT_TRUE(std::all_of(object, object + 160, [](unsigned char c) { return c == 0; }));
    std::memset(object, 0xFF, 160);
    destroyed.clear();
    host_handle_free(handle, SOURCE, 1, 0);
    host_handle_free(handle, SOURCE, 1, 0);
    EXPECT_EQ(destroyed, std::vector<std::uint32_t>{handle});
    EXPECT_EQ(host_handle_ptr(handle), nullptr);
    EXPECT_EQ(host_handle_type(handle), 0U);
}

TEST(Handles, NumbersThatAreNoHandlesAreRecognised) {
    for (const std::uint32_t number :
         {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        EXPECT_EQ(host_handle_ptr(number), nullptr) << number;
        EXPECT_EQ(host_handle_type(number), 0U) << number;
        host_handle_free(number, SOURCE, 1, 0);
    }
    EXPECT_EQ(new_object(0), 0U);
    EXPECT_EQ(new_object(0xFFFF), 0U);
}

// A handle must not come to life again while thousands of others come and go.
TEST(Handles, StaleHandlesStayStale) {
    const std::uint32_t type = register_type(8, nullptr);
    const std::uint32_t stale = new_object(type);
    host_handle_free(stale, SOURCE, 1, 0);
    for (int i = 0; i < 50'000; ++i) {
        const std::uint32_t handle = new_object(type);
        ASSERT_NE(handle, 0U);
        ASSERT_NE(handle, 0xFFFFFFFFU);
        ASSERT_EQ(host_handle_ptr(stale), nullptr) << i;
        host_handle_free(handle, SOURCE, 1, 0);
    }
}

TEST(Handles, RandomTrafficAgainstAModel) {
    Random random;
    const std::uint32_t type = register_type(4, nullptr);
    const std::uint32_t other_type = register_type(4, nullptr);
    const std::uint32_t other = new_object(other_type);
    std::vector<std::uint32_t> live;
    std::vector<std::uint32_t> stale;
    for (int round = 0; round < 30'000; ++round) {
        if (live.empty() || random.below(5) < (round < 15'000 ? 3U : 2U)) {
            live.push_back(new_object(type));
            *static_cast<std::uint32_t*>(host_handle_ptr(live.back())) = live.back();
        } else {
            std::swap(live[random.below(static_cast<unsigned>(live.size()))], live.back());
            host_handle_free(live.back(), SOURCE, 1, 0);
            stale.push_back(live.back());
            live.pop_back();
        }
    }
    for (const std::uint32_t handle : live) {
        ASSERT_EQ(*static_cast<std::uint32_t*>(host_handle_ptr(handle)), handle);
    }
    for (const std::uint32_t handle : stale) ASSERT_EQ(host_handle_ptr(handle), nullptr);
    EXPECT_EQ(walk(type), std::set<std::uint32_t>(live.begin(), live.end()));
    EXPECT_EQ(walk(other_type), std::set<std::uint32_t>{other});
    for (const std::uint32_t handle : live) host_handle_free(handle, SOURCE, 1, 0);
    host_handle_free(other, SOURCE, 1, 0);
    EXPECT_TRUE(walk(type).empty());
}

// The price of one element with its name, value and place in a list.
TEST(Handles, ASmallElementStaysSmall) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "no pools in this build";
#endif
    if (host::guards_blocks()) GTEST_SKIP() << "guard bytes are counted too";
    const std::uint64_t before = host::live_bytes();
    const std::uint32_t element = new_object(register_type(160, nullptr));
    const std::uint32_t name = host_string_new("name", 0, SOURCE, 1, 0);
    host_string_append(name, "fifteen_letters", SOURCE, 1, 0);
    EXPECT_LE(host::live_bytes() - before, 160U + 48 + 32);
    host_string_free(name, SOURCE, 1);
    host_handle_free(element, SOURCE, 1, 0);
}

}  // namespace
