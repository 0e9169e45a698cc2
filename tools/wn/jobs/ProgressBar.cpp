#include "tools/wn/jobs/ProgressBar.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "tools/wn/host/Host.h"

namespace wn {
namespace {

constexpr std::size_t kWidth = 40;

}  // namespace

ProgressBar::ProgressBar(std::optional<std::uint64_t> total)
    : m_total(total),
      m_terminal(IsTerminal(StandardStream::Error)),
      m_next(Clock::now() + std::chrono::milliseconds(500)) {}

ProgressBar::~ProgressBar() {
    if (m_drawn) std::fputs("\r\033[K", stderr);
}

void ProgressBar::Show(std::uint64_t done) {
    const auto now = Clock::now();
    if (!m_terminal || now < m_next) return;
    m_next = now + std::chrono::milliseconds(100);
    m_drawn = true;
    const double megabytes = static_cast<double>(done) / 1e6;
    if (!m_total) {
        std::fprintf(stderr, "\r%.1f MB", megabytes);
        return;
    }
    const double total = static_cast<double>(std::max<std::uint64_t>(*m_total, 1));
    const double share = std::min(1.0, static_cast<double>(done) / total);
    const std::size_t filled = static_cast<std::size_t>(share * kWidth);
    const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %3.0f %%  %.1f of %.1f MB", bar.c_str(), share * 100, megabytes, total / 1e6);
}

}  // namespace wn
