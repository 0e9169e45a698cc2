#include "samples/transport/Subscriptions.h"

#include <charconv>
#include <stdexcept>

#include "samples/transport/Texts.h"

namespace sample {
namespace {

constexpr std::size_t kMostSubscriptions = 1000;
constexpr int kDefaultDuration = 3600;
constexpr int kLongestDuration = 86400;

struct Event {
    const char* name;
    std::vector<std::string> properties;
};

const std::vector<Event>& Events() {
    static const std::vector<Event> events = {{"dataChanged", {"path", "value"}}, {"jobAccepted", {"jobUri"}}};
    return events;
}

int Seconds(std::string_view duration) {
    if (duration.empty()) return kDefaultDuration;
    int seconds = 0;
    const auto [end, error] = std::from_chars(duration.data(), duration.data() + duration.size(), seconds);
    if (error != std::errc() || end != duration.data() + duration.size() || seconds < 1 ||
        seconds > kLongestDuration) {
        throw std::runtime_error("A duration is a number of seconds from 1 to 86400");
    }
    return seconds;
}

}  // namespace

std::vector<std::string> EventNames() {
    std::vector<std::string> names;
    for (const Event& event : Events()) names.emplace_back(event.name);
    return names;
}

std::vector<std::string> PropertyNames(std::string_view event) {
    std::vector<std::string> names;
    for (const Event& known : Events()) {
        if (event != known.name && event != "all") continue;
        names.insert(names.end(), known.properties.begin(), known.properties.end());
    }
    if (names.empty()) throw std::runtime_error("There is no such event");
    return names;
}

Subscriptions::Made Subscriptions::Add(std::string_view ticket, std::string_view consumer) {
    if (consumer.empty()) throw std::runtime_error("A subscription names its consumer");
    if (m_durations.size() == kMostSubscriptions) throw std::runtime_error("There are too many subscriptions");
    for (const std::string_view event : Elements(ticket, "EventName")) PropertyNames(event);
    const int duration = Seconds(FirstElement(ticket, "Duration"));
    const std::string id = "subscription-" + std::to_string(m_made + 1);
    m_durations.emplace(id, duration);
    ++m_made;
    return {id, duration};
}

void Subscriptions::Renew(const std::string& id, std::string_view duration) {
    const auto place = m_durations.find(id);
    if (place == m_durations.end()) throw std::runtime_error("There is no such subscription");
    place->second = Seconds(duration);
}

void Subscriptions::Remove(const std::string& id) {
    if (m_durations.erase(id) == 0) throw std::runtime_error("There is no such subscription");
}

}  // namespace sample
