#include "tests/agent/AgentOperations.h"

namespace wncom::test {
namespace {

const Operation kOperations[] = {
    {"StartSession", [](const AllInterfaces& agent, BSTR, BSTR*, BSTR*) { return agent.sessions->StartSession(); },
     S_OK},
    {"EndSession", [](const AllInterfaces& agent, BSTR, BSTR*, BSTR*) { return agent.sessions->EndSession(); }, S_OK},
    {"RestartSession",
     [](const AllInterfaces& agent, BSTR, BSTR*, BSTR*) { return agent.sessions->RestartSession(); }, S_OK},
    {"SendIntentTicket",
     [](const AllInterfaces& agent, BSTR text, BSTR*, BSTR* answer) {
         return answer ? Submit(agent.wendrel, text) : agent.wendrel->SendIntentTicket(text, nullptr);
     },
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
         return agent.data->SetData(text, SysStringLen(text) ? 1 : 0, exception);
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

const Operation kFixed[] = {
    {"CancelJobWithMessage",
     [](const AllInterfaces& agent, BSTR text, BSTR*, BSTR*) { return agent.jobs->CancelJobWithMessage(text, text); },
     E_FAIL},
    {"CancelJob", [](const AllInterfaces& agent, BSTR text, BSTR*, BSTR*) { return agent.jobs->CancelJob(text); },
     E_FAIL},
    {"QueryJobStatus",
     [](const AllInterfaces& agent, BSTR text, BSTR*, BSTR* answer) {
         return agent.jobs->QueryJobStatus(text, answer);
     },
     E_FAIL},
    {"GetSubscriptionIDList",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.events->GetSubscriptionIDList(text, exception, answer);
     },
     E_NOTIMPL},
    {"GetSubscriptionDetails",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.events->GetSubscriptionDetails(text, text, exception, answer);
     },
     E_NOTIMPL},
    {"GetEventSystemCapabilities",
     [](const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer) {
         return agent.events->GetEventSystemCapabilities(text, exception, answer);
     },
     E_NOTIMPL},
};

}  // namespace

AllInterfaces::AllInterfaces(const CPComPtr<IWendrel>& agent) : wendrel(agent) {
    for (const HRESULT status :
         {agent.QueryInterface(sessions), agent.QueryInterface(jobs), agent.QueryInterface(data),
          agent.QueryInterface(events), agent.QueryInterface(tickets)}) {
        EXPECT_EQ(Hex(status), Hex(S_OK));
    }
}

std::span<const Operation> Operations() { return kOperations; }
std::span<const Operation> FixedOperations() { return kFixed; }

HRESULT Operation::Run(const AllInterfaces& agent) const {
    const Bstr text = Text("text");
    Bstr exception;
    Bstr answer;
    return call(agent, text.get(), exception.put(), answer.put());
}

HRESULT Submit(const CPComPtr<IWendrel>& agent, BSTR ticket) {
    CPComPtr<IUnknown> answer;
    const HRESULT status = agent->SendIntentTicket(ticket, answer.put());
    EXPECT_EQ(SUCCEEDED(status), static_cast<bool>(answer));
    return status;
}

void ScriptAnswers() {
    for (const char* operation : {"GetData", "Subscribe", "GetEventCapabilities", "SubscribeForEvents"}) {
        Script().Answer(std::string("FakeTransport.") + operation, "answer \xC3\xA9");
    }
    for (const char* operation : {"SetData", "Resubscribe", "UnsubscribeForEvents"}) {
        Script().AnswerFlag(std::string("FakeTransport.") + operation, true);
    }
    Script().AnswerList("FakeTransport.GetSupportedEvents", {"one", "", "<&\xC3\xA9"});
    Script().AnswerList("FakeTransport.GetEventProperties", {"one", "two"});
    ScriptDetails();
}

void ScriptDetails() {
    for (const char* operation : {"GetData", "SetData", "GetEventCapabilities", "SubscribeForEvents", "Resubscribe",
                                  "UnsubscribeForEvents"}) {
        Script().Answer(std::string("FakeTransport.") + operation + ".slot", "details");
    }
}

void MisbehaveRemotely(Misbehaviour misbehaviour) {
    for (const char* operation : {"StartSession", "EndSession", "SubmitJob", "GetData", "SetData", "Subscribe",
                                  "Unsubscribe", "GetSupportedEvents", "GetEventProperties", "GetEventCapabilities",
                                  "SubscribeForEvents", "Resubscribe", "UnsubscribeForEvents"}) {
        Script().FailIn(std::string("FakeTransport.") + operation, misbehaviour);
    }
}

}  // namespace wncom::test
