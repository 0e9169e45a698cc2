#include "tests/samples/SampleFixture.h"

namespace wncom::test {
namespace {

constexpr const char* kLogging = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";
constexpr const char* kCatalogue =
    "<transports><networkmapping>sample</networkmapping><path>.</path><transportdlls><jobcontrol><dll>"
    "<type>sample</type><name>wnSampleTransport.dll</name></dll></jobcontrol></transportdlls></transports>";

}  // namespace

SampleFixture::SampleFixture()
    : m_agentModule(ProgramFolder() + "/wnCOM.dll"), m_components(ProgramFolder() + "/wnComponents.dll") {
    EXPECT_EQ(Hex(m_agentModule.Call("DllRegisterServer")), Hex(S_OK));
    EXPECT_EQ(Hex(m_components.Call("DllRegisterServer")), Hex(S_OK));
    WriteWholeFile(HomePath() + "/catalogue/Transports.xml", kCatalogue);
    SetRegistryValue(kLogging, "pathtotransportsxml", HomePath() + "/catalogue/");
    SetRegistryValue(kLogging, "builddllpath", ProgramFolder() + "/");
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\PortMap", "portmapfile", HomePath() + "/portmap.xml");
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\XMLCache", "cachefile", HomePath() + "/cache.db");
}

SampleFixture::~SampleFixture() {
    EXPECT_EQ(Hex(m_agentModule.Call("DllCanUnloadNow")), Hex(S_OK)) << "wnCOM is still in use";
    EXPECT_EQ(Hex(m_components.Call("DllCanUnloadNow")), Hex(S_OK)) << "wnComponents is still in use";
    HMODULE transport = nullptr;
    EXPECT_FALSE(
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "wnSampleTransport.dll", &transport))
        << "the transport library is still loaded";
}

void SampleFixture::SetLogging(const std::string& configuration) {
    SetRegistryValue(kLogging, nullptr, configuration);
}

CPComPtr<IServiceDesc> SampleFixture::Service(const std::string& identifier, const std::string& address) {
    auto service = Create<IServiceDesc>(kProgIdServiceDesc);
    EXPECT_EQ(Hex(service->SetID(Text(identifier).get())), Hex(S_OK));
    EXPECT_EQ(Hex(service->SetAddress(Text(address).get())), Hex(S_OK));
    return service;
}

CPComPtr<IWendrel> SampleFixture::Agent(const CPComPtr<IServiceDesc>& service) {
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    EXPECT_EQ(Hex(parent->CreateWendrel(service.get(), agent.put())), Hex(S_OK));
    return agent;
}

}  // namespace wncom::test
