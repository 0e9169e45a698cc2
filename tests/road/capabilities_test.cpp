// A capabilities ticket's way from the device into the cache, and out of it without the device.
#include "tests/road/RoadFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CapabilitiesRoadTest : public RoadFixture {
protected:
    // The ticket, or the status in hex when there is none.
    static std::string Capabilities(const CPComPtr<IWendrel>& agent) {
        Bstr ticket;
        const HRESULT status = agent->GetCapabilitiesTicket(ticket.put());
        return status == S_OK ? Narrow(ticket.get()) : Hex(status);
    }
    static void SetLifetime(const std::string& days) {
        WriteWholeFile(HomePath() + "/windows/qbos.ini", "[Cache]\r\nCapTicket=" + days + "\r\n");
    }

    DeviceProcess m_device;
};

TEST_F(CapabilitiesRoadTest, TheSecondTicketComesFromTheCacheThoughTheDeviceIsGone) {
    const std::string first = Capabilities(Agent(m_device.Address()));
    EXPECT_THAT(first, HasSubstr("<workflowId>device-7</workflowId>"));
    EXPECT_THAT(Log(), HasSubstr("calling wf.GetWorkflowCapabilities"));

    m_device.Kill();
    EXPECT_EQ(Capabilities(Agent(m_device.Address())), first);
    EXPECT_THAT(Log(), Not(HasSubstr("HttpClient")));
}

TEST_F(CapabilitiesRoadTest, WithTheCacheOffEachTicketComesFromTheDevice) {
    SetLifetime("0");
    const CPComPtr<IWendrel> agent = Agent(m_device.Address());
    EXPECT_THAT(Capabilities(agent), HasSubstr("<capabilities>"));
    m_device.Kill();
    EXPECT_EQ(Capabilities(agent), Hex(E_FAIL));
}

TEST_F(CapabilitiesRoadTest, ARefusalIsNotKept) {
    const CPComPtr<IServiceDesc> service = Service(m_device.Address());
    const DeviceProcess refusing({"--fault", "capabilities:status=503"});
    SetAddress(service, refusing.Address());
    const CPComPtr<IWendrel> agent = Agent(service);
    EXPECT_EQ(Capabilities(agent), Hex(E_FAIL));
    EXPECT_THAT(Log(), HasSubstr("status 503, a fault on request"));
    SetAddress(service, m_device.Address());
    EXPECT_THAT(Capabilities(agent), HasSubstr("<capabilities>"));
}

}  // namespace
}  // namespace wncom::test
