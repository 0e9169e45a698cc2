// Who wants to hear of the device's events.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sample {

// The names of the device's events, and of one event's properties; "all" stands for every event. Throws
// std::runtime_error for what is no event.
std::vector<std::string> EventNames();
std::vector<std::string> PropertyNames(std::string_view event);

// The subscriptions of one device; it tells nobody of an event, for it has no wire to the outside. Not safe by
// itself: the device that owns it holds its lock. Every refusal is a std::runtime_error.
class Subscriptions {
public:
    struct Made {
        std::string id;
        int duration;  // seconds
    };
    // The ticket names its events (none means all), its consumer, which is required, and its duration.
    Made Add(std::string_view ticket, std::string_view consumer);
    // An empty duration is the default one.
    void Renew(const std::string& id, std::string_view duration);
    void Remove(const std::string& id);

private:
    std::map<std::string, int> m_durations;  // by id, in seconds
    int m_made = 0;
};

}  // namespace sample
