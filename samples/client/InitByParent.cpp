// IWNInitByParent: what the agent parent does for a client, done by hand. A client needs it only to give the agent a
// transport description of its own.
#include "samples/client/Client.h"
#include "wncom/Descriptions.h"

namespace sample {

CPComPtr<wncom::IWendrel> NewAgentByHand(const OLECHAR* identifier, const OLECHAR* address) {
    const auto service = Create<wncom::IServiceDesc>(wncom::kProgIdServiceDesc);
    Check(service->SetID(Bstr(identifier).get()), "SetID");
    Check(service->SetAddress(Bstr(address).get()), "SetAddress");
    const auto transport = Create<wncom::ITransportDesc>(wncom::kProgIdTransportDesc);

    auto agent = Create<wncom::IWendrel>(wncom::kProgIdWendrel);
    const auto init = Ask<wncom::IWNInitByParent>(agent);
    Check(init->InitByParent(service.get(), transport.get()), "InitByParent");
    return agent;
}

}  // namespace sample
