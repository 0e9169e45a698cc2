// Hostile texts and configurations on the whole road.
#include <cstdint>

#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;

class BadInputTest : public AgentFixture {
protected:
    HRESULT Send(const CPComPtr<IWendrel>& agent, BSTR ticket) {
        CPComPtr<IUnknown> answer;
        return agent->SendIntentTicket(ticket, answer.put());
    }
    HRESULT Send() { return Send(Agent(), Text("<ticket/>").get()); }
};

TEST_F(BadInputTest, ResponsesOfEverySizeAreTakenWhole) {
    const CPComPtr<IWendrel> agent = Agent();
    CPComPtr<IJobControl> jobs;
    ASSERT_EQ(Hex(agent.QueryInterface(jobs)), Hex(S_OK));
    for (const std::size_t size : {1U, 63387U, 63388U, 100U << 20}) {
        Prepare();
        Script().Answer("FakeTransport.SubmitJob", std::string(size, 'x'));
        Bstr response;
        EXPECT_EQ(Hex(jobs->SubmitJob(Text("<t/>").get(), response.put())), Hex(S_OK)) << size;
        EXPECT_EQ(response.length(), size);
        const std::string tooBig = "3 result (" + std::to_string(size) + "): --(too big to log)--";
        EXPECT_EQ(testing::Value(Log(), Contains(tooBig)), size >= 63388) << size;
    }
}

TEST_F(BadInputTest, TextsWithFormatCharactersAndBrokenCharactersGoThrough) {
    const CPComPtr<IWendrel> agent = Agent();
    Prepare();
    Script().Answer("FakeTransport.SubmitJob", "<R><PostURI>%s%n%08lx%S</PostURI></R>");
    const OLECHAR broken[] = {'<', 't', '>', 0xD83D, '%', 's', 0xDC00, '<', '/', 't', '>', 0};
    EXPECT_EQ(Hex(Send(agent, Bstr(broken).get())), Hex(S_OK));
    // Each half of a pair goes out by itself.
    EXPECT_THAT(Script().CallsOf("FakeTransport.SubmitJob"),
                testing::ElementsAre("FakeTransport.SubmitJob(<t>\xED\xA0\xBD%s\xED\xB0\x80</t>, 1)"));
    EXPECT_THAT(Script().CallsOf("TransportDesc.SetTargetURI"),
                testing::ElementsAre("TransportDesc.SetTargetURI(%s%n%08lx%S, 0, 0, 1)"));
}

TEST_F(BadInputTest, ATicketEndsAtAnEmbeddedZero) {
    const CPComPtr<IWendrel> agent = Agent();
    Prepare();
    const std::basic_string<OLECHAR> text(OLESTR("<a/>\0<b/>"), 9);
    EXPECT_EQ(Hex(Send(agent, Bstr(std::basic_string_view<OLECHAR>(text)).get())), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("FakeTransport.SubmitJob"),
                testing::ElementsAre("FakeTransport.SubmitJob(<a/>, 1)"));
}

TEST_F(BadInputTest, EveryBrokenTransportLibraryEndsInAFailedSubmission) {
    WriteWholeFile(HomePath() + "/NoLibrary.dll", "this is no library");
    struct Case {
        const char* library;
        const char* directory;
        const char* message;
    };
    const std::string home = HomePath() + "/";
    const std::string folder = ProgramFolder() + "/";
    for (const Case& broken :
         {Case{"Missing.dll", home.c_str(), "2 JobControlFactory::selectBinary, LoadLibrary for http  failed."},
          Case{"NoLibrary.dll", home.c_str(), "2 JobControlFactory::selectBinary, LoadLibrary for http  failed."},
          Case{"FakeTransportNoMaker.dll", folder.c_str(),
               "2 JobControlFactory::Create(), GetProcAddress() failed."}}) {
        Prepare();
        SetRegistryValue(kLoggingKey, "builddllpath", broken.directory);
        Script().SetCatalogue("http", {{"http", broken.library}});
        EXPECT_EQ(Hex(Send()), Hex(E_FAIL)) << broken.library;
        EXPECT_THAT(Log(), Contains(broken.message));
        EXPECT_THAT(Log(), Contains("3 Create() call on factory failed"));
    }
}

TEST_F(BadInputTest, AMakerThatGivesNothingOrThrowsIsTriedAgain) {
    const CPComPtr<IWendrel> agent = Agent();
    for (const Misbehaviour& wrong : {Misbehaviour{Fault::Null}, Misbehaviour{Fault::CommonException},
                                      Misbehaviour{Fault::OutOfMemory}, Misbehaviour{Fault::Integer}}) {
        Prepare();
        Script().FailIn("FakeTransport.maker", wrong, 1);
        EXPECT_EQ(Hex(Send(agent, Text("<t/>").get())), Hex(E_FAIL));
        EXPECT_EQ(Hex(Send(agent, Text("<t/>").get())), Hex(S_OK));
    }
}

TEST_F(BadInputTest, RegistryValuesOfTheWrongTypeOrLengthEndWell) {
    for (const std::string& value : {std::string(), std::string(1024, 'x'), std::string(5000, 'y')}) {
        for (const char* name : {"pathtotransportsxml", "builddllpath"}) {
            Prepare();
            SetRegistryValue(kLoggingKey, name, value);
            // Without a directory the library is found beside the program, as any bare name is.
            const HRESULT expected = value.empty() ? S_OK : E_FAIL;
            EXPECT_EQ(Hex(Send()), Hex(expected)) << name << " of " << value.size();
        }
        SetRegistryValue(kLoggingKey, "pathtotransportsxml", HomePath() + "/");
        SetRegistryValue(kLoggingKey, "builddllpath", ProgramFolder() + "/");
    }
}

TEST_F(BadInputTest, ALogThatCannotBeOpenedStopsNothing) {
    for (const char* configuration :
         {"file,/no/such/folder/x.log,8", "file,", "nonsense", "file,,3", "console", ",,,,", "file,%s%n,3"}) {
        SetRegistryValue(kLoggingKey, nullptr, configuration);
        Prepare();
        EXPECT_EQ(Hex(Send()), Hex(S_OK)) << configuration;
    }
}

TEST_F(BadInputTest, ACacheManagerThatIsCreatedAsNothingIsNoManager) {
    Script().Answer("FakeTransport.GetWorkflowCapabilities", "<capabilities/>");
    Script().FailIn("XMLCacheMgr.create", {Fault::Null});
    Bstr ticket;
    EXPECT_EQ(Hex(Agent()->GetCapabilitiesTicket(ticket.put())), Hex(S_OK));
    EXPECT_EQ(Narrow(ticket.get()), "<capabilities/>");
    EXPECT_THAT(Log(), Contains("1 WNSimpleCache::SimpleCache not init'ed"));
}

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

TEST_F(BadInputTest, WhatARefusedQueryLeavesBehindIsNotReleased) {
    RubbishObject rubbish;
    const auto agent = Create<IWNInitByParent>(kProgIdWendrel);
    const auto transport = Create<ITransportDesc>(kProgIdTransportDesc);
    EXPECT_EQ(Hex(agent->InitByParent(&rubbish, transport.get())), Hex(E_FAIL));
    EXPECT_THAT(Log(), Contains("1 Couldn't get SD interface - 80004002"));
    EXPECT_EQ(Hex(agent->InitByParent(Service().get(), &rubbish)), Hex(E_FAIL));

    CPComPtr<IWendrel> found;
    EXPECT_EQ(Hex(CPComPtr<IUnknown>(&rubbish).QueryInterface(found)), Hex(E_NOINTERFACE));
    EXPECT_FALSE(found);
}

TEST_F(BadInputTest, DescriptionTextsOfAnySizeAreCarried) {
    Prepare();
    const std::string address = "http://device/" + std::string(1 << 20, 'a');
    Script().SetServices({{address, "network"}});
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    ASSERT_EQ(Hex(parent->CreateWendrel(Service("device-7", address.c_str()).get(), agent.put())), Hex(S_OK));
    EXPECT_EQ(Hex(Send(agent, Text("<t/>").get())), Hex(S_OK));
    EXPECT_FALSE(Script().CallsOf("FakeTransport.Initialize").empty());
    EXPECT_THAT(Script().CallsOf("FakeTransport.Initialize").back(), testing::HasSubstr(address));
}

}  // namespace
}  // namespace wncom::test
