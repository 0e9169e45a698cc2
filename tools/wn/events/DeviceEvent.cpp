#include "tools/wn/events/DeviceEvent.h"

#include <charconv>
#include <pugixml.hpp>
#include <stdexcept>

#include "components/Problem.h"
#include "components/xml/XmlParse.h"
#include "components/xml/XmlSource.h"

namespace wn {
namespace {

std::uint64_t ParseSequence(const std::string& text) {
    std::uint64_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size() || number == 0) {
        throw std::invalid_argument("The event's sequence is no number from 1 on");
    }
    return number;
}

DeviceEvent Read(pugi::xml_node root) {
    if (std::string_view(root.name()) != "Event") throw std::invalid_argument("The document is no event");
    DeviceEvent event;
    event.subscription = root.child("SubscriptionID").text().get();
    event.sequence = ParseSequence(root.child("Sequence").text().get());
    event.name = root.child("EventName").text().get();
    if (event.name.empty()) throw std::invalid_argument("The event has no name");
    event.time = root.child("Time").text().get();
    event.cookie = root.child("ClientCookie").text().get();
    for (const pugi::xml_node property : root.children("Property")) {
        event.properties.emplace_back(property.child("Name").text().get(), property.child("Value").text().get());
    }
    return event;
}

}  // namespace

DeviceEvent ParseDeviceEvent(const std::string& document) {
    try {
        pugi::xml_document parsed;
        return Read(wncom::components::ParseXml(wncom::components::DecodeXmlFile(document), parsed));
    } catch (const wncom::components::Problem& problem) {
        throw std::invalid_argument(problem.what());
    }
}

}  // namespace wn
