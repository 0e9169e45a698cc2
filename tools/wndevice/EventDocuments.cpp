#include "tools/wndevice/EventDocuments.h"

#include <array>
#include <ctime>
#include <string_view>

#include "tools/wndevice/Subscription.h"
#include "tools/wndevice/Xml.h"
#include "tools/wndevice/XmlWriter.h"

namespace wndevice {
namespace {

constexpr std::size_t kLongestJobName = 256;  // bytes

std::string UtcTime(std::chrono::system_clock::time_point moment) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

}  // namespace

std::string EventDocument(const std::string& subscriptionId, std::uint64_t sequence, const std::string& cookie,
                          const Event& event) {
    XmlWriter document("Event");
    AddText(document.root, "SubscriptionID", subscriptionId);
    AddText(document.root, "Sequence", std::to_string(sequence));
    AddText(document.root, "EventName", event.name);
    AddText(document.root, "Time", UtcTime(std::chrono::system_clock::now()));
    if (!cookie.empty()) AddText(document.root, "ClientCookie", cookie);
    for (const auto& [name, value] : event.properties) {
        pugi::xml_node property = document.root.append_child("Property");
        AddText(property, "Name", name);
        AddText(property, "Value", value);
    }
    return document.Text();
}

std::string SubscriptionResult(const std::string& id, std::chrono::seconds duration) {
    XmlWriter document("SubscriptionResult");
    AddText(document.root, "SubscriptionID", id);
    AddText(document.root, "Duration", std::to_string(duration.count()));
    AddText(document.root, "Expires", UtcTime(std::chrono::system_clock::now() + duration));
    return document.Text();
}

std::string EventCapabilities() {
    XmlWriter document("EventCapabilities");
    for (const EventKind& kind : EventKinds()) {
        pugi::xml_node event = document.root.append_child("Event");
        AddText(event, "EventName", kind.name);
        for (const char* property : kind.properties) AddText(event, "Name", property);
    }
    for (const char* option : {"retry", "bestEffort"}) AddText(document.root, "ReliabilityOption", option);
    AddText(document.root, "DefaultDuration", std::to_string(kDefaultDuration.count()));
    AddText(document.root, "LongestDuration", std::to_string(kLongestDuration.count()));
    return document.Text();
}

std::string JobNameOf(const std::string& ticket) {
    pugi::xml_document document;
    if (!document.load_buffer(ticket.data(), ticket.size())) return {};
    const pugi::xml_node found =
        document.find_node([](pugi::xml_node node) { return std::string_view(node.name()) == "jobName"; });
    const std::string name = found.text().get();
    return name.size() <= kLongestJobName && IsPlainText(name) ? name : std::string();
}

}  // namespace wndevice
