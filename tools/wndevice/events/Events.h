// The events that the device tells of, and its documents about them.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace wndevice {

inline constexpr std::chrono::seconds kDefaultDuration{3600};  // of a subscription
inline constexpr std::chrono::seconds kLongestDuration{86400};

struct EventKind {
    const char* name;
    std::vector<const char*> properties;
};

// All of them, in the order in which they are listed.
const std::vector<EventKind>& EventKinds();

// One event that has happened. A property may be missing.
struct Event {
    std::string name;
    std::vector<std::pair<std::string, std::string>> properties;
};

// What goes to a consumer.
std::string EventDocument(const std::string& subscriptionId, std::uint64_t sequence, const std::string& cookie,
                          const Event& event);
std::string SubscriptionResult(const std::string& id, std::chrono::seconds duration);
std::string EventCapabilities();

}  // namespace wndevice
