// Very many operations in one process, which afterwards holds what it held before. WNCOM_SOAK_COUNT sets their
// number:
//   WNCOM_SOAK_COUNT=100000 build/debug/bin/soak_test
#include <cstdio>
#include <cstdlib>

#include "tests/samples/SampleFixture.h"
#include "tests/soak/HostUsage.h"
#include "tests/support/ElementText.h"
#include "tests/support/Host.h"

namespace wncom::test {
namespace {

constexpr int kDefaultCount = 1000;
constexpr int kPerAgent = 20;  // operations; then the agent goes, and the library and the log close with it
constexpr std::size_t kHeapRoom = 8 * 1024;  // bytes that caches of the system may take
constexpr std::size_t kResidentRoom = 256;   // KB

int Count() {
    const char* text = std::getenv("WNCOM_SOAK_COUNT");
    return text ? std::atoi(text) : kDefaultCount;
}

class SoakTest : public SampleFixture {
protected:
    SoakTest() { SetLogging("file," + HomePath() + "/soak.log,100,3"); }

    // Runs the operation so often, with agents for one service.
    template <class Operation>
    void Run(int count, Operation operation) {
        for (int done = 0; done < count && !HasFailure();) {
            const CPComPtr<IWendrel> agent = Agent(m_service);
            for (int i = 0; i < kPerAgent && done < count && !HasFailure(); ++i, ++done) operation(agent);
        }
    }

    template <class Operation>
    void ExpectNothingLeft(Operation operation) {
        // What is made once and kept, and memory that the heap keeps for later, are there after some hundred rounds.
        Run(Count() / 10 + kPerAgent, operation);
        const HostUsage before = CurrentUsage();
        const ULONG references = References();
        const long texts = LiveTexts();
        Run(Count(), operation);
        const HostUsage after = CurrentUsage();
        std::printf(
            "%d operations: heap %zu to %zu bytes, resident %zu to %zu KB, handles %zu to %zu, mappings %zu to %zu\n",
            Count(), before.allocated, after.allocated, before.resident, after.resident, before.handles,
            after.handles, before.mappings, after.mappings);
        EXPECT_EQ(References(), references);
        EXPECT_EQ(LiveTexts(), texts);
        EXPECT_EQ(after.handles, before.handles);
        if (after.plainHeap) {
            EXPECT_EQ(after.mappings, before.mappings);
            EXPECT_LE(after.allocated, before.allocated + kHeapRoom);
            EXPECT_LE(after.resident, before.resident + kResidentRoom);
        }
    }

    ULONG References() const {
        m_service->AddRef();
        return m_service->Release();
    }

    const CPComPtr<IServiceDesc> m_service = Service("device-7");
};

TEST_F(SoakTest, SubmissionsLeaveNothingBehind) {
    const Bstr ticket = Text("<intentTicket>" + std::string(1000, 't') + "</intentTicket>");
    ExpectNothingLeft([&](const CPComPtr<IWendrel>& agent) {
        CPComPtr<IUnknown> answer;
        ASSERT_EQ(Hex(agent->SendIntentTicket(ticket.get(), answer.put())), Hex(S_OK));
        CPComPtr<ITransportDesc> transport;
        ASSERT_EQ(Hex(answer.QueryInterface(transport)), Hex(S_OK));
        Bstr address;
        ASSERT_EQ(Hex(transport->GetTargetURI(address.put())), Hex(S_OK));
        ASSERT_FALSE(address.empty());
    });
}

TEST_F(SoakTest, SubscriptionsLeaveNothingBehind) {
    const Bstr consumer = Text("http://127.0.0.1:8099/events");
    ExpectNothingLeft([&](const CPComPtr<IWendrel>& agent) {
        CPComPtr<IComBaseEvent> events;
        ASSERT_EQ(Hex(agent.QueryInterface(events)), Hex(S_OK));
        Bstr exception;
        Bstr id;
        ASSERT_EQ(Hex(events->Subscribe(nullptr, nullptr, consumer.get(), nullptr, exception.put(), id.put())),
                  Hex(S_OK));
        ASSERT_EQ(Hex(events->Unsubscribe(id.get(), nullptr, nullptr)), Hex(S_OK));
    });
}

TEST_F(SoakTest, SubscriptionTicketsLeaveNothingBehind) {
    const Bstr ticket = Text("<Subscription><ConsumerInterface>c</ConsumerInterface></Subscription>");
    ExpectNothingLeft([&](const CPComPtr<IWendrel>& agent) {
        CPComPtr<IWNEventAccess> events;
        ASSERT_EQ(Hex(agent.QueryInterface(events)), Hex(S_OK));
        Bstr exception;
        Bstr result;
        ASSERT_EQ(Hex(events->SubscribeForEvents(ticket.get(), exception.put(), result.put())), Hex(S_OK));
        const Bstr id = Text(ElementText(Narrow(result.get()), "SubscriptionID"));
        ASSERT_EQ(Hex(events->Resubscribe(id.get(), nullptr, exception.put())), Hex(S_OK));
        ASSERT_EQ(Hex(events->UnsubscribeForEvents(id.get(), exception.put())), Hex(S_OK));
        // A second cancellation is refused: the exception text is the client's to free.
        ASSERT_EQ(Hex(events->UnsubscribeForEvents(id.get(), exception.put())), Hex(E_FAIL));
    });
}

}  // namespace
}  // namespace wncom::test
