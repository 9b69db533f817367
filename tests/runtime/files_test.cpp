#include "host/files.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "host/runtime/streams.h"
#include "tests/runtime/scratch.h"

namespace {

constexpr std::uint64_t GIB = std::uint64_t{1} << 30;

class Files : public testing::Test {
  protected:
    ScratchFolder scratch_;
    std::string name_ = scratch_.file("data");
    std::size_t open_before_ = host::open_streams();

    void TearDown() override {
        EXPECT_FALSE(host::take_write_failure().has_value());
        EXPECT_EQ(host::open_streams(), open_before_);
    }
};

// Standard output replaced by another descriptor while the object lives.
class StandardOutput {
  public:
    explicit StandardOutput(int replacement) : saved_(dup(STDOUT_FILENO)) {
        fflush(stdout);
        dup2(replacement, STDOUT_FILENO);
    }
    ~StandardOutput() {
        dup2(saved_, STDOUT_FILENO);
        close(saved_);
    }
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

  private:
    int saved_;
};

std::size_t bytes_of_heap() {
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

void put(HostStream* stream, const std::string& text) {
    ASSERT_EQ(host_fwrite(text.data(), 1, text.size(), stream), text.size());
}

// Random writes and steps back, near and far, against a text; the file is cut where writing ended.
TEST_F(Files, RandomOutputAgainstAModel) {
    Random random;
    for (int file = 0; file < 10; ++file) {
        HostStream* stream = host_fopen(name_.c_str(), file % 2 == 0 ? "w" : "wb", 1);
        ASSERT_NE(stream, nullptr);
        std::string model;
        for (int round = 0; round < 200; ++round) {
            const unsigned most = random.below(20) == 0 ? 200'000 : 3'000;
            const std::string text(random.below(most), static_cast<char>('a' + round % 26));
            put(stream, text);
            model += text;
            ASSERT_EQ(host_ftell(stream), model.size());
            if (random.below(3) > 0 && round < 199) continue;
            const auto size = static_cast<unsigned>(model.size());
            const unsigned back = random.below(1 + (random.below(4) == 0 ? size : size / 100));
            host_fseek(stream, size - back);
            model.resize(size - back);
        }
        host_fclose(stream);
        ASSERT_TRUE(read_file(name_) == model);
    }
}

TEST_F(Files, PositionsWrapAtFourGibibytes) {
    // A sparse file behind standard output, written from just below the wrap on.
    const int sparse = open(name_.c_str(), O_RDWR | O_CREAT, 0600);
    const std::uint64_t start = 4 * GIB - 100'000;
    ASSERT_EQ(lseek(sparse, static_cast<off_t>(start), SEEK_SET), static_cast<off_t>(start));
    {
        const StandardOutput redirected(sparse);
        HostStream* stream = host_fopen("-", "w", 0);
        EXPECT_EQ(host_ftell(stream), static_cast<std::uint32_t>(start));
        put(stream, std::string(99'990, 'a'));
        const std::uint32_t before_wrap = host_ftell(stream);
        EXPECT_EQ(before_wrap, 0xFFFFFFF6U);
        put(stream, std::string(200'000, 'b'));
        EXPECT_EQ(host_ftell(stream), 199'990U);
        host_fseek(stream, before_wrap);
        put(stream, std::string(20, 'c'));
        EXPECT_EQ(host_ftell(stream), 10U);
        host_fclose(stream);
    }
    struct stat status {};
    fstat(sparse, &status);
    EXPECT_EQ(status.st_size, static_cast<off_t>(4 * GIB + 10));
    char bytes[24] = {};
    EXPECT_EQ(pread(sparse, bytes, 23, static_cast<off_t>(4 * GIB - 13)), 23);
    EXPECT_STREQ(bytes, "aaacccccccccccccccccccc");
    close(sparse);
}

TEST_F(Files, AppendedOutputKeepsWhatWasThere) {
    write_file(name_, "before\n");
    const int appending = open(name_.c_str(), O_WRONLY | O_APPEND);
    {
        const StandardOutput redirected(appending);
        HostStream* stream = host_fopen("-", "w", 0);
        put(stream, std::string(300'000, 'x'));
        host_fseek(stream, 2);
        host_fclose(stream);
    }
    close(appending);
    EXPECT_EQ(read_file(name_), "before\nxx");
}

class PipeReader {
  public:
    PipeReader() {
        if (pipe(ends_) != 0) throw std::runtime_error("no pipe");
        thread_ = std::thread([this] {
            char bytes[8192];
            for (ssize_t n = read(ends_[0], bytes, sizeof bytes); n > 0;
                 n = read(ends_[0], bytes, sizeof bytes)) {
                text_.append(bytes, static_cast<std::size_t>(n));
            }
        });
    }
    ~PipeReader() { close(ends_[0]); }
    int input() const { return ends_[1]; }
    std::string text() {
        close(ends_[1]);
        thread_.join();
        return text_;
    }

  private:
    int ends_[2];
    std::thread thread_;
    std::string text_;
};

TEST_F(Files, APipeTakesAStepBackOfAMebibyte) {
    PipeReader reader;
    const std::string first(5'000'000, 'a');
    const std::string dropped(1'000'000, 'b');
    {
        const StandardOutput redirected(reader.input());
        HostStream* stream = host_fopen("-", "w", 0);
        put(stream, first);
        const std::uint32_t position = host_ftell(stream);
        put(stream, dropped);
        host_fseek(stream, position);
        put(stream, "end");
        host_fclose(stream);
    }
    EXPECT_TRUE(reader.text() == first + "end");
}

TEST_F(Files, AStepTooFarBackInAPipeIsAFailure) {
    PipeReader reader;
    {
        const StandardOutput redirected(reader.input());
        HostStream* stream = host_fopen("-", "w", 0);
        put(stream, std::string(5'000'000, 'a'));
        host_fseek(stream, 1);
        EXPECT_EQ(host_fwrite("x", 1, 1, stream), 0U);
        host_fclose(stream);
    }
    reader.text();
    const auto failure = host::take_write_failure();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->error, ESPIPE);
    EXPECT_EQ(failure->file, "-");
}

TEST_F(Files, AFullDiskIsRemembered) {
    for (const std::size_t size : {std::size_t{10}, std::size_t{10'000'000}}) {
        HostStream* stream = host_fopen("/dev/full", "w", 1);
        ASSERT_NE(stream, nullptr);
        const std::string text(size, 'x');
        const std::size_t taken = host_fwrite(text.data(), 1, size, stream);
        EXPECT_EQ(taken, size == 10 ? size : 0);  // a small piece fails when it is closed
        if (taken == 0) {
            EXPECT_EQ(host_fwrite("x", 1, 1, stream), 0U);
        }
        host_fclose(stream);
        if (size == 10) {
            const char* file = nullptr;
            EXPECT_EQ(host_take_write_failure(&file), ENOSPC);
            EXPECT_STREQ(file, "/dev/full");
            EXPECT_EQ(host_take_write_failure(&file), 0);
            continue;
        }
        const auto failure = host::take_write_failure();
        ASSERT_TRUE(failure.has_value());
        EXPECT_EQ(failure->file, "/dev/full");
        EXPECT_EQ(failure->error, ENOSPC);
        EXPECT_EQ(host_take_write_failure(nullptr), 0);
    }
}

TEST_F(Files, OpenFailuresSayWhy) {
    write_file(name_, "old");
    const std::string missing = scratch_.file("missing/file");
    struct Case {
        const char* name;
        const char* mode;
        int error;
    };
    const std::string folder = scratch_.file("");
    const Case cases[] = {
        {missing.c_str(), "r", ENOENT}, {missing.c_str(), "w", ENOENT},
        {folder.c_str(), "r", EISDIR},  {folder.c_str(), "w", EISDIR},
        {name_.c_str(), "a", EINVAL},   {nullptr, "r", EINVAL},
    };
    for (const Case& one : cases) {
        errno = 0;
        EXPECT_EQ(host_fopen(one.name, one.mode, 0), nullptr);
        EXPECT_EQ(errno, one.error) << one.mode;
    }
    host_fclose(nullptr);
    host_fclose(host_fopen(name_.c_str(), "w", 0));
    EXPECT_EQ(read_file(name_), "");
    EXPECT_EQ(host_remove_file(name_.c_str()), 0);
    EXPECT_EQ(host_remove_file(name_.c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(Files, ItemsAreReadWholeHoweverTheInputIsCut) {
    std::string text;
    for (int i = 0; i < 40'000; ++i) text += std::to_string(i);
    write_file(name_, text);
    for (const std::size_t limit : {0U, 1U, 7U, 1000U}) {
        for (const std::size_t size : {std::size_t{1}, std::size_t{12}, std::size_t{100'000}}) {
            host::limit_read_size(limit);
            HostStream* stream = host_fopen(name_.c_str(), "r", 0);
            std::vector<char> items(size * 3);
            std::string read;
            for (std::size_t n = host_fread(items.data(), size, 3, stream); n > 0;
                 n = host_fread(items.data(), size, 3, stream)) {
                ASSERT_LE(n * size, limit == 0 ? items.size() : std::max(limit, size));
                read.append(items.data(), n * size);
            }
            EXPECT_EQ(host_fwrite("x", 1, 1, stream), 0U);
            host_fclose(stream);
            EXPECT_TRUE(read == text.substr(0, text.size() / size * size)) << limit << " " << size;
        }
    }
    host::limit_read_size(0);
}

TEST_F(Files, StandardErrorIsWrittenThrough) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(host_fwrite("now", 3, 1, host_standard_error()), 1U);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "now");
    EXPECT_NE(host_standard_input(), nullptr);
}

// Callers in C cannot be told that memory is missing. Judged in the first call of a process only.
TEST_F(Files, StandardStreamsTakeNoMemory) {
    for (HostStream* (*stream)() : {host_standard_input, host_standard_error}) {
        const std::size_t before = bytes_of_heap();
        EXPECT_NE(stream(), nullptr);
        EXPECT_EQ(bytes_of_heap(), before);
    }
}

TEST_F(Files, DescriptionsAreLookedUpUnderTheDataFilesOwnName) {
    for (const char* name : {"orders.xml", "dir.d/orders.v2.xml", "dir/.hidden", ""}) {
        EXPECT_STREQ(host_xfd_name(name), name);
    }
    EXPECT_STREQ(host_xfd_name(nullptr), "");
}

TEST_F(Files, TheDateCanBePinned) {
    const Environment zone("TZ", "Pacific/Kiritimati");
    tzset();
    {
        const Environment epoch("SOURCE_DATE_EPOCH", "951782399");  // 2000-02-28 23:59:59 UTC
        EXPECT_EQ(host_date(), 20000228);
        const Environment last("SOURCE_DATE_EPOCH", "253402300799");
        EXPECT_EQ(host_date(), 99991231);
    }
    const std::time_t now = std::time(nullptr);
    std::tm day{};
    localtime_r(&now, &day);
    const int today = (day.tm_year + 1900) * 10000 + (day.tm_mon + 1) * 100 + day.tm_mday;
    const char* const after_year_9999 = "253402300800";
    const char* const no_year_of_an_int = "9223372036854775807";
    for (const char* useless : {"", "yesterday", "99999999999999999999", "12x", "-1",
                                after_year_9999, no_year_of_an_int}) {
        const Environment epoch("SOURCE_DATE_EPOCH", useless);
        EXPECT_EQ(host_date(), today) << useless;
    }
}

}  // namespace
