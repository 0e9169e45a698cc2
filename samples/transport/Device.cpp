#include "samples/transport/Device.h"

#include <charconv>
#include <stdexcept>

namespace sample {
namespace {

constexpr std::size_t kMostSubscriptions = 1000;
constexpr std::size_t kLongestValue = 4096;  // bytes

}  // namespace

std::string Device::StartSession() {
    return sessions[GetCurrentThreadId()] = "session-" + std::to_string(++sessionsStarted);
}

void Device::RequireSession() const {
    if (!sessions.contains(GetCurrentThreadId())) throw std::runtime_error("There is no session");
}

std::string Device::Set(const std::string& path, std::string_view text) {
    const auto place = values.find(path);
    if (place == values.end()) return "There is no such value";
    if (text.size() > kLongestValue) return "The value is too long";
    // The text goes back into a document as it came.
    if (text.find('<') != std::string_view::npos) return "The value holds elements";
    place->second = text;
    return {};
}

std::string Device::Subscribe(std::string_view consumer, std::string_view duration) {
    if (consumer.empty()) throw std::runtime_error("A subscription names its consumer");
    if (subscriptions.size() == kMostSubscriptions) throw std::runtime_error("There are too many subscriptions");
    Seconds(duration);
    return *subscriptions.insert("subscription-" + std::to_string(++subscriptionsMade)).first;
}

void Device::RequireSubscription(const std::string& id) const {
    if (!subscriptions.contains(id)) throw std::runtime_error("There is no such subscription");
}

Device& DeviceAt(std::string_view address) {
    static std::mutex lock;
    static std::map<std::string, Device, std::less<>> devices;
    bool plain = address.starts_with("sample://") && address.size() > 9;
    for (const char c : address) plain = plain && c > ' ' && c < 0x7F;
    plain = plain && address.find_first_of("<>&\"'") == std::string_view::npos;
    if (!plain) throw std::invalid_argument("The address is not one of sample://");
    const std::lock_guard guard(lock);
    return devices.try_emplace(std::string(address), address).first->second;
}

std::vector<std::string> EventNames() { return {"dataChanged", "jobAccepted"}; }

std::vector<std::string> PropertyNames(std::string_view event) {
    if (event == "all") return {"path", "value", "jobUri"};
    if (event == "dataChanged") return {"path", "value"};
    if (event == "jobAccepted") return {"jobUri"};
    throw std::runtime_error("There is no such event");
}

int Seconds(std::string_view duration) {
    if (duration.empty()) return 3600;
    int seconds = 0;
    const char* const end = duration.data() + duration.size();
    const auto [stop, error] = std::from_chars(duration.data(), end, seconds);
    if (error == std::errc() && stop == end && seconds >= 1 && seconds <= 86400) return seconds;
    throw std::runtime_error("A duration is a number of seconds from 1 to 86400");
}

}  // namespace sample
