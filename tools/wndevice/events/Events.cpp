#include "tools/wndevice/events/Events.h"

#include <array>
#include <cstdio>

#include "tools/wndevice/xml/Xml.h"

namespace wndevice {
namespace {

std::string UtcTime(std::chrono::system_clock::time_point moment) {
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::seconds>(moment - day));
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

}  // namespace

const std::vector<EventKind>& EventKinds() {
    static const std::vector<EventKind> kinds = {
        {"jobAccepted", {"jobId", "jobUri", "jobName"}},
        {"jobDataReceived", {"jobId", "jobUri", "dataBytes"}},
        {"deviceDataChanged", {"path", "value"}},
    };
    return kinds;
}

std::string EventDocument(const std::string& subscriptionId, std::uint64_t sequence, const std::string& cookie,
                          const Event& event) {
    const XmlDocument document = NewXml("Event");
    xmlNode& root = RootOf(*document);
    AddElement(root, "SubscriptionID", subscriptionId);
    AddElement(root, "Sequence", std::to_string(sequence));
    AddElement(root, "EventName", event.name);
    AddElement(root, "Time", UtcTime(std::chrono::system_clock::now()));
    if (!cookie.empty()) AddElement(root, "ClientCookie", cookie);
    for (const auto& [name, value] : event.properties) {
        xmlNode& property = AddElement(root, "Property");
        AddElement(property, "Name", name);
        AddElement(property, "Value", value);
    }
    return XmlText(*document);
}

std::string SubscriptionResult(const std::string& id, std::chrono::seconds duration) {
    const XmlDocument document = NewXml("SubscriptionResult");
    xmlNode& root = RootOf(*document);
    AddElement(root, "SubscriptionID", id);
    AddElement(root, "Duration", std::to_string(duration.count()));
    AddElement(root, "Expires", UtcTime(std::chrono::system_clock::now() + duration));
    return XmlText(*document);
}

std::string EventCapabilities() {
    const XmlDocument document = NewXml("EventCapabilities");
    xmlNode& root = RootOf(*document);
    for (const EventKind& kind : EventKinds()) {
        xmlNode& event = AddElement(root, "Event");
        AddElement(event, "EventName", kind.name);
        for (const char* property : kind.properties) AddElement(event, "Name", property);
    }
    for (const char* option : {"retry", "bestEffort"}) AddElement(root, "ReliabilityOption", option);
    AddElement(root, "DefaultDuration", std::to_string(kDefaultDuration.count()));
    AddElement(root, "LongestDuration", std::to_string(kLongestDuration.count()));
    return XmlText(*document);
}

}  // namespace wndevice
