// The whole road with nothing faked: the real modules through their registration, and a device service of its own
// process. What each part does is proved where it lives; here, that they are joined.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/Com.h"
#include "tests/support/DeviceProcess.h"
#include "tests/support/ElementText.h"
#include "tests/support/EventConsumer.h"
#include "tests/support/TestHome.h"
#include "wncom/Descriptions.h"
#include "wncom/wnCOM.h"

namespace wncom::test {
namespace {

constexpr const char* kTicket = "<intentTicket><jobName>Programme</jobName></intentTicket>";
constexpr const char* kProduct = "SOFTWARE\\Quillbeck\\QBNorvel\\";

// Begins with a catalogue and without a port map. A test that leaves an object, a module lock or the transport
// library behind fails.
class RoadTest : public testing::Test {
protected:
    RoadTest() {
        EXPECT_EQ(Hex(m_agentModule.Call("DllRegisterServer")), Hex(S_OK));
        EXPECT_EQ(Hex(m_components.Call("DllRegisterServer")), Hex(S_OK));
        SetRegistryValue(std::string(kProduct) + "Logging", nullptr, "file," + m_logPath + ",3");
        SetRegistryValue(std::string(kProduct) + "Logging", "pathtotransportsxml", HomePath() + "/");
        SetRegistryValue(std::string(kProduct) + "Logging", "builddllpath", ProgramFolder() + "/");
        SetRegistryValue(std::string(kProduct) + "PortMap", "portmapfile", HomePath() + "/portmap.xml");
        SetCatalogue("wnHttpTransport.dll");
    }
    ~RoadTest() override {
        EXPECT_EQ(Hex(m_agentModule.Call("DllCanUnloadNow")), Hex(S_OK)) << "wnCOM is still in use";
        EXPECT_EQ(Hex(m_components.Call("DllCanUnloadNow")), Hex(S_OK)) << "wnComponents is still in use";
        HMODULE transport = nullptr;
        EXPECT_FALSE(
            GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "wnHttpTransport.dll", &transport))
            << "the transport library is still loaded";
    }

    static void SetCatalogue(const std::string& library) {
        WriteWholeFile(
            HomePath() + "/Transports.xml",
            "<transports><networkmapping>http</networkmapping><path>.</path><transportdlls><jobcontrol><dll>"
            "<type>http</type><name>" +
                library + "</name></dll></jobcontrol></transportdlls></transports>");
    }
    void SetPortMap(const std::string& transport) const {
        WriteWholeFile(HomePath() + "/portmap.xml", "<portmap><device><service address=\"" + m_device.Address() +
                                                        "\" transport=\"" + transport + "\"/></device></portmap>");
    }

    static CPComPtr<IServiceDesc> Service(const std::string& address) {
        auto service = Create<IServiceDesc>(kProgIdServiceDesc);
        EXPECT_EQ(Hex(service->SetID(Text("device-7").get())), Hex(S_OK));
        EXPECT_EQ(Hex(service->SetAddress(Text(address).get())), Hex(S_OK));
        return service;
    }
    static CPComPtr<IWendrel> Agent(const CPComPtr<IServiceDesc>& service) {
        CPComPtr<IWendrel> agent;
        const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
        EXPECT_EQ(Hex(parent->CreateWendrel(service.get(), agent.put())), Hex(S_OK));
        return agent;
    }
    CPComPtr<IWendrel> Agent() const { return Agent(Service(m_device.Address())); }
    // The data address, or the status in hex.
    static std::string Submit(const CPComPtr<IWendrel>& agent) {
        CPComPtr<IUnknown> answer;
        const HRESULT status = agent->SendIntentTicket(Text(kTicket).get(), answer.put());
        if (FAILED(status)) return Hex(status);
        Bstr address;
        EXPECT_EQ(Hex(answer.query<ITransportDesc>()->GetTargetURI(address.put())), Hex(S_OK));
        return Narrow(address.get());
    }
    void ExpectLogged(const char* text) const {
        EXPECT_NE(ReadWholeFile(m_logPath).find(text), std::string::npos) << "not in the log: " << text;
    }

    const std::string m_logPath = HomePath() + "/road.log";
    DeviceProcess m_device;

private:
    LoadedModule m_agentModule{ProgramFolder() + "/wnCOM.dll"};
    LoadedModule m_components{ProgramFolder() + "/wnComponents.dll"};
    Apartment m_apartment;
};

TEST_F(RoadTest, ASubmissionBringsTheTicketToTheDeviceAndTheAddressesBack) {
    const CPComPtr<IWendrel> first = Agent();
    const CPComPtr<IWendrel> second = Agent();
    const std::string address = Submit(first);
    ASSERT_EQ(m_device.Jobs().size(), 1U);
    const std::string job = m_device.Jobs()[0];
    EXPECT_EQ(address, m_device.Address() + "/jobs/" + job + "/data");
    EXPECT_EQ(ReadWholeFile(m_device.Store() + "/jobs/" + job + "/ticket.xml"), kTicket);
    ExpectLogged("calling SubmitJob on mJobControl");
    Submit(second);
    Submit(first);
    EXPECT_EQ(m_device.Jobs().size(), 3U);
}

TEST_F(RoadTest, AnAgentFollowsItsServiceFromADeviceThatIsGoneToOneThatWorks) {
    DeviceProcess gone;
    gone.Kill();
    const CPComPtr<IServiceDesc> service = Service(gone.Address());
    const CPComPtr<IWendrel> agent = Agent(service);
    EXPECT_EQ(Submit(agent), Hex(E_FAIL));
    ExpectLogged("HttpJobControl::StartSession failed");
    EXPECT_EQ(Hex(service->SetAddress(Text(m_device.Address()).get())), Hex(S_OK));
    EXPECT_TRUE(Submit(agent).starts_with(m_device.Address()));
}

TEST_F(RoadTest, ThePortMapIsAskedAnewAtEachConnectionAndTheCatalogueOncePerAgent) {
    SetPortMap("serial");
    const CPComPtr<IWendrel> agent = Agent();
    EXPECT_EQ(Submit(agent), Hex(E_FAIL));
    ExpectLogged("JobControlFactory::selectBinary, couldn't find serial in the map.");
    SetPortMap("network");
    EXPECT_TRUE(Submit(agent).starts_with(m_device.Address()));

    WriteWholeFile(HomePath() + "/Transports.xml", "<transports>");
    const CPComPtr<IWendrel> without = Agent();
    ExpectLogged("JobControlFactory::GetAccessor(), problem loading XML");
    SetCatalogue("wnHttpTransport.dll");
    EXPECT_EQ(Submit(without), Hex(E_FAIL));
    EXPECT_TRUE(Submit(Agent()).starts_with(m_device.Address()));
}

TEST_F(RoadTest, TheSecondCapabilitiesTicketComesFromTheCacheThoughTheDeviceIsGone) {
    Bstr first;
    EXPECT_EQ(Hex(Agent()->GetCapabilitiesTicket(first.put())), Hex(S_OK));
    EXPECT_EQ(ElementText(Narrow(first.get()), "workflowId"), "device-7");
    m_device.Kill();
    Bstr second;
    EXPECT_EQ(Hex(Agent()->GetCapabilitiesTicket(second.put())), Hex(S_OK));
    EXPECT_EQ(Narrow(second.get()), Narrow(first.get()));
}

TEST_F(RoadTest, DeviceDataThatWasSetIsReadAndItsEventReachesTheConsumer) {
    EventConsumer consumer;
    const CPComPtr<IWendrel> agent = Agent();
    Bstr exception;
    Bstr id;
    EXPECT_EQ(Hex(agent.query<IComBaseEvent>()->Subscribe(nullptr, nullptr, Text(consumer.Address()).get(), nullptr,
                                                          exception.put(), id.put())),
              Hex(S_OK));
    const auto data = agent.query<IWNXDMAccess>();
    EXPECT_EQ(Hex(data->SetData(Text("<setData><prefixes>d=urn:wncom:device-data</prefixes><set><path>"
                                     "//d:operatorMessage</path><value>Back at 14:00</value></set></setData>")
                                    .get(),
                                0, exception.put())),
              Hex(S_OK));
    Bstr read;
    EXPECT_EQ(Hex(data->GetData(Text("string(//d:operatorMessage)").get(), Text("d=urn:wncom:device-data").get(),
                                exception.put(), read.put())),
              Hex(S_OK));
    EXPECT_EQ(ElementText(Narrow(read.get()), "value"), "Back at 14:00");
    const std::vector<std::string> events = consumer.Wait(1);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(ElementText(events[0], "SubscriptionID"), Narrow(id.get()));
    EXPECT_EQ(ElementText(events[0], "EventName"), "deviceDataChanged");
}

}  // namespace
}  // namespace wncom::test
