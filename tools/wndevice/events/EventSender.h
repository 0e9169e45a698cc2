// Brings events to one consumer.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "tools/wndevice/events/ConsumerClient.h"
#include "tools/wndevice/events/Subscription.h"

namespace wndevice {

// One subscription with a queue and a thread of its own: a consumer that is slow or gone delays nobody else. The
// queue is bounded; when it is full the new event is lost, and the consumer sees the gap in the sequence numbers. The
// thread ends with the subscription, by End or because its time is over. Any thread may call.
class EventSender {
public:
    using Clock = std::chrono::steady_clock;

    EventSender(std::string id, Subscription subscription);
    EventSender(const EventSender&) = delete;
    EventSender& operator=(const EventSender&) = delete;
    // Ends the subscription and waits for the thread, a few seconds at most.
    ~EventSender();

    // Queues the event when the subscription wants it.
    void Offer(const Event& event);
    // Another duration from now on, the last one again without one; false when the subscription is over.
    bool Renew(std::optional<std::chrono::seconds> duration);
    // Returns at once; false when the subscription is over already.
    bool End();
    // Whether the thread has nothing more to do: destroying the object then takes no time.
    bool HasFinished() const { return m_finished; }

private:
    void Run();
    // Waits for an event; false when the subscription is over.
    bool Next(std::string& document);
    bool Pause(std::chrono::milliseconds time);
    bool OverLocked() const { return m_ended || Clock::now() >= m_deadline; }

    const std::string m_id;
    const Subscription m_subscription;
    ConsumerClient m_client;
    std::mutex m_lock;
    std::condition_variable m_change;
    std::deque<std::string> m_queue;
    std::size_t m_queuedBytes = 0;
    std::uint64_t m_sequence = 0;
    std::chrono::seconds m_duration;
    Clock::time_point m_deadline;
    bool m_ended = false;
    std::atomic<bool> m_finished = false;
    std::thread m_thread;
};

}  // namespace wndevice
