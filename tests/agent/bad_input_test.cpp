// Hostile texts, folders and configurations, from the client to the transport library.
#include "tests/agent/AgentOperations.h"

namespace wncom::test {
namespace {

using BadInputTest = AgentFixture;

TEST_F(BadInputTest, TextsOfEverySizeAreTakenWhole) {
    SetLogLevel(1);  // the log must not be what this test waits for
    const std::string address = "http://device/" + std::string(1 << 20, 'a');
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    Script().SetServices({{address, "network"}});
    ASSERT_EQ(Hex(parent->CreateWendrel(Service("device-7", address.c_str()).get(), agent.put())), Hex(S_OK));
    const AllInterfaces all(agent);

    const std::string large(8 << 20, 'x');
    for (const char* operation : {"SubmitJob", "GetData", "SubscribeForEvents", "GetWorkflowCapabilities"}) {
        Script().Answer(std::string("FakeTransport.") + operation, large);
    }
    const Bstr text = Text(std::string(1 << 20, 't'));
    Bstr answer;
    EXPECT_EQ(Hex(all.jobs->SubmitJob(text.get(), answer.put())), Hex(S_OK));
    EXPECT_EQ(answer.length(), large.size());
    EXPECT_EQ(Hex(all.data->GetData(text.get(), nullptr, nullptr, answer.put())), Hex(S_OK));
    EXPECT_EQ(answer.length(), large.size());
    EXPECT_EQ(Hex(all.tickets->SubscribeForEvents(text.get(), nullptr, answer.put())), Hex(S_OK));
    EXPECT_EQ(answer.length(), large.size());
    for (const char* origin : {"from the service", "from the cache"}) {
        EXPECT_EQ(Hex(agent->GetCapabilitiesTicket(answer.put())), Hex(S_OK));
        EXPECT_EQ(answer.length(), large.size()) << origin;
    }
    EXPECT_EQ(Script().CallsOf("FakeTransport.SubmitJob").at(0).size(), text.length() + 28);

    Script().AnswerList("FakeTransport.GetSupportedEvents", std::vector<std::string>(100000, "Event"));
    EXPECT_EQ(Hex(all.events->GetSupportedEvents(nullptr, nullptr, answer.put())), Hex(S_OK));
    EXPECT_EQ(answer.length(), 76U + 100000U * 23U);
}

TEST_F(BadInputTest, TextsWithFormatCharactersBrokenCharactersAndZerosGoThrough) {
    const CPComPtr<IWendrel> agent = Agent();
    Prepare();
    Script().Answer("FakeTransport.SubmitJob", "<R><PostURI>%s%n%08lx%S</PostURI></R>");
    const OLECHAR broken[] = {'<', 't', '>', 0xD83D, '%', 's', 0xDC00, '<', '/', 't', '>', 0, 'x'};
    EXPECT_EQ(Hex(Submit(agent, Bstr(std::basic_string_view<OLECHAR>(broken, 13)).get())), Hex(S_OK));
    // Each half of a pair goes out by itself, and the ticket ends at its zero.
    EXPECT_EQ(Script().CallsOf("FakeTransport.SubmitJob").at(0),
              "FakeTransport.SubmitJob(<t>\xED\xA0\xBD%s\xED\xB0\x80</t>, 1)");
    EXPECT_EQ(Script().CallsOf("TransportDesc.SetTargetURI").at(0),
              "TransportDesc.SetTargetURI(%s%n%08lx%S, 0, 0, 1)");
}

TEST_F(BadInputTest, FoldersOfEveryLengthEndWell) {
    for (const std::string& value : {std::string(), std::string(1024, 'x'), std::string(5000, 'y')}) {
        for (const char* name : {"pathtotransportsxml", "builddllpath"}) {
            Prepare();
            SetRegistryValue(kLoggingKey, name, value);
            // Without a directory the library is found beside the program, as any bare name is.
            EXPECT_EQ(Hex(Submit(Agent())), Hex(value.empty() ? S_OK : E_FAIL)) << name << " of " << value.size();
        }
        SetRegistryValue(kLoggingKey, "pathtotransportsxml", HomePath() + "/");
        SetRegistryValue(kLoggingKey, "builddllpath", ProgramFolder() + "/");
    }
}

TEST_F(BadInputTest, ALogThatCannotBeOpenedStopsNothing) {
    for (const std::string& configuration :
         {std::string("file,/no/such/folder/x.log,8"), std::string("file,"), std::string("nonsense"),
          std::string("file,,3"), std::string("console"), std::string(",,,,"), "file," + HomePath() + "/%s%n,3"}) {
        SetRegistryValue(kLoggingKey, nullptr, configuration);
        Prepare();
        EXPECT_EQ(Hex(Submit(Agent())), Hex(S_OK)) << configuration;
    }
}

TEST_F(BadInputTest, WhatOnlyOnceWentWrongIsTriedAgain) {
    const CPComPtr<IWendrel> agent = Agent();
    Script().FailIn("FakeTransport.maker", {Fault::Integer}, 2);
    EXPECT_EQ(Hex(Submit(agent)), Hex(E_FAIL));
    EXPECT_EQ(Hex(Submit(agent)), Hex(S_OK));
    // The catalogue is read once in an agent's life.
    Prepare();
    Script().FailIn("XMLSimpleAccessor.LoadXML", {Fault::Status, E_FAIL}, 1);
    const CPComPtr<IWendrel> unlucky = Agent();
    EXPECT_EQ(Hex(Submit(unlucky)), Hex(E_FAIL));
    EXPECT_EQ(Hex(Submit(unlucky)), Hex(E_FAIL));
    EXPECT_EQ(Hex(Submit(Agent())), Hex(S_OK));
}

}  // namespace
}  // namespace wncom::test
