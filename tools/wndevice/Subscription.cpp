#include "tools/wndevice/Subscription.h"

#include <algorithm>
#include <charconv>
#include <pugixml.hpp>
#include <stdexcept>

#include "tools/wndevice/ConsumerAddress.h"
#include "tools/wndevice/Xml.h"

namespace wndevice {
namespace {

constexpr std::size_t kMostFilters = 100;
constexpr std::size_t kLongestText = 1024;  // bytes

// A text of the consumer that is kept and comes back in documents.
std::string Checked(const std::string& text, const char* name) {
    if (text.size() > kLongestText || !IsPlainText(text)) {
        throw std::invalid_argument(std::string("The text of ") + name + " is too long or holds control characters");
    }
    return text;
}

pugi::xml_node Load(pugi::xml_document& document, const std::string& text) {
    if (!document.load_buffer(text.data(), text.size())) {
        throw std::invalid_argument("The subscription is not well-formed XML");
    }
    return document.document_element();
}

void ReadInfo(pugi::xml_node root, Subscription& subscription) {
    for (const pugi::xml_node node : root.children("EventName")) {
        const std::string name = node.text().get();
        if (name == "all") {
            for (const EventKind& kind : EventKinds()) subscription.events.insert(kind.name);
        } else if (FindEventKind(name)) {
            subscription.events.insert(name);
        } else {
            throw std::invalid_argument("There is no such event: " + Checked(name, "EventName"));
        }
    }
    const std::string reliability = root.child("ReliabilityOption").text().get();
    if (!reliability.empty() && reliability != "retry" && reliability != "bestEffort") {
        throw std::invalid_argument("The reliability option is neither retry nor bestEffort");
    }
    subscription.bestEffort = reliability == "bestEffort";
    subscription.cookie = Checked(root.child("ClientCookie").text().get(), "ClientCookie");
    subscription.duration = ParseDuration(root.child("Duration").text().get(), kDefaultDuration);
}

bool IsPropertyOf(const Subscription& subscription, const std::string& name) {
    return std::any_of(EventKinds().begin(), EventKinds().end(), [&](const EventKind& kind) {
        const bool named = subscription.events.empty() || subscription.events.count(kind.name) != 0;
        return named && std::find(kind.properties.begin(), kind.properties.end(), name) != kind.properties.end();
    });
}

void ReadFilters(pugi::xml_node root, Subscription& subscription) {
    std::size_t count = 0;
    for (const pugi::xml_node node : root.children("FilterOn")) {
        if (++count > kMostFilters) {
            throw std::invalid_argument("There are more than " + std::to_string(kMostFilters) + " filters");
        }
        const pugi::xml_node name = node.child("Name");
        const pugi::xml_node value = node.child("Value");
        if (!name || !value || name.next_sibling("Name") || value.next_sibling("Value")) {
            throw std::invalid_argument("A filter is not a pair of one Name and one Value");
        }
        const std::string property = Checked(name.text().get(), "Name");
        if (!IsPropertyOf(subscription, property)) {
            throw std::invalid_argument("None of the events has the property " + property);
        }
        subscription.filters[property].insert(Checked(value.text().get(), "Value"));
    }
}

std::string CheckedConsumer(const std::string& address) {
    if (!IsConsumerAddress(address)) {
        throw std::invalid_argument("The consumer's address is no http address on loopback");
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

Subscription ParseSubscriptionTicket(const std::string& text) {
    pugi::xml_document document;
    const pugi::xml_node root = Load(document, text);
    if (std::string_view(root.name()) != "Subscription") {
        throw std::invalid_argument("The document is no subscription ticket");
    }
    Subscription subscription;
    ReadInfo(root, subscription);
    ReadFilters(root, subscription);
    subscription.consumer = CheckedConsumer(root.child("ConsumerInterface").text().get());
    return subscription;
}

Subscription ParseSubscriptionParts(const std::string& text) {
    pugi::xml_document document;
    const pugi::xml_node root = Load(document, text);
    if (std::string_view(root.name()) != "subscriptionParts") {
        throw std::invalid_argument("The document holds no parts of a subscription");
    }
    Subscription subscription;
    pugi::xml_document part;
    const std::string info = root.child("subscriptionInfo").text().get();
    if (!info.empty()) ReadInfo(Load(part, info), subscription);
    const std::string filters = root.child("filterProperties").text().get();
    if (!filters.empty()) ReadFilters(Load(part, filters), subscription);
    subscription.consumer = CheckedConsumer(root.child("consumerInterface").text().get());
    return subscription;
}

std::chrono::seconds ParseDuration(const std::string& text, std::chrono::seconds otherwise) {
    if (text.empty()) return otherwise;
    std::chrono::seconds::rep count = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, count);
    if (read.ec != std::errc() || read.ptr != end || count < 1 || count > kLongestDuration.count()) {
        throw std::invalid_argument("The duration is no number of seconds from 1 to " +
                                    std::to_string(kLongestDuration.count()));
    }
    return std::chrono::seconds(count);
}

std::string DurationOfRenewal(const std::string& text) {
    pugi::xml_document document;
    const pugi::xml_node root = Load(document, text);
    if (std::string_view(root.name()) != "renewal") throw std::invalid_argument("The document is no renewal");
    return root.child("Duration").text().get();
}

}  // namespace wndevice
