#include "tools/wn/ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace wn {
namespace {

constexpr std::size_t kWidth = 40;

}  // namespace

ProgressBar::ProgressBar(std::uint64_t total)
    : m_total(std::max<std::uint64_t>(total, 1)),
      m_terminal(isatty(STDERR_FILENO) != 0),
      m_next(Clock::now() + std::chrono::milliseconds(500)) {}

ProgressBar::~ProgressBar() {
    if (m_drawn) std::fputs("\r\033[K", stderr);
}

void ProgressBar::Show(std::uint64_t done) {
    const auto now = Clock::now();
    if (!m_terminal || now < m_next) return;
    m_next = now + std::chrono::milliseconds(100);
    m_drawn = true;
    const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(m_total));
    const std::size_t filled = static_cast<std::size_t>(share * kWidth);
    const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %3.0f %%  %.1f of %.1f MB", bar.c_str(), share * 100,
                 static_cast<double>(done) / 1e6, static_cast<double>(m_total) / 1e6);
}

}  // namespace wn
