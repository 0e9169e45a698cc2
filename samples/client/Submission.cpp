// IWendrel: the capabilities of a service, and a job.
#include "samples/client/Client.h"
#include "wncom/Descriptions.h"

namespace sample {

void ShowSubmission(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out) {
    Bstr capabilities;
    Check(agent->GetCapabilitiesTicket(capabilities.put()), "GetCapabilitiesTicket");
    out << "device: " << Shown(ElementText(capabilities, OLESTR("deviceName"))) << "\n";

    const Bstr ticket(OLESTR("<intentTicket><jobName>Programme</jobName></intentTicket>"));
    CPComPtr<IUnknown> answer;
    Check(agent->SendIntentTicket(ticket.get(), answer.put()), "SendIntentTicket");

    const auto transport = Ask<wncom::ITransportDesc>(answer);
    Bstr dataAddress;
    Bstr jobAddress;
    LONG deliveryMethod = -1;
    Check(transport->GetTargetURI(dataAddress.put()), "GetTargetURI");
    Check(transport->GetJobURI(jobAddress.put()), "GetJobURI");
    Check(transport->GetDeliveryMethod(&deliveryMethod), "GetDeliveryMethod");
    out << "deliver the data to: " << Shown(dataAddress) << " by method " << deliveryMethod << "\n";
    out << "the job is: " << Shown(jobAddress) << "\n";
}

}  // namespace sample
