// The events that the device tells of.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace wndevice {

struct EventKind {
    const char* name;
    std::vector<const char*> properties;
};

// All of them, in the order in which they are listed.
const std::vector<EventKind>& EventKinds();

// Null for a name that no event has.
const EventKind* FindEventKind(const std::string& name);

// One event that has happened. A property may be missing.
struct Event {
    std::string name;
    std::vector<std::pair<std::string, std::string>> properties;
};

}  // namespace wndevice
