// The operations on events and subscriptions.
#include <set>

#include "tools/wndevice/DeviceService.h"
#include "tools/wndevice/EventDocuments.h"
#include "tools/wndevice/EventKinds.h"
#include "tools/wndevice/RequestBody.h"
#include "tools/wndevice/Subscription.h"

namespace wndevice {
namespace {

using httplib::ContentReader;
using httplib::Request;
using httplib::Response;

constexpr const char* kTooMany = "The device keeps no more subscriptions";
constexpr const char* kUnknown = "There is no such subscription";

// One name a line.
void TellNames(Response& answer, const std::set<std::string>& names) {
    std::string lines;
    for (const std::string& name : names) lines.append(name).append("\n");
    answer.status = 200;
    answer.set_content(lines, "text/plain; charset=utf-8");
}

}  // namespace

void DeviceService::AddEventRoutes() {
    m_server.Get("/events", [this](const Request& request, Response& answer) {
        Serve("events", request, answer, [](const Request&, Response& a) {
            std::set<std::string> names;
            for (const EventKind& kind : EventKinds()) names.insert(kind.name);
            TellNames(a, names);
        });
    });
    m_server.Get("/events/([^/]+)", [this](const Request& request, Response& answer) {
        Serve("properties", request, answer, [this](const Request& r, Response& a) { ListProperties(r, a); });
    });
    m_server.Get("/event-capabilities", [this](const Request& request, Response& answer) {
        Serve("event-capabilities", request, answer, [this](const Request& r, Response& a) {
            if (IsInSession(r, a)) TellXml(a, 200, EventCapabilities());
        });
    });
    m_server.Post("/subscriptions", ServeDocument("subscribe", Caller::Anyone,
                                                  [this](const Request& r, Response& a) { Subscribe(r, a); }));
    m_server.Post("/subscription-tickets",
                  ServeDocument("subscribe-ticket", Caller::InSession,
                                [this](const Request& r, Response& a) { SubscribeTicket(r, a); }));
    m_server.Post("/subscriptions/([^/]+)",
                  ServeDocument("renew", Caller::Anyone, [this](const Request& r, Response& a) { Renew(r, a); }));
    m_server.Delete("/subscriptions/([^/]+)",
                    [this](const Request& request, Response& answer, const ContentReader& reader) {
                        SkipBody(request, reader);
                        Serve("cancel", request, answer, [this](const Request& r, Response& a) { Cancel(r, a); });
                    });
}

void DeviceService::ListProperties(const Request& request, Response& answer) const {
    const std::string name = request.matches[1];
    std::set<std::string> names;
    for (const EventKind& kind : EventKinds()) {
        if (name == "all" || name == kind.name) names.insert(kind.properties.begin(), kind.properties.end());
    }
    if (names.empty()) return Tell(answer, 404, "There is no such event");
    TellNames(answer, names);
}

std::string DeviceService::AddSubscription(const Request& request, const Subscription& subscription) {
    return m_subscribed.Once(request.get_header_value("Request-Id"),
                             [&] { return m_subscriptions.Add(subscription); });
}

void DeviceService::Subscribe(const Request& request, Response& answer) {
    const std::string id = AddSubscription(request, ParseSubscriptionParts(request.body));
    if (id.empty()) return Tell(answer, 503, kTooMany);
    answer.status = 201;
    answer.set_header("Location", m_address + "/subscriptions/" + id);
    answer.set_content(id, "text/plain; charset=utf-8");
}

void DeviceService::SubscribeTicket(const Request& request, Response& answer) {
    const Subscription subscription = ParseSubscriptionTicket(request.body);
    const std::string id = AddSubscription(request, subscription);
    if (id.empty()) return Tell(answer, 503, kTooMany);
    TellXml(answer, 201, SubscriptionResult(id, subscription.duration));
    answer.set_header("Location", m_address + "/subscriptions/" + id);
}

void DeviceService::Renew(const Request& request, Response& answer) {
    const std::string id = request.matches[1];
    const std::chrono::seconds last = m_subscriptions.DurationOf(id);
    if (last == std::chrono::seconds(0)) return Tell(answer, 404, kUnknown);
    if (!m_subscriptions.Renew(id, ParseDuration(DurationOfRenewal(request.body), last))) {
        return Tell(answer, 404, kUnknown);
    }
    Tell(answer, 200, "The subscription is renewed");
}

void DeviceService::Cancel(const Request& request, Response& answer) {
    if (!m_subscriptions.Cancel(request.matches[1])) return Tell(answer, 404, kUnknown);
    Tell(answer, 200, "The subscription is cancelled");
}

}  // namespace wndevice
