// The XML documents about events.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "tools/wndevice/EventKinds.h"

namespace wndevice {

// What goes to a consumer.
std::string EventDocument(const std::string& subscriptionId, std::uint64_t sequence, const std::string& cookie,
                          const Event& event);

std::string SubscriptionResult(const std::string& id, std::chrono::seconds duration);

std::string EventCapabilities();

// The job's name in an intent ticket; empty when it has none that could be told to others.
std::string JobNameOf(const std::string& ticket);

}  // namespace wndevice
