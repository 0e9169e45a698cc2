// One event as a service sends it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace wn {

struct DeviceEvent {
    std::string subscription;
    std::uint64_t sequence = 0;  // counts from 1
    std::string name;
    std::string time;    // as the service says it
    std::string cookie;  // empty when the subscription has none
    std::vector<std::pair<std::string, std::string>> properties;
};

// Throws std::invalid_argument, with a text for the sender, for what is no event.
DeviceEvent ParseDeviceEvent(const std::string& document);

}  // namespace wn
