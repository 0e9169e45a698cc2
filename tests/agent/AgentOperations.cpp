#include "tests/agent/AgentOperations.h"

namespace wncom::test {
namespace {

const Operation kOperations[] = {
    {"StartSession", [](const AllInterfaces& agent, BSTR, BSTR*, BSTR*) { return agent.sessions->StartSession(); },
     S_OK},
    {"EndSession", [](const AllInterfaces& agent, BSTR, BSTR*, BSTR*) { return agent.sessions->EndSession(); }, S_OK},
    {"RestartSession",
     [](const AllInterfaces& agent, BSTR, BSTR*, BSTR*) { return agent.sessions->RestartSession(); }, S_OK},
    {"SendIntentTicket", [](const AllInterfaces& agent, BSTR, BSTR*, BSTR*) { return Submit(agent.wendrel); },
     E_FAIL},
    {"SubmitJob",
     [](const AllInterfaces& agent, BSTR text, BSTR*, BSTR* answer) { return agent.jobs->SubmitJob(text, answer); },
     E_FAIL},
    {"GetData",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.data->GetData(text, text, exception, answer);
     },
     E_FAIL},
    {"SetData",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR*) {
         return agent.data->SetData(text, 1, exception);
     },
     E_FAIL},
    {"Subscribe",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.events->Subscribe(text, text, text, text, exception, answer);
     },
     E_FAIL},
    {"Unsubscribe",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR*) {
         return agent.events->Unsubscribe(text, text, exception);
     },
     S_OK},
    {"GetSupportedEvents",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.events->GetSupportedEvents(text, exception, answer);
     },
     S_OK},
    {"GetEventProperties",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.events->GetEventProperties(text, text, exception, answer);
     },
     S_OK},
    {"GetEventCapabilities",
     [](const AllInterfaces& agent, BSTR, BSTR* exception, BSTR* answer) {
         return agent.tickets->GetEventCapabilities(exception, answer);
     },
     E_FAIL},
    {"SubscribeForEvents",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.tickets->SubscribeForEvents(text, exception, answer);
     },
     E_FAIL},
    {"Resubscribe",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR*) {
         return agent.tickets->Resubscribe(text, text, exception);
     },
     E_FAIL},
    {"UnsubscribeForEvents",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR*) {
         return agent.tickets->UnsubscribeForEvents(text, exception);
     },
     E_FAIL},
};

}  // namespace

std::span<const Operation> Operations() { return kOperations; }

HRESULT Operation::Run(const AllInterfaces& agent) const {
    const Bstr text = Text("text");
    Bstr exception;
    Bstr answer;
    return call(agent, text.get(), exception.put(), answer.put());
}

HRESULT Submit(const CPComPtr<IWendrel>& agent) {
    CPComPtr<IUnknown> answer;
    const HRESULT status = agent->SendIntentTicket(Text("<t/>").get(), answer.put());
    EXPECT_EQ(SUCCEEDED(status), static_cast<bool>(answer));
    return status;
}

void ScriptAnswers() {
    for (const char* operation : {"GetData", "Subscribe", "GetEventCapabilities", "SubscribeForEvents"}) {
        Script().Answer(std::string("FakeTransport.") + operation, "answer");
    }
    for (const char* operation : {"SetData", "Resubscribe", "UnsubscribeForEvents"}) {
        Script().AnswerFlag(std::string("FakeTransport.") + operation, true);
    }
    for (const char* operation : {"GetData", "SetData", "GetEventCapabilities", "SubscribeForEvents", "Resubscribe",
                                  "UnsubscribeForEvents"}) {
        Script().Answer(std::string("FakeTransport.") + operation + ".slot", "details");
    }
    Script().AnswerList("FakeTransport.GetSupportedEvents", {"one", "two"});
    Script().AnswerList("FakeTransport.GetEventProperties", {"one", "two"});
}

}  // namespace wncom::test
