#include "tools/wndevice/events/Subscription.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace wndevice {
namespace {

constexpr std::size_t kMostFilters = 100;
constexpr std::size_t kLongestText = 1024;  // bytes

// A text of the consumer that is kept and comes back in documents.
std::string Checked(const std::string& text, const char* name) {
    if (text.size() > kLongestText || !IsPlainText(text)) {
        throw std::invalid_argument(std::string("The text of ") + name +
                                    " is too long or contains control characters");
    }
    return text;
}

std::optional<std::chrono::seconds> DurationIn(const xmlNode& root) {
    const std::string text = ContentOfChild(root, "Duration");
    if (text.empty()) return {};
    std::chrono::seconds::rep count = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, count);
    if (read.ec != std::errc() || read.ptr != end || count < 1 || count > kLongestDuration.count()) {
        throw std::invalid_argument("The duration is not a number of seconds from 1 to " +
                                    std::to_string(kLongestDuration.count()));
    }
    return std::chrono::seconds(count);
}

void ReadInfo(const xmlNode& root, Subscription& subscription) {
    for (const xmlNode* const node : Children(root, "EventName")) {
        const std::string name = Checked(ContentOf(*node), "EventName");
        std::size_t known = 0;
        for (const EventKind& kind : EventKinds()) {
            if (name != "all" && name != kind.name) continue;
            subscription.events.insert(kind.name);
            ++known;
        }
        if (known == 0) throw std::invalid_argument("There is no such event: " + name);
    }
    const std::string reliability = ContentOfChild(root, "ReliabilityOption");
    if (!reliability.empty() && reliability != "retry" && reliability != "bestEffort") {
        throw std::invalid_argument("The reliability option is neither retry nor bestEffort");
    }
    subscription.bestEffort = reliability == "bestEffort";
    subscription.cookie = Checked(ContentOfChild(root, "ClientCookie"), "ClientCookie");
    subscription.duration = DurationIn(root).value_or(kDefaultDuration);
}

bool IsPropertyOf(const Subscription& subscription, const std::string& name) {
    return std::any_of(EventKinds().begin(), EventKinds().end(), [&](const EventKind& kind) {
        const bool named = subscription.events.empty() || subscription.events.count(kind.name) != 0;
        return named && std::find(kind.properties.begin(), kind.properties.end(), name) != kind.properties.end();
    });
}

void ReadFilters(const xmlNode& root, Subscription& subscription) {
    const std::vector<xmlNode*> filters = Children(root, "FilterOn");
    if (filters.size() > kMostFilters) {
        throw std::invalid_argument("There are more than " + std::to_string(kMostFilters) + " filters");
    }
    for (const xmlNode* const filter : filters) {
        const std::vector<xmlNode*> names = Children(*filter, "Name");
        const std::vector<xmlNode*> values = Children(*filter, "Value");
        if (names.size() != 1 || values.size() != 1) {
            throw std::invalid_argument("A filter is not a pair of one Name and one Value");
        }
        const std::string property = Checked(ContentOf(*names.front()), "Name");
        if (!IsPropertyOf(subscription, property)) {
            throw std::invalid_argument("None of the events has the property " + property);
        }
        subscription.filters[property].insert(Checked(ContentOf(*values.front()), "Value"));
    }
}

wncom::http::HttpAddress ParseConsumer(const std::string& text) {
    const wncom::http::HttpAddress address = wncom::http::ParseHttpAddress(Checked(text, "the consumer's address"));
    if (address.scheme != "http" || !address.loopback) {
        throw std::invalid_argument("The consumer's address is not an http address on loopback");
    }
    return address;
}

}  // namespace

bool Wants(const Subscription& subscription, const Event& event) {
    if (!subscription.events.empty() && subscription.events.count(event.name) == 0) return false;
    return std::all_of(subscription.filters.begin(), subscription.filters.end(), [&](const auto& filter) {
        return std::any_of(event.properties.begin(), event.properties.end(), [&](const auto& property) {
            return property.first == filter.first && filter.second.count(property.second) != 0;
        });
    });
}

Subscription ParseSubscriptionTicket(const xmlDoc& document) {
    const xmlNode& root = RootNamed(document, "Subscription");
    Subscription subscription;
    ReadInfo(root, subscription);
    ReadFilters(root, subscription);
    subscription.consumer = ParseConsumer(ContentOfChild(root, "ConsumerInterface"));
    return subscription;
}

Subscription ParseSubscriptionParts(const xmlDoc& document) {
    const xmlNode& root = RootNamed(document, "subscriptionParts");
    Subscription subscription;
    const std::string info = ContentOfChild(root, "subscriptionInfo");
    if (!info.empty()) ReadInfo(RootOf(*ParseXml(info)), subscription);
    const std::string filters = ContentOfChild(root, "filterProperties");
    if (!filters.empty()) ReadFilters(RootOf(*ParseXml(filters)), subscription);
    subscription.consumer = ParseConsumer(ContentOfChild(root, "consumerInterface"));
    return subscription;
}

std::optional<std::chrono::seconds> ParseRenewal(const xmlDoc& document) {
    return DurationIn(RootNamed(document, "renewal"));
}

}  // namespace wndevice
