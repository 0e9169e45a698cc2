// The subscriptions that the service keeps.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "tools/wndevice/events/EventSender.h"

namespace wndevice {

// Subscriptions live in memory only. Any thread may call, and no call waits for a consumer; only the destructor does,
// a few seconds at most.
class SubscriptionTable {
public:
    ~SubscriptionTable();

    // A new subscription's id; empty when there are too many.
    std::string Add(const Subscription& subscription);
    // Both are false for a subscription that is unknown or over.
    bool Renew(const std::string& id, std::optional<std::chrono::seconds> duration);
    bool Cancel(const std::string& id);
    // Offers the event to every subscription.
    void Publish(const Event& event);

private:
    EventSender* FindLocked(const std::string& id);
    void ForgetFinishedLocked();

    std::mutex m_lock;
    std::map<std::string, std::unique_ptr<EventSender>> m_senders;
};

}  // namespace wndevice
