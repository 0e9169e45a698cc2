// What a consumer asked for.
#pragma once

#include <chrono>
#include <map>
#include <set>
#include <string>

#include "tools/wndevice/EventKinds.h"

namespace wndevice {

inline constexpr std::chrono::seconds kDefaultDuration{3600};
inline constexpr std::chrono::seconds kLongestDuration{86400};

struct Subscription {
    std::set<std::string> events;                          // empty: every event
    std::map<std::string, std::set<std::string>> filters;  // property to the values that pass
    std::string cookie;                                    // comes back with each event
    std::string consumer;                                  // an http address on loopback
    bool bestEffort = false;                               // one attempt at each event instead of several
    std::chrono::seconds duration = kDefaultDuration;
};

// Whether the subscription names the event and all its filters let it pass.
bool Wants(const Subscription& subscription, const Event& event);

// A subscription ticket, all in one document. Throws std::invalid_argument with a reason when it is none.
Subscription ParseSubscriptionTicket(const std::string& text);

// A request of three texts: subscription info and filter properties, each a document or empty, and the consumer's
// address. Throws std::invalid_argument with a reason.
Subscription ParseSubscriptionParts(const std::string& text);

// A number of seconds; an empty text gives the other duration. Throws std::invalid_argument for what is no number or
// out of reason.
std::chrono::seconds ParseDuration(const std::string& text, std::chrono::seconds otherwise);

// The duration's text in a renewal document, as it stands there. Throws std::invalid_argument when it is none.
std::string DurationOfRenewal(const std::string& text);

}  // namespace wndevice
