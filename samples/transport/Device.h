// A device inside the client's process: what a wire would lead to.
#pragma once

#include <windows.h>

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sample {

// A device outlives the objects that lead to it, and the objects of several agents and threads lead to the same one.
// Whoever uses it holds its lock. Every refusal is an exception whose text tells why.
struct Device {
    explicit Device(std::string_view at) : address(at) {}

    // An agent starts and ends a session through objects of its own, but always on its thread: so a session belongs
    // to the thread. A new one replaces the old one, for agents seldom end theirs.
    std::string StartSession();
    void RequireSession() const;
    // Puts a value in place; a reason why not, or an empty text.
    std::string Set(const std::string& path, std::string_view text);
    // A duration is in seconds, the default one when it is empty.
    std::string Subscribe(std::string_view consumer, std::string_view duration);
    void RequireSubscription(const std::string& id) const;

    const std::string address;
    std::mutex lock;
    std::map<DWORD, std::string> sessions;  // by thread id
    int sessionsStarted = 0;
    int jobs = 0;
    std::map<std::string, std::string> values = {  // by path, as they stand in XML
        {"/device/message", "ready"},
        {"/device/trays/1/sheets", "500"},
        {"/device/trays/2/sheets", "250"}};
    std::set<std::string> subscriptions;
    int subscriptionsMade = 0;
};

// The device at an address, made at its first mention; it lives until the library is unloaded. Throws
// std::invalid_argument for an address that does not begin with "sample://" or holds characters that may not stand in
// XML as they are.
Device& DeviceAt(std::string_view address);

// The names of the devices' events, and of one event's properties; "all" stands for every event.
std::vector<std::string> EventNames();
std::vector<std::string> PropertyNames(std::string_view event);

// The number that a duration stands for; an empty one for 3600.
int Seconds(std::string_view duration);

}  // namespace sample
