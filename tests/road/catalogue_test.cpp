// Catalogues that nobody would write on purpose.
#include "tests/road/RoadFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

constexpr int kMany = 10'000;
constexpr const char* kLibrary = "wnHttpTransport.dll";

class CatalogueRoadTest : public RoadFixture {
protected:
    // An agent that met the bad catalogue stays without libraries; one that is made after the repair works.
    void ExpectAgentWithoutLibraries(const char* telling) {
        const CPComPtr<IWendrel> agent = Agent(m_device.Address());
        EXPECT_THAT(Log(), HasSubstr(telling));
        EXPECT_EQ(Submit(agent), Hex(E_FAIL));
        EXPECT_THAT(Log(), HasSubstr("JobControlFactory::selectBinary, couldn't find "));

        SetCatalogue(Catalogue("http", Dll("http", kLibrary)));
        EXPECT_EQ(Submit(agent), Hex(E_FAIL));
        EXPECT_EQ(m_device.Jobs().size(), 0U);
        EXPECT_EQ(SubmitAnew(m_device.Address()), Hex(S_OK));
    }
    void ExpectWorkingAgents() {
        const CPComPtr<IWendrel> agent = Agent(m_device.Address());
        EXPECT_EQ(Submit(agent), Hex(S_OK));
        EXPECT_EQ(Submit(agent), Hex(S_OK));
    }

    const DeviceProcess m_device;
};

TEST_F(CatalogueRoadTest, AMissingFileLeavesTheAgentWithoutLibraries) {
    RemoveCatalogue();
    ExpectAgentWithoutLibraries("JobControlFactory::GetAccessor(), problem loading XML");
}

TEST_F(CatalogueRoadTest, AFileThatIsNoWholeXmlLeavesTheAgentWithoutLibraries) {
    const std::string whole = Catalogue("http", Dll("http", kLibrary));
    for (const std::string& text : {std::string(), whole.substr(0, whole.size() / 2), std::string("PK\3\4\0\xFF", 6),
                                    std::string("type=http\nname=wnHttpTransport.dll\n")}) {
        SCOPED_TRACE(text);
        SetCatalogue(text);
        const CPComPtr<IWendrel> agent = Agent(m_device.Address());
        EXPECT_THAT(Log(), HasSubstr("JobControlFactory::GetAccessor(), problem loading XML"));
        EXPECT_EQ(Submit(agent), Hex(E_FAIL));
    }
    ExpectAgentWithoutLibraries("JobControlFactory::GetAccessor(), problem loading XML");
}

TEST_F(CatalogueRoadTest, AFileWithoutNetworkMappingLeavesTheAgentWithoutLibraries) {
    SetCatalogue("<transports><path>.</path><transportdlls/></transports>");
    ExpectAgentWithoutLibraries("JobControlFactory::LoadTransportInfo(), GetXML on network mapping failed");
}

TEST_F(CatalogueRoadTest, AnEntryWithoutANameEndsTheList) {
    SetCatalogue(Catalogue("http", "<dll><type>other</type></dll>" + Dll("http", kLibrary)));
    ExpectAgentWithoutLibraries("JobControlFactory::selectBinary, couldn't find http in the map.");
}

TEST_F(CatalogueRoadTest, OfTwentyMegabytesWorks) {
    SetCatalogue(Catalogue("http", "<!--" + std::string(20 << 20, 'x') + "-->" + Dll("http", kLibrary)));
    ExpectWorkingAgents();
}

TEST_F(CatalogueRoadTest, OfTenThousandEntriesWorks) {
    std::string dlls;
    for (int i = 0; i < kMany; ++i) dlls += Dll("type-" + std::to_string(i), "none.dll");
    SetCatalogue(Catalogue("http", dlls + Dll("http", kLibrary)));
    ExpectWorkingAgents();
}

TEST_F(CatalogueRoadTest, TheFirstOfManyDuplicatesCounts) {
    std::string duplicates;
    for (int i = 0; i < kMany; ++i) duplicates += Dll("http", "none.dll");
    SetCatalogue(Catalogue("http", Dll("http", kLibrary) + duplicates));
    ExpectWorkingAgents();

    SetCatalogue(Catalogue("http", duplicates + Dll("http", kLibrary)));
    Log();
    EXPECT_EQ(SubmitAnew(m_device.Address()), Hex(E_FAIL));
    EXPECT_THAT(Log(), HasSubstr("JobControlFactory::selectBinary, LoadLibrary for http  failed."));
}

}  // namespace
}  // namespace wncom::test
