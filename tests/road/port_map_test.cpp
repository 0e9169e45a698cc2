// Port maps that are not there, damaged, huge or wrong. The port map is asked anew at every connection, so the same
// agent works again as soon as it is mended.
#include "tests/road/RoadFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class PortMapRoadTest : public RoadFixture {
protected:
    std::string ServiceOf(const std::string& transport) const {
        return "<service address=\"" + m_device.Address() + "\" transport=\"" + transport + "\"/>";
    }
    static std::string Map(const std::string& services) {
        return "<portmap><device name=\"d\">" + services + "</device></portmap>";
    }
    void ExpectSubmissionOverTheNetwork() {
        EXPECT_EQ(SubmitAnew(m_device.Address()), Hex(S_OK));
        EXPECT_THAT(Log(), HasSubstr("JobControlFactory::checkPortMap, returning empty string"));
    }

    const DeviceProcess m_device;
};

TEST_F(PortMapRoadTest, WithoutAMatchTheServiceIsReachedOverTheNetwork) {
    ExpectSubmissionOverTheNetwork();
    for (const char* map : {"", "no xml", "<portmap><device", "<portmap/>", "<portmap><device name=\"d\"/></portmap>",
                            "<portmap><device><service address=\"http://other/\" transport=\"serial\"/></device>"
                            "</portmap>"}) {
        SCOPED_TRACE(map);
        SetPortMap(map);
        ExpectSubmissionOverTheNetwork();
    }
}

TEST_F(PortMapRoadTest, TheLastOfTenThousandServicesIsFound) {
    std::string services;
    for (int i = 0; i < 10'000; ++i) {
        services += "<service address=\"http://other-" + std::to_string(i) + "/\" transport=\"serial\"/>";
    }
    SetCatalogue(Catalogue("none", Dll("web", "wnHttpTransport.dll")));
    SetPortMap(Map(services + ServiceOf("web")));
    EXPECT_EQ(SubmitAnew(m_device.Address()), Hex(S_OK));
    EXPECT_THAT(Log(), HasSubstr("JobControlFactory::checkPortMap() succeeded, result is web"));
}

TEST_F(PortMapRoadTest, ATransportUnknownToTheCatalogueFailsUntilItIsMended) {
    SetPortMap(Map(ServiceOf("Network")));
    const CPComPtr<IWendrel> agent = Agent(m_device.Address());
    EXPECT_EQ(Submit(agent), Hex(E_FAIL));
    EXPECT_THAT(Log(), HasSubstr("JobControlFactory::selectBinary, couldn't find Network in the map."));
    EXPECT_EQ(m_device.Jobs().size(), 0U);

    SetPortMap(Map(ServiceOf("network")));
    EXPECT_EQ(Submit(agent), Hex(S_OK));
    EXPECT_EQ(SubmitAnew(m_device.Address()), Hex(S_OK));
    EXPECT_THAT(Log(), Not(HasSubstr("couldn't find")));
}

}  // namespace
}  // namespace wncom::test
