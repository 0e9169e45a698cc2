// Subscriptions to a service's events, through its agent.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/wn/service/Agent.h"
#include "wncom/Bstr.h"

namespace wn {

// What a subscription asks for.
struct Wish {
    std::vector<std::string> events;   // empty: every event
    std::vector<std::string> filters;  // NAME=VALUE
    std::string cookie;                // empty: none
    bool bestEffort = false;
    std::uint32_t duration = 0;  // seconds; 0: as long as the service likes
    std::string consumer;        // address that the events go to
};

// --filter, --cookie and --best-effort.
void AddWishOptions(CLI::App* command, Wish& wish);

// The subscription ticket for it. Throws CommandError for a text that no document can hold.
wncom::Bstr SubscriptionTicket(const Wish& wish);

// What the service answered.
struct Subscription {
    std::string id;
    std::uint32_t duration = 0;  // seconds; 0 when the service did not say
    std::string expires;         // as the service says it; may be empty
};

// Each is one call on the agent. Failures throw CommandError with the service's words.
Subscription Subscribe(const Agent& agent, const wncom::Bstr& ticket);
// A duration of 0 is the last duration again.
void Renew(const Agent& agent, const std::string& id, std::uint32_t duration);
void Cancel(const Agent& agent, const std::string& id);

}  // namespace wn
