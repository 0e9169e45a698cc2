// How far a delivery is, for a person who waits.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace wn {

// Draws on standard error when that is a terminal and the work takes longer than half a second.
class ProgressBar {
public:
    // Of so many bytes; without a total it shows only how many there were.
    explicit ProgressBar(std::optional<std::uint64_t> total);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar();  // clears the line

    void Show(std::uint64_t done);

private:
    using Clock = std::chrono::steady_clock;
    std::optional<std::uint64_t> m_total;
    bool m_terminal;
    Clock::time_point m_next;
    bool m_drawn = false;
};

}  // namespace wn
