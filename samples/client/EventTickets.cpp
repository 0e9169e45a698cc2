// IWNEventAccess: events by tickets, with answers that tell what became of a request.
#include "samples/client/Client.h"

namespace sample {

void ShowEventTickets(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out) {
    const auto events = Ask<wncom::IWNEventAccess>(agent);
    Bstr exception;
    Bstr capabilities;
    Check(events->GetEventCapabilities(exception.put(), capabilities.put()), "GetEventCapabilities");
    out << "first event: " << Shown(ElementText(capabilities, OLESTR("EventName"))) << "\n";

    const Bstr ticket(
        OLESTR("<Subscription><EventName>jobAccepted</EventName><Duration>600</Duration>"
               "<ConsumerInterface>http://127.0.0.1:8099/events</ConsumerInterface></Subscription>"));
    Bstr result;
    Check(events->SubscribeForEvents(ticket.get(), exception.put(), result.put()), "SubscribeForEvents");
    const Bstr subscription = ElementText(result, OLESTR("SubscriptionID"));
    out << Shown(subscription) << " for " << Shown(ElementText(result, OLESTR("Duration"))) << " seconds\n";

    Check(events->Resubscribe(subscription.get(), Bstr(OLESTR("1200")).get(), exception.put()), "Resubscribe");
    Check(events->UnsubscribeForEvents(subscription.get(), exception.put()), "UnsubscribeForEvents");

    const HRESULT status = events->UnsubscribeForEvents(subscription.get(), exception.put());
    out << "UnsubscribeForEvents: " << Hex(status) << ", " << Shown(exception) << "\n";
}

}  // namespace sample
