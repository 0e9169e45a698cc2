#include "tools/wn/core/Waiting.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/host/Host.h"

namespace wn {
namespace {

constexpr std::chrono::seconds kPatience{2};
constexpr std::uint64_t kLongestLimit = 86'400;  // seconds

}  // namespace

void AddTimeoutOption(CLI::App* command, TimeLimit& limit) {
    command
        ->add_option_function<std::uint32_t>(
            "--timeout", [&limit](const std::uint32_t& seconds) { limit = std::chrono::seconds(seconds); },
            "Give up when the service has not answered in this time")
        ->type_name("SECONDS")
        ->check(WholeNumber(1, kLongestLimit));
}

Waiting::Waiting(std::string what, const std::string& address, TimeLimit limit, bool json) {
    if (!limit && !IsTerminal(StandardStream::Error)) return;
    m_thread =
        std::thread([this, what = std::move(what), address, limit, json] { Watch(what, address, limit, json); });
}

Waiting::~Waiting() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard guard(m_lock);
        m_over = true;
    }
    m_change.notify_one();
    m_thread.join();
}

void Waiting::Watch(const std::string& what, const std::string& address, TimeLimit limit, bool json) {
    const auto started = std::chrono::steady_clock::now();
    const auto over = [this] { return m_over; };
    std::unique_lock guard(m_lock);
    if (IsTerminal(StandardStream::Error) && (!limit || *limit > kPatience)) {
        if (m_change.wait_until(guard, started + kPatience, over)) return;
        std::fprintf(stderr, "wn: waiting for %s\n", Printable(address).c_str());
    }
    if (!limit || m_change.wait_until(guard, started + *limit, over)) return;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*limit).count();
    PrintFailure(CommandError(what, {.reason = "No answer within " + std::to_string(seconds) + " s",
                                     .hint = "Try again with a longer --timeout"}),
                 json);
    std::_Exit(static_cast<int>(ExitStatus::TimeOver));
}

}  // namespace wn
