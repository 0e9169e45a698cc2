// wn events watch: the events of a service as they happen.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <memory>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/Interruption.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/events/EventListener.h"
#include "tools/wn/events/Subscription.h"
#include "tools/wn/service/Agent.h"

namespace wn {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kLongestWait{100};  // how late Ctrl-C is noticed

struct Options {
    Service service;
    Wish wish;
    std::uint64_t count = 0;    // 0: no end
    std::uint32_t seconds = 0;  // 0: no end
};

class Watch {
public:
    Watch(const Options& options, bool json)
        : m_options(options), m_json(json), m_agent(options.service, json), m_started(Clock::now()) {
        Wish wish = options.wish;
        wish.consumer = m_listener.Address();
        m_renewed = Clock::now();
        m_subscription = Subscribe(m_agent, SubscriptionTicket(wish));
        if (m_subscription.duration == 0) m_subscription.duration = wish.duration;
    }

    void Run() {
        try {
            ShowBeginning();
            while (!IsOver()) {
                RenewInTime();
                if (const auto event = m_listener.Wait(kLongestWait)) Take(*event);
            }
        } catch (...) {
            CancelAfterFailure();
            throw;
        }
        Cancel(m_agent, m_subscription.id);
        ShowEnd();
    }

private:
    bool IsOver() const {
        return m_interruption.Wanted() || (m_options.count != 0 && m_events >= m_options.count) ||
               (m_options.seconds != 0 && Clock::now() - m_started >= seconds(m_options.seconds));
    }

    // At half of the duration, which leaves the other half for a slow answer.
    void RenewInTime() {
        const Clock::time_point now = Clock::now();
        if (now - m_renewed < milliseconds(500) * std::int64_t{m_subscription.duration}) return;
        Renew(m_agent, m_subscription.id, m_subscription.duration);
        m_renewed = now;
    }

    void Take(const DeviceEvent& event) {
        // Any program of this machine may send something here, and an event whose answer was lost comes again.
        if (event.subscription != m_subscription.id || event.sequence <= m_last) return;
        const std::uint64_t lost = event.sequence - m_last - 1;
        m_last = event.sequence;
        ++m_events;
        Show(event, lost);
    }

    void Show(const DeviceEvent& event, std::uint64_t lost) const {
        Report report(m_json, Report::Form::OneLine);
        std::string line = event.time + "  " + event.name;
        nlohmann::ordered_json properties = nlohmann::ordered_json::object();
        for (const auto& [name, value] : event.properties) {
            properties[name] = value;
            line.append("  ").append(name).append("=").append(value);
        }
        if (lost != 0) report.Line(std::to_string(lost) + " events before the next one were lost");
        report.Line(line);
        report.Add("event", "", event.name, "");
        report.Add("sequence", "", event.sequence, "");
        report.Add("lost", "", lost, "");
        report.Add("time", "", event.time, "");
        if (!event.cookie.empty()) report.Add("cookie", "", event.cookie, "");
        report.Add("properties", "", properties, "");
        report.Print();
    }

    void ShowBeginning() const {
        Report report(m_json, Report::Form::OneLine);
        report.Add("subscription", "subscription", m_subscription.id);
        report.Add("consumer", "consumer", m_listener.Address());
        report.Add("duration", "duration", m_subscription.duration,
                   std::to_string(m_subscription.duration) + " s, renewed until the end");
        report.Print();
    }

    void ShowEnd() const {
        Report report(m_json, Report::Form::OneLine);
        report.Add("cancelled", "cancelled", m_subscription.id);
        report.Add("events", "events", m_events, std::to_string(m_events));
        report.Print();
    }

    // The first failure is the one to tell. What cannot be cancelled ends with its duration.
    void CancelAfterFailure() const noexcept {
        try {
            Cancel(m_agent, m_subscription.id);
        } catch (const std::exception&) {
        }
    }

    const Options& m_options;
    const bool m_json;
    const Interruption m_interruption;  // from here on nothing leaves a subscription behind
    EventListener m_listener;
    const Agent m_agent;
    const Clock::time_point m_started;
    Subscription m_subscription;
    Clock::time_point m_renewed;
    std::uint64_t m_last = 0;  // sequence of the last event
    std::uint64_t m_events = 0;
};

}  // namespace

void AddWatchCommand(CLI::App& events, const bool& json) {
    CLI::App* command = events.add_subcommand("watch", "Show events as they happen");
    auto options = std::make_shared<Options>();
    options->wish.duration = 60;
    command->add_option("EVENT", options->wish.events, "Events (default: every one)")
        ->type_name("")
        ->check(NotEmpty());
    AddWishOptions(command, options->wish);
    command
        ->add_option("--duration", options->wish.duration,
                     "Duration of the subscription, which is renewed at half of it: how soon a lost service shows")
        ->type_name("SECONDS")
        ->check(WholeNumber(1, 0xFFFFFFFF))
        ->capture_default_str();
    command->add_option("--count", options->count, "End after so many events")
        ->type_name("EVENTS")
        ->check(WholeNumber(1, ~std::uint64_t{0}));
    command->add_option("--for", options->seconds, "End after this time")
        ->type_name("SECONDS")
        ->check(WholeNumber(1, 0xFFFFFFFF));
    AddServiceOptions(command, options->service);
    command->footer(
        "Listens on 127.0.0.1, so the service must be on this machine. The subscription is renewed in time and cancelled\n"
        "at the end, which is --count, --for or Ctrl-C, whichever is first: status 0. A subscription that is refused,\n"
        "or cannot be renewed or cancelled: status 1. With --json each line is an object of its own: first the\n"
        "\"subscription\", then one for each \"event\", at the end \"cancelled\". Examples:\n"
        "  wn events watch --to http://127.0.0.1:8631/service\n"
        "  wn events watch jobAccepted --filter jobName=Programme --count 1 --json --to http://127.0.0.1:8631/service");
    command->callback([options, &json] { Watch(*options, json).Run(); });
}

}  // namespace wn
