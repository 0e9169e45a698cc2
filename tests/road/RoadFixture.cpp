#include "tests/road/RoadFixture.h"

#include <filesystem>

namespace wncom::test {
namespace {

constexpr const char* kProduct = "SOFTWARE\\Quillbeck\\QBNorvel\\";

std::string Key(const char* name) { return std::string(kProduct) + name; }

std::string CataloguePath() { return HomePath() + "/catalogue/Transports.xml"; }
std::string PortMapPath() { return HomePath() + "/portmap.xml"; }

}  // namespace

RoadFixture::RoadFixture()
    : m_agentModule(ProgramFolder() + "/wnCOM.dll"), m_components(ProgramFolder() + "/wnComponents.dll") {
    EXPECT_EQ(Hex(m_agentModule.Call("DllRegisterServer")), Hex(S_OK));
    EXPECT_EQ(Hex(m_components.Call("DllRegisterServer")), Hex(S_OK));
    SetRegistryValue(Key("Logging"), nullptr, "file," + m_logPath + ",3");
    SetRegistryValue(Key("Logging"), "pathtotransportsxml", HomePath() + "/catalogue/");
    SetRegistryValue(Key("Logging"), "builddllpath", ProgramFolder() + "/");
    SetRegistryValue(Key("PortMap"), "portmapfile", PortMapPath());
    SetCatalogue(Catalogue("http", Dll("http", "wnHttpTransport.dll")));
}

RoadFixture::~RoadFixture() {
    EXPECT_EQ(Hex(m_agentModule.Call("DllCanUnloadNow")), Hex(S_OK)) << "wnCOM is still in use";
    EXPECT_EQ(Hex(m_components.Call("DllCanUnloadNow")), Hex(S_OK)) << "wnComponents is still in use";
    HMODULE transport = nullptr;
    EXPECT_FALSE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "wnHttpTransport.dll", &transport))
        << "the transport library is still loaded";
}

void RoadFixture::SetCatalogue(const std::string& text) { WriteWholeFile(CataloguePath(), text); }
void RoadFixture::RemoveCatalogue() { std::filesystem::remove(CataloguePath()); }
void RoadFixture::SetPortMap(const std::string& text) { WriteWholeFile(PortMapPath(), text); }

std::string RoadFixture::Dll(const std::string& type, const std::string& name) {
    return "<dll><type>" + type + "</type><name>" + name + "</name></dll>";
}

std::string RoadFixture::Catalogue(const std::string& networkMapping, const std::string& dlls) {
    return "<?xml version=\"1.0\"?>\n<transports><networkmapping>" + networkMapping +
           "</networkmapping><path>.</path><transportdlls><jobcontrol>" + dlls +
           "</jobcontrol></transportdlls></transports>";
}

void RoadFixture::SetTransport(const char* name, DWORD value) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, Key("HttpTransport").c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                              KEY_WRITE, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value)),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

CPComPtr<IServiceDesc> RoadFixture::Service(const std::string& address) {
    auto service = Create<IServiceDesc>(kProgIdServiceDesc);
    EXPECT_EQ(Hex(service->SetID(Text("device-7").get())), Hex(S_OK));
    SetAddress(service, address);
    return service;
}

CPComPtr<IWendrel> RoadFixture::Agent(const CPComPtr<IServiceDesc>& service) {
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    EXPECT_EQ(Hex(parent->CreateWendrel(service.get(), agent.put())), Hex(S_OK));
    return agent;
}

void RoadFixture::SetAddress(const CPComPtr<IServiceDesc>& service, const std::string& address) {
    EXPECT_EQ(Hex(service->SetAddress(Text(address).get())), Hex(S_OK));
}

std::string RoadFixture::Submit(const CPComPtr<IWendrel>& agent, std::string* dataAddress) {
    CPComPtr<IUnknown> answer;
    const HRESULT status = agent->SendIntentTicket(Text(kRoadTicket).get(), answer.put());
    EXPECT_EQ(SUCCEEDED(status), static_cast<bool>(answer));
    if (dataAddress && answer) {
        CPComPtr<ITransportDesc> transport;
        EXPECT_EQ(Hex(answer.QueryInterface(transport)), Hex(S_OK));
        Bstr text;
        EXPECT_EQ(Hex(transport->GetTargetURI(text.put())), Hex(S_OK));
        *dataAddress = Narrow(text.get());
    }
    return Hex(status);
}

std::string RoadFixture::Log() {
    const std::string whole = ReadWholeFile(m_logPath);
    std::string fresh = whole.substr(m_logRead);
    m_logRead = whole.size();
    return fresh;
}

}  // namespace wncom::test
