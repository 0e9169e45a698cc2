// The operations on events and subscriptions.
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "libraries/http/HttpJobControl.h"
#include "libraries/http/Operation.h"
#include "libraries/http/WireText.h"
#include "wncom/RemoteArray.h"

namespace wncom::http {
namespace {

constexpr std::size_t kMostNames = 1'000'000;

std::string SubscriptionPath(const CString& id) {
    if (!IsPlainId(id)) throw std::invalid_argument("invalid subscription id");
    return std::string("/subscriptions/") + id.c_str();
}

// One name a line. The bridge logs the names and writes them into documents, so nothing else may be among them.
std::vector<CString> NamesIn(std::string_view lines) {
    std::vector<CString> names;
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        std::string_view name = lines.substr(0, end);
        lines.remove_prefix(std::min(end + 1, lines.size()));
        if (!name.empty() && name.back() == '\r') name.remove_suffix(1);
        if (name.empty()) continue;
        if (!IsPlainId(name)) throw std::runtime_error("the device gave an invalid name");
        if (names.size() == kMostNames) throw std::runtime_error("the device gave too many names");
        names.emplace_back(name);
    }
    return names;
}

RemoteArray* NewList(std::vector<CString> names) {
    auto list = std::make_unique<RemoteArray>();
    auto elements = std::make_unique<CString[]>(names.size());
    std::move(names.begin(), names.end(), elements.get());
    list->Init(elements.release(), static_cast<LONG>(names.size()));
    return list.release();
}

Call ListCall(const std::string& path) {
    Call call("GET", path);
    call.answerType = "text/plain";
    return call;
}

}  // namespace

CString HttpJobControl::Subscribe(CString subscriptionInfo, CString filterProperties, CString consumerInterface) {
    return Logged("Subscribe", [&] {
        const std::string request =
            "<subscriptionParts>" + XmlElement("subscriptionInfo", NarrowToWire(subscriptionInfo)) +
            XmlElement("filterProperties", NarrowToWire(filterProperties)) +
            XmlElement("consumerInterface", NarrowToWire(consumerInterface)) + "</subscriptionParts>";
        Call call = DocumentCall("/subscriptions", request, RequestIdHeader());
        call.answerType = "text/plain";
        const std::string id = Client().Send(call);
        if (!IsPlainId(id)) throw std::runtime_error("the device gave an invalid subscription id");
        return CString(std::string_view(id));
    });
}

void HttpJobControl::Unsubscribe(CString subscriptionId) {
    Logged("Unsubscribe", [&] { Client().Send({"DELETE", SubscriptionPath(subscriptionId)}); });
}

RemoteArray* HttpJobControl::GetSupportedEvents() {
    return Logged("GetSupportedEvents", [&] { return NewList(NamesIn(Client().Send(ListCall("/events")))); });
}

RemoteArray* HttpJobControl::GetEventProperties(CString eventName) {
    return Logged("GetEventProperties", [&] {
        if (!IsPlainId(eventName)) throw std::invalid_argument("invalid event name");
        return NewList(NamesIn(Client().Send(ListCall(std::string("/events/") + eventName.c_str()))));
    });
}

CString HttpJobControl::GetEventCapabilities(BSTR* exceptionSlot) {
    return Answered("GetEventCapabilities", exceptionSlot, [&] {
        Call call("GET", "/event-capabilities");
        if (!m_session.empty()) call.headers = {SessionHeader()};
        call.answerType = "application/xml";
        return CString(std::string_view(XmlFromWire(Client().Send(call))));
    });
}

CString HttpJobControl::SubscribeForEvents(CString subscriptionTicket, BSTR* exceptionSlot) {
    return Answered("SubscribeForEvents", exceptionSlot,
                    [&] { return SendDocument("/subscription-tickets", subscriptionTicket, RequestIdHeader()); });
}

bool HttpJobControl::Resubscribe(CString subscriptionId, CString duration, BSTR* exceptionSlot) {
    return Answered("Resubscribe", exceptionSlot, [&] {
        const std::string request = "<renewal>" + XmlElement("Duration", ToWire(duration)) + "</renewal>";
        Client().Send(DocumentCall(SubscriptionPath(subscriptionId), request));
        return true;
    });
}

bool HttpJobControl::UnsubscribeForEvents(CString subscriptionId, BSTR* exceptionSlot) {
    return Answered("UnsubscribeForEvents", exceptionSlot, [&] {
        Client().Send({"DELETE", SubscriptionPath(subscriptionId)});
        return true;
    });
}

}  // namespace wncom::http
