// IInternalWendrelParent: how a client comes by an agent.
#include "samples/client/Client.h"
#include "wncom/Descriptions.h"

namespace sample {

CPComPtr<wncom::IWendrel> NewAgent(const OLECHAR* identifier, const OLECHAR* address) {
    const auto service = Create<wncom::IServiceDesc>(wncom::kProgIdServiceDesc);
    Check(service->SetID(Bstr(identifier).get()), "SetID");
    Check(service->SetAddress(Bstr(address).get()), "SetAddress");

    const auto parent = Create<wncom::IInternalWendrelParent>(wncom::kProgIdWendrelParent);
    CPComPtr<wncom::IWendrel> agent;
    Check(parent->CreateWendrel(service.get(), agent.put()), "CreateWendrel");
    return agent;
}

}  // namespace sample
