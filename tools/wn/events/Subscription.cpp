#include "tools/wn/events/Subscription.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <pugixml.hpp>
#include <sstream>

#include "components/Problem.h"
#include "components/xml/XmlParse.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"

namespace wn {
namespace {

using wncom::Bstr;

void AddText(pugi::xml_node parent, const char* name, const std::string& text) {
    parent.append_child(name).text().set(text.c_str());
}

std::uint32_t Seconds(const std::string& text) {
    std::uint32_t seconds = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), seconds);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() ? seconds : 0;
}

}  // namespace

void AddWishOptions(CLI::App* command, Wish& wish) {
    command
        ->add_option("--filter", wish.filters,
                     "Only events with this property value; may be given again: another value of the same property\n"
                     "passes too, another property must hold as well")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(CLI::Validator(
            [](const std::string& text) {
                const std::size_t sign = text.find('=');
                return sign == 0 || sign == std::string::npos ? "write NAME=VALUE" : std::string();
            },
            ""));
    command->add_option("--cookie", wish.cookie, "Text that comes back with each event")->type_name("TEXT");
    command->add_flag("--best-effort", wish.bestEffort, "The service tries each event once only");
}

Bstr SubscriptionTicket(const Wish& wish) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Subscription");
    for (const std::string& event : wish.events) AddText(root, "EventName", event);
    for (const std::string& filter : wish.filters) {
        pugi::xml_node pair = root.append_child("FilterOn");
        AddText(pair, "Name", filter.substr(0, filter.find('=')));
        AddText(pair, "Value", filter.substr(filter.find('=') + 1));
    }
    AddText(root, "ReliabilityOption", wish.bestEffort ? "bestEffort" : "retry");
    if (!wish.cookie.empty()) AddText(root, "ClientCookie", wish.cookie);
    AddText(root, "ConsumerInterface", wish.consumer);
    if (wish.duration != 0) AddText(root, "Duration", std::to_string(wish.duration));
    std::ostringstream text;
    document.save(text, "", pugi::format_raw, pugi::encoding_utf8);
    return FromUtf8(text.str(), "The subscription");
}

Subscription Subscribe(const Agent& agent, const Bstr& ticket) {
    Bstr said;
    Bstr answer;
    agent.Call("Cannot subscribe at", said, [&] {
        return agent.As<wncom::IWNEventAccess>()->SubscribeForEvents(ticket.get(), said.put(), answer.put());
    });

    const std::string text = ToUtf8(answer.view());
    pugi::xml_document document;
    pugi::xml_node root;
    try {
        root = wncom::components::ParseXml(text, document);
    } catch (const wncom::components::Problem&) {
        // Told below, as an answer without an identifier is.
    }
    Subscription result;
    result.id = root.child("SubscriptionID").text().get();
    result.duration = Seconds(root.child("Duration").text().get());
    result.expires = root.child("Expires").text().get();
    if (result.id.empty()) {
        throw CommandError("The service answered without a SubscriptionID", {.reason = OneLine(text)});
    }
    return result;
}

void Renew(const Agent& agent, const std::string& id, std::uint32_t duration) {
    const Bstr seconds = FromUtf8(duration == 0 ? "" : std::to_string(duration), "The duration");
    const Bstr wide = FromUtf8(id, "The identifier");
    Bstr said;
    agent.Call("The subscription " + id + " was not renewed at", said,
               [&] { return agent.As<wncom::IWNEventAccess>()->Resubscribe(wide.get(), seconds.get(), said.put()); });
}

void Cancel(const Agent& agent, const std::string& id) {
    const Bstr wide = FromUtf8(id, "The identifier");
    Bstr said;
    agent.Call("The subscription " + id + " was not cancelled at", said,
               [&] { return agent.As<wncom::IWNEventAccess>()->UnsubscribeForEvents(wide.get(), said.put()); });
}

}  // namespace wn
