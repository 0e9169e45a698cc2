// Each operation of the agent in each situation: its status, its texts, what it asks of the outside and what it logs.
#include <map>

#include "tests/agent/AgentOperations.h"
#include "tests/support/Golden.h"

namespace wncom::test {
namespace {

enum class Arguments { Given, Empty, Null };

struct Situation {
    const char* name;
    void (*prepare)();
    Arguments arguments = Arguments::Given;
};

const Situation kSituations[] = {
    {"answered and traced", ScriptAnswers},
    {"answered", ScriptAnswers},
    {"answered with nothing but details", ScriptDetails},
    {"the remote call throws",
     [] {
         ScriptAnswers();
         MisbehaveRemotely({Fault::Integer});
     }},
    {"a session without an id, and no addresses in the response",
     [] {
         ScriptAnswers();
         Script().Answer("FakeTransport.StartSession", "");
         Script().Answer("FakeTransport.SubmitJob", "<R/>");
     }},
    {"the library makes no object",
     [] {
         ScriptAnswers();
         Script().FailIn("FakeTransport.maker", {Fault::Null});
     }},
    {"the service gives no address",
     [] {
         ScriptAnswers();
         Script().FailIn("ServiceDesc.GetAddress", {Fault::Null});
     }},
    {"the service refuses its address",
     [] {
         ScriptAnswers();
         Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ACCESSDENIED});
     }},
    {"the transport description refuses session and target",
     [] {
         ScriptAnswers();
         Script().FailIn("TransportDesc.SetSessionContext", {Fault::Status, E_ABORT});
         Script().FailIn("TransportDesc.SetTargetURI", {Fault::Status, E_ACCESSDENIED});
     }},
    {"the transport description refuses the job's address",
     [] {
         ScriptAnswers();
         Script().FailIn("TransportDesc.SetJobURI", {Fault::Status, E_INVALIDARG});
     }},
    {"empty texts", ScriptAnswers, Arguments::Empty},
    {"null everywhere", ScriptAnswers, Arguments::Null},
};

std::string Answered(const Operation& operation, const AllInterfaces& agent, Arguments arguments) {
    OutText exception;
    OutText answer;
    // The first character is in both code pages, the second in the narrow one, the third in neither.
    const Bstr text = arguments == Arguments::Given ? ToBstr("t\xC3\xA9\xE2\x82\xAC\xE6\xBC\xA2") : Text("");
    const bool places = arguments != Arguments::Null;
    const HRESULT status = operation.call(agent, places ? text.get() : nullptr, places ? exception.put() : nullptr,
                                          places ? answer.put() : nullptr);
    return Hex(status) + ", exception " + exception.Shown() + ", answer " + answer.Shown() + "\n";
}

class OperationTest : public AgentFixture, public testing::WithParamInterface<Operation> {};

TEST_P(OperationTest, AnswersAsksAndLogsWhatItAlwaysDid) {
    std::string transcript;
    std::map<std::string, std::string> told;
    for (const Situation& situation : kSituations) {
        // The calls of the trace need no second look.
        SetLogLevel(&situation == kSituations ? 5 : 3);
        Prepare();
        const AllInterfaces agent(Agent());
        Prepare();
        situation.prepare();
        // What came to the same before is not told again.
        const std::string answer = Answered(GetParam(), agent, situation.arguments);
        const auto [same, isNew] = told.emplace(answer + Happened(), situation.name);
        transcript +=
            std::string("== ") + situation.name + ": " + (isNew ? same->first : "as " + same->second + "\n");
    }
    ExpectGolden(std::string("agent/golden/") + GetParam().name + ".log", transcript);
}

INSTANTIATE_TEST_SUITE_P(Agent, OperationTest, testing::ValuesIn(Operations().begin(), Operations().end()),
                         [](const auto& instance) { return std::string(instance.param.name); });

using OddAgentTest = AgentFixture;

TEST_F(OddAgentTest, FixedAnswersNeedNoService) {
    std::string transcript;
    const AllInterfaces agent(Create<IWendrel>(kProgIdWendrel));
    Prepare();
    for (const Operation& operation : FixedOperations()) {
        transcript += operation.name + (": " + Answered(operation, agent, Arguments::Given));
        EXPECT_EQ(Hex(operation.call(agent, nullptr, nullptr, nullptr)), Hex(operation.notConnected));
    }
    ExpectGolden("agent/golden/fixed-answers.log", transcript + Happened());
}

TEST_F(OddAgentTest, WithoutInitialisationNothingIsDoneAndTheAgentCanStillBeInitialised) {
    const auto agent = Create<IWendrel>(kProgIdWendrel);
    const AllInterfaces all(agent);
    Prepare();
    std::string transcript;
    for (const Operation& operation : Operations()) {
        transcript += operation.name + (": " + Answered(operation, all, Arguments::Given));
        transcript += operation.name + (", null: " + Answered(operation, all, Arguments::Null));
    }
    OutText ticket;
    transcript += "GetCapabilitiesTicket: " + Hex(agent->GetCapabilitiesTicket(ticket.put())) + ticket.Shown() + "\n";
    ExpectGolden("agent/golden/uninitialised.log", transcript + Happened());

    CPComPtr<IWNInitByParent> init;
    ASSERT_EQ(Hex(agent.QueryInterface(init)), Hex(S_OK));
    const auto transport = Create<ITransportDesc>(kProgIdTransportDesc);
    ScriptAnswers();
    EXPECT_EQ(Hex(init->InitByParent(Service().get(), transport.get())), Hex(S_OK));
    for (const Operation& operation : Operations()) EXPECT_EQ(Hex(operation.Run(all)), Hex(S_OK)) << operation.name;
    EXPECT_EQ(Hex(init->InitByParent(Service().get(), transport.get())), Hex(E_UNEXPECTED)) << "once is enough";
}

}  // namespace
}  // namespace wncom::test
