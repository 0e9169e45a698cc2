// IComBaseEvent: events by separate texts.
#include "samples/client/Client.h"

namespace sample {

void ShowEvents(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out) {
    const auto events = Ask<wncom::IComBaseEvent>(agent);
    Bstr exception;
    Bstr list;
    Check(events->GetSupportedEvents(nullptr, exception.put(), list.put()), "GetSupportedEvents");
    out << Shown(list);
    // A null name asks for the properties of every event.
    Check(events->GetEventProperties(nullptr, nullptr, exception.put(), list.put()), "GetEventProperties");
    out << Shown(list);

    const Bstr info(OLESTR("<Subscription><EventName>jobAccepted</EventName></Subscription>"));
    const Bstr consumer(OLESTR("http://127.0.0.1:8099/events"));
    Bstr subscription;
    Check(events->Subscribe(info.get(), nullptr, consumer.get(), nullptr, exception.put(), subscription.put()),
          "Subscribe");
    // The exception text says the same whatever the outcome: the status alone tells.
    out << Shown(subscription) << ", " << Shown(exception) << "\n";
    // S_OK says that the request went out, not that there was such a subscription.
    Check(events->Unsubscribe(subscription.get(), nullptr, nullptr), "Unsubscribe");

    out << "GetSubscriptionIDList: " << Hex(events->GetSubscriptionIDList(nullptr, nullptr, nullptr)) << "\n";
}

}  // namespace sample
