#include "tools/wndevice/events/SubscriptionTable.h"

#include "tools/wndevice/RandomId.h"

namespace wndevice {
namespace {

constexpr std::size_t kMost = 100;  // each holds a thread

}  // namespace

SubscriptionTable::~SubscriptionTable() {
    // All end first, then each is waited for: together they take as long as the slowest.
    for (const auto& [id, sender] : m_senders) sender->End();
}

std::string SubscriptionTable::Add(const Subscription& subscription) {
    const std::lock_guard guard(m_lock);
    ForgetFinishedLocked();
    if (m_senders.size() >= kMost) return {};
    const std::string id = NewId();
    m_senders.emplace(id, std::make_unique<EventSender>(id, subscription));
    return id;
}

bool SubscriptionTable::Renew(const std::string& id, std::optional<std::chrono::seconds> duration) {
    const std::lock_guard guard(m_lock);
    EventSender* const sender = FindLocked(id);
    return sender && sender->Renew(duration);
}

bool SubscriptionTable::Cancel(const std::string& id) {
    const std::lock_guard guard(m_lock);
    EventSender* const sender = FindLocked(id);
    return sender && sender->End();
}

void SubscriptionTable::Publish(const Event& event) {
    const std::lock_guard guard(m_lock);
    ForgetFinishedLocked();
    for (const auto& [id, sender] : m_senders) sender->Offer(event);
}

EventSender* SubscriptionTable::FindLocked(const std::string& id) {
    ForgetFinishedLocked();
    const auto found = m_senders.find(id);
    return found == m_senders.end() ? nullptr : found->second.get();
}

void SubscriptionTable::ForgetFinishedLocked() {
    std::erase_if(m_senders, [](const auto& entry) { return entry.second->HasFinished(); });
}

}  // namespace wndevice
