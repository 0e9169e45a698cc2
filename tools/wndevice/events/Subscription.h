// What a consumer asked for.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "libraries/http/shared/HttpAddress.h"
#include "tools/wndevice/events/Events.h"
#include "tools/wndevice/xml/Xml.h"

namespace wndevice {

struct Subscription {
    std::set<std::string> events;                          // empty: every event
    std::map<std::string, std::set<std::string>> filters;  // property to the values that pass
    std::string cookie;                                    // comes back with each event
    wncom::http::HttpAddress consumer;                     // http on loopback: nothing is sent elsewhere
    bool bestEffort = false;                               // one attempt at each event instead of several
    std::chrono::seconds duration = kDefaultDuration;
};

// Whether the subscription names the event and all its filters let it pass.
bool Wants(const Subscription& subscription, const Event& event);

// All throw std::invalid_argument with a reason.
// A subscription ticket, all in one document.
Subscription ParseSubscriptionTicket(const xmlDoc& document);
// A request of three texts: subscription info and filter properties, each a document or empty, and the consumer's
// address.
Subscription ParseSubscriptionParts(const xmlDoc& document);
// The duration that a renewal asks for; nothing when it is to be the last one again.
std::optional<std::chrono::seconds> ParseRenewal(const xmlDoc& document);

}  // namespace wndevice
