// The agent parent: what CreateWendrel makes, answers, asks and logs.
#include <cstdint>

#include "tests/agent/AgentOperations.h"
#include "tests/support/Golden.h"

namespace wncom::test {
namespace {

// Refuses every interface, and leaves rubbish where the answer would stand.
class RubbishObject final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = reinterpret_cast<void*>(std::uintptr_t{0x1234});
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

class ParentTest : public AgentFixture {
protected:
    // The status, whether there is an agent, and what happened.
    std::string Made(IUnknown* service) {
        auto* agent = reinterpret_cast<IWendrel*>(this);
        const HRESULT status = m_parent->CreateWendrel(service, &agent);
        const char* shown = agent == reinterpret_cast<IWendrel*>(this) ? "untouched" : agent ? "made" : "null";
        if (agent && std::string(shown) == "made") agent->Release();
        return Hex(status) + ", agent " + shown + "\n" + Happened();
    }

    CPComPtr<IInternalWendrelParent> m_parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    RubbishObject m_rubbish;
};

TEST_F(ParentTest, MakesAnAgentOrTellsWhyNot) {
    struct Case {
        const char* name;
        const char* id = "device-7";
        const char* address = kAddress;
    };
    std::string transcript;
    for (const Case& given :
         {Case{"made"}, Case{"no identifier", "", kAddress}, Case{"no address", "device-7", ""}}) {
        const CPComPtr<IServiceDesc> service = Service(given.id, given.address);
        Prepare();
        transcript += std::string("== ") + given.name + ": " + Made(service.get());
    }
    Prepare();
    transcript += "== no description: " + Made(nullptr);
    Prepare();
    transcript += "== no service description: " + Made(&m_rubbish);
    const CPComPtr<IServiceDesc> service = Service();
    Prepare();
    const HRESULT status = m_parent->CreateWendrel(service.get(), nullptr);
    transcript += "== no place: " + Hex(status) + "\n" + Happened();

    OLECHAR clsid[39];
    StringFromGUID2(CLSID_TransportDesc, clsid, 39);
    ASSERT_EQ(RegDeleteTreeA(HKEY_CLASSES_ROOT, ("CLSID\\" + std::string(clsid, clsid + 38)).c_str()), ERROR_SUCCESS);
    Prepare();
    transcript += "== no transport description: " + Made(service.get());
    ExpectGolden("agent/golden/creation.log", transcript);
}

TEST_F(ParentTest, EachCallMakesAnAgentWithATransportDescriptionForAllItsSubmissions) {
    const CPComPtr<IServiceDesc> service = Service();
    CPComPtr<IUnknown> descriptions[3];
    CPComPtr<IWendrel> first;
    CPComPtr<IWendrel> second;
    ASSERT_EQ(Hex(m_parent->CreateWendrel(service.get(), first.put())), Hex(S_OK));
    ASSERT_EQ(Hex(m_parent->CreateWendrel(service.get(), second.put())), Hex(S_OK));
    EXPECT_NE(first.get(), second.get());
    const Bstr ticket = Text("<t/>");
    EXPECT_EQ(Hex(first->SendIntentTicket(ticket.get(), descriptions[0].put())), Hex(S_OK));
    EXPECT_EQ(Hex(first->SendIntentTicket(ticket.get(), descriptions[1].put())), Hex(S_OK));
    EXPECT_EQ(Hex(second->SendIntentTicket(ticket.get(), descriptions[2].put())), Hex(S_OK));
    EXPECT_EQ(descriptions[0].get(), descriptions[1].get());
    EXPECT_NE(descriptions[0].get(), descriptions[2].get());
}

TEST_F(ParentTest, AWholeSubmissionIsLoggedAtTheHighestLevel) {
    const CPComPtr<IServiceDesc> service = Service();
    m_parent.Release();
    SetLogLevel(8);
    Prepare();
    m_parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    ASSERT_EQ(Hex(m_parent->CreateWendrel(service.get(), agent.put())), Hex(S_OK));
    EXPECT_EQ(Hex(Submit(agent)), Hex(S_OK));
    agent.Release();
    m_parent.Release();
    ExpectGolden("agent/golden/submission.log", Happened(true));
}

TEST_F(ParentTest, InitialisationAsksBothObjectsTheServiceDescriptionFirst) {
    const auto agent = Create<IWNInitByParent>(kProgIdWendrel);
    const auto transport = Create<ITransportDesc>(kProgIdTransportDesc);
    const CPComPtr<IServiceDesc> service = Service();
    const CPComPtr<IServiceDesc> nameless = Service("");
    struct Case {
        const char* name;
        IUnknown* service;
        IUnknown* transport;
    };
    Prepare();
    std::string transcript;
    for (const Case& given : {Case{"no transport description", &m_rubbish, nullptr},
                              Case{"no service description", nullptr, transport.get()},
                              Case{"both are something else", &m_rubbish, &m_rubbish},
                              Case{"an invalid one beside something else", nameless.get(), &m_rubbish},
                              Case{"a valid one beside something else", service.get(), &m_rubbish},
                              Case{"both are right", service.get(), transport.get()}}) {
        Prepare();
        const HRESULT status = agent->InitByParent(given.service, given.transport);
        transcript += std::string("== ") + given.name + ": " + Hex(status) + "\n" + Happened();
    }
    ExpectGolden("agent/golden/initialisation.log", transcript);
}

}  // namespace
}  // namespace wncom::test
