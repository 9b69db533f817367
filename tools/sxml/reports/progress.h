// The progress of a long conversion, shown on a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace command {

// Clears the line that Progress shows, if there is one, before something else is printed.
void clear_progress();

// Shows a line on standard error when that is a terminal, and nothing otherwise.
class Progress {
  public:
    // `total_bytes`: of the input, when known.
    explicit Progress(std::optional<std::uint64_t> total_bytes);
    // Clears the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Updates the line when it is old enough.
    void update(std::uint64_t records, std::uint64_t bytes);

  private:
    using Clock = std::chrono::steady_clock;

    bool enabled_;
    std::optional<std::uint64_t> total_bytes_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point next_;
};

}  // namespace command
