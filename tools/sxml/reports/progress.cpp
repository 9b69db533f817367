#include "tools/sxml/reports/progress.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <string>

#include "platform/descriptors.h"
#include "platform/standard_streams.h"

namespace command {

namespace {

constexpr auto INTERVAL = std::chrono::milliseconds(200);
constexpr double MEGABYTE = 1e6;

bool is_shown = false;  // a line, at the moment

std::string duration_text(double seconds) {
    const auto whole = std::llround(seconds);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                  whole % 60);
    return text.data();
}

}  // namespace

void clear_progress() {
    if (is_shown) std::fputs("\r\033[K", stderr);
    is_shown = false;
}

Progress::Progress(std::optional<std::uint64_t> total_bytes)
    : enabled_(platform::is_terminal(platform::STANDARD_ERROR)),
      total_bytes_(total_bytes),
      next_(start_ + INTERVAL) {}

Progress::~Progress() {
    clear_progress();
}

void Progress::update(std::uint64_t records, std::uint64_t bytes) {
    if (!enabled_) return;
    const Clock::time_point now = Clock::now();
    if (now < next_) return;
    next_ = now + INTERVAL;
    is_shown = true;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double rate = static_cast<double>(bytes) / seconds;
    std::fprintf(stderr, "\r%llu records, %.1f MB/s", static_cast<unsigned long long>(records),
                 rate / MEGABYTE);
    if (total_bytes_ && *total_bytes_ > 0 && bytes > 0) {
        const auto total = static_cast<double>(*total_bytes_);
        const double left = (total - static_cast<double>(bytes)) / rate;
        std::fprintf(stderr, ", %.0f%%, %s left", 100 * static_cast<double>(bytes) / total,
                     duration_text(left > 0 ? left : 0).c_str());
    }
    std::fputs("\033[K", stderr);
}

}  // namespace command
