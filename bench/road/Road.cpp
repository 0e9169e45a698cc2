#include "bench/road/Road.h"

#include "bench/Require.h"
#include "tests/support/TestHome.h"
#include "wncom/Descriptions.h"

namespace wncom::bench {
namespace {

using namespace wncom::test;

constexpr const char* kLoggingKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";
constexpr const char* kPortMapKey = "SOFTWARE\\Quillbeck\\QBNorvel\\PortMap";
constexpr const char* kAddress = "http://127.0.0.1/service";

}  // namespace

Road::Road(const std::string& logging)
    : m_library(ProgramFolder() + "/wnCOM.dll"), m_components(ProgramFolder() + "/wnComponents.dll") {
    Require(SUCCEEDED(m_library.Call("DllRegisterServer")), "wnCOM.dll cannot be registered");
    Require(SUCCEEDED(m_components.Call("DllRegisterServer")), "wnComponents.dll cannot be registered");
    WriteWholeFile(HomePath() + "/Transports.xml",
                   "<t><networkmapping>bench</networkmapping><path>.</path><transportdlls><jobcontrol><dll>"
                   "<type>bench</type><name>BenchTransport.dll</name></dll></jobcontrol></transportdlls></t>");
    WriteWholeFile(HomePath() + "/portmap.xml",
                   std::string("<portmap><device name=\"bench\"><service name=\"jobs\" address=\"") + kAddress +
                       "\" transport=\"network\"/></device></portmap>");
    SetRegistryValue(kLoggingKey, "pathtotransportsxml", HomePath() + "/");
    SetRegistryValue(kLoggingKey, "builddllpath", ProgramFolder() + "/");
    SetRegistryValue(kPortMapKey, "portmapfile", HomePath() + "/portmap.xml");
    SetRegistryValue(kLoggingKey, nullptr, logging);
    m_agent = MakeAgent();
}

CPComPtr<IWendrel> Road::MakeAgent() {
    const auto service = Create<IServiceDesc>(kProgIdServiceDesc);
    service->SetID(Text(kServiceId).get());
    service->SetAddress(Text(kAddress).get());
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    Require(SUCCEEDED(parent->CreateWendrel(service.get(), agent.put())), "no agent");
    return agent;
}

}  // namespace wncom::bench
