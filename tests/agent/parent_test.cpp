// The agent parent: what CreateWendrel makes, logs and leaves behind.
#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

class ParentTest : public AgentFixture {
protected:
    CPComPtr<IInternalWendrelParent> m_parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
};

TEST_F(ParentTest, MakesAnAgentForTheDescription) {
    const CPComPtr<IServiceDesc> service = Service();
    Script().Reset();
    Script().SetCatalogue("http", {{"http", "FakeTransport.dll"}});
    CPComPtr<IWendrel> agent;
    EXPECT_EQ(Hex(m_parent->CreateWendrel(service.get(), agent.put())), Hex(S_OK));
    ASSERT_TRUE(agent);
    // Validated once, asked for its address once more for the bridge.
    EXPECT_THAT(Script().CallsOf("ServiceDesc"),
                ElementsAre("ServiceDesc.GetID()", "ServiceDesc.GetAddress()", "ServiceDesc.GetAddress()"));
    std::vector<std::string> flow;
    for (const std::string& line : Log()) {
        if (line.starts_with("3 Got ") || line == "3 Init OK") flow.push_back(line);
    }
    EXPECT_THAT(flow, ElementsAre("3 Got Wendrel", "3 Got WendrelInit", "3 Got TransportDesc", "3 Init OK"));
    agent.Release();
    EXPECT_THAT(Script().CallsOf("FakeTransport.demaker").size(), testing::Ge(1U));
}

TEST_F(ParentTest, EachCallMakesAnAgentAndATransportDescriptionOfItsOwn) {
    const CPComPtr<IServiceDesc> service = Service();
    CPComPtr<IWendrel> first;
    CPComPtr<IWendrel> second;
    ASSERT_EQ(Hex(m_parent->CreateWendrel(service.get(), first.put())), Hex(S_OK));
    ASSERT_EQ(Hex(m_parent->CreateWendrel(service.get(), second.put())), Hex(S_OK));
    EXPECT_NE(first.get(), second.get());
    CPComPtr<IUnknown> firstTransport;
    CPComPtr<IUnknown> secondTransport;
    ASSERT_EQ(Hex(first->SendIntentTicket(Text("<t/>").get(), firstTransport.put())), Hex(S_OK));
    ASSERT_EQ(Hex(second->SendIntentTicket(Text("<t/>").get(), secondTransport.put())), Hex(S_OK));
    EXPECT_NE(firstTransport.get(), secondTransport.get());
}

TEST_F(ParentTest, NullArgumentsAreRefused) {
    CPComPtr<IWendrel> agent;
    EXPECT_EQ(Hex(m_parent->CreateWendrel(nullptr, agent.put())), Hex(E_FAIL));
    EXPECT_EQ(Hex(m_parent->CreateWendrel(Service().get(), nullptr)), Hex(E_FAIL));
    EXPECT_THAT(Log(), IsSupersetOf({"3 CWendrelParent::CreateWendrel Parameter \"pIServiceDesc\" is NULL!",
                                     "3 CWendrelParent::CreateWendrel Parameter \"ppIWendrel\" is NULL!"}));
}

struct Refusal {
    const char* id;
    const char* address;
    const char* message;
    bool addressAsked;
};

TEST_F(ParentTest, ADescriptionWithoutIdentifierOrAddressIsRefused) {
    for (const Refusal& refusal : {Refusal{"", kAddress, "1 ValidateSD() ID failed", false},
                                   Refusal{"device-7", "", "1 ValidateSD() address failed", true}}) {
        Prepare();
        const CPComPtr<IServiceDesc> service = Service(refusal.id, refusal.address);
        auto* agent = reinterpret_cast<IWendrel*>(this);
        EXPECT_EQ(Hex(m_parent->CreateWendrel(service.get(), &agent)), Hex(E_FAIL));
        EXPECT_EQ(agent, nullptr);
        EXPECT_THAT(Log(), Contains(refusal.message));
        EXPECT_EQ(!Script().CallsOf("ServiceDesc.GetAddress").empty(), refusal.addressAsked);
    }
}

TEST_F(ParentTest, AnObjectThatIsNoServiceDescriptionIsRefused) {
    CPComPtr<IWendrel> agent;
    EXPECT_EQ(Hex(m_parent->CreateWendrel(m_parent.get(), agent.put())), Hex(E_FAIL));
    EXPECT_THAT(Log(), Contains("1 Couldn't get SD interface - 80004002"));
}

TEST_F(ParentTest, AMissingTransportDescriptionComponentLeavesNoAgent) {
    OLECHAR clsid[39];
    StringFromGUID2(CLSID_TransportDesc, clsid, 39);
    const std::string key = "CLSID\\" + std::string(clsid, clsid + 38);
    ASSERT_EQ(RegDeleteTreeA(HKEY_CLASSES_ROOT, key.c_str()), ERROR_SUCCESS);
    const CPComPtr<IServiceDesc> service = Service();
    auto* agent = reinterpret_cast<IWendrel*>(this);
    EXPECT_EQ(Hex(m_parent->CreateWendrel(service.get(), &agent)), Hex(REGDB_E_CLASSNOTREG));
    EXPECT_EQ(agent, nullptr);
    EXPECT_THAT(Log(), Contains("1 CreateIFace ERROR: CoCreateInstance Failed: 0x80040154"));
    EXPECT_THAT(Log(), Not(Contains("3 Got TransportDesc")));
}

}  // namespace
}  // namespace wncom::test
