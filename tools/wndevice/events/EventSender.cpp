#include "tools/wndevice/events/EventSender.h"

#include <array>
#include <exception>
#include <utility>

#include "tools/wndevice/events/Events.h"

namespace wndevice {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMostQueued = 1000;
constexpr std::size_t kMostQueuedBytes = std::size_t{4} << 20;
constexpr std::array kPauses = {200ms, 1000ms};  // before the second and the third attempt

}  // namespace

EventSender::EventSender(std::string id, Subscription subscription)
    : m_id(std::move(id)),
      m_subscription(std::move(subscription)),
      m_client(m_subscription.consumer),
      m_duration(m_subscription.duration),
      m_deadline(Clock::now() + m_duration),
      m_thread([this] { Run(); }) {}

EventSender::~EventSender() {
    End();
    m_thread.join();
}

void EventSender::Offer(const Event& event) {
    if (!Wants(m_subscription, event)) return;
    const std::lock_guard guard(m_lock);
    if (OverLocked()) return;
    ++m_sequence;
    if (m_queue.size() == kMostQueued) return;
    std::string document = EventDocument(m_id, m_sequence, m_subscription.cookie, event);
    if (document.size() > kMostQueuedBytes - m_queuedBytes) return;
    m_queuedBytes += document.size();
    m_queue.push_back(std::move(document));
    m_change.notify_all();
}

bool EventSender::Renew(std::optional<std::chrono::seconds> duration) {
    const std::lock_guard guard(m_lock);
    if (OverLocked()) return false;
    m_duration = duration.value_or(m_duration);
    m_deadline = Clock::now() + m_duration;
    m_change.notify_all();
    return true;
}

bool EventSender::End() {
    const std::lock_guard guard(m_lock);
    if (OverLocked()) return false;
    m_ended = true;
    m_client.Stop();
    m_change.notify_all();
    return true;
}

void EventSender::Run() {
    try {
        std::string document;
        while (Next(document)) {
            bool delivered = m_client.Post(document);
            if (m_subscription.bestEffort) continue;
            for (std::size_t i = 0; !delivered && i < kPauses.size() && Pause(kPauses[i]); ++i) {
                delivered = m_client.Post(document);
            }
        }
    } catch (const std::exception&) {
        End();  // out of memory: the consumer hears no more, as if its subscription had been cancelled
    }
    m_finished = true;
}

bool EventSender::Next(std::string& document) {
    std::unique_lock guard(m_lock);
    while (!OverLocked() && m_queue.empty()) m_change.wait_until(guard, m_deadline);
    if (OverLocked()) return false;
    document = std::move(m_queue.front());
    m_queue.pop_front();
    m_queuedBytes -= document.size();
    return true;
}

bool EventSender::Pause(std::chrono::milliseconds time) {
    std::unique_lock guard(m_lock);
    const auto end = Clock::now() + time;
    while (!OverLocked() && Clock::now() < end) m_change.wait_until(guard, std::min(end, m_deadline));
    return !OverLocked();
}

}  // namespace wndevice
