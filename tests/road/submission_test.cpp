// A job's way from the client to the device and back.
#include "tests/road/RoadFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SubmissionTest : public RoadFixture {
protected:
    const DeviceProcess m_device;
};

TEST_F(SubmissionTest, BringsTheTicketToTheDeviceAndTheAddressesBack) {
    std::string dataAddress;
    EXPECT_EQ(Submit(Agent(m_device.Address()), &dataAddress), Hex(S_OK));
    ASSERT_EQ(m_device.Jobs().size(), 1U);
    const std::string job = m_device.Jobs()[0];
    EXPECT_EQ(ReadWholeFile(m_device.Store() + "/jobs/" + job + "/ticket.xml"), kRoadTicket);
    EXPECT_EQ(dataAddress, m_device.Address() + "/jobs/" + job + "/data");
    EXPECT_THAT(Log(), HasSubstr("calling SubmitJob on mJobControl"));
}

TEST_F(SubmissionTest, MakesOneJobEachWhenSeveralAgentsTakeTurns) {
    const CPComPtr<IWendrel> first = Agent(m_device.Address());
    const CPComPtr<IWendrel> second = Agent(m_device.Address());
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_EQ(Submit(first), Hex(S_OK));
        EXPECT_EQ(Submit(second), Hex(S_OK));
    }
    EXPECT_EQ(m_device.Jobs().size(), 6U);
}

TEST_F(SubmissionTest, FollowsTheServiceToANewAddress) {
    const DeviceProcess other;
    const CPComPtr<IServiceDesc> service = Service(m_device.Address());
    const CPComPtr<IWendrel> agent = Agent(service);
    EXPECT_EQ(Submit(agent), Hex(S_OK));
    SetAddress(service, other.Address());
    std::string dataAddress;
    EXPECT_EQ(Submit(agent, &dataAddress), Hex(S_OK));
    EXPECT_THAT(dataAddress, StartsWith(other.Address()));
    EXPECT_EQ(m_device.Jobs().size(), 1U);
    EXPECT_EQ(other.Jobs().size(), 1U);
}

}  // namespace
}  // namespace wncom::test
