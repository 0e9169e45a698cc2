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

class SoakTest : public SampleFixture {
protected:
    SoakTest() { SetLogging("file," + HomePath() + "/soak.log,100,3"); }

    void Run(int count) {
        for (int done = 0; done < count && !HasFailure(); done += kPerAgent) {
            const CPComPtr<IWendrel> agent = Agent(m_service);
            for (int i = 0; i < kPerAgent && !HasFailure(); ++i) Operate(agent);
        }
    }
    ULONG References() const {
        m_service->AddRef();
        return m_service->Release();
    }

private:
    // What a client does with one job, one event and one subscription.
    void Operate(const CPComPtr<IWendrel>& agent) {
        CPComPtr<IUnknown> answer;
        ASSERT_EQ(Hex(agent->SendIntentTicket(m_ticket.get(), answer.put())), Hex(S_OK));
        Bstr address;
        ASSERT_EQ(Hex(answer.query<ITransportDesc>()->GetTargetURI(address.put())), Hex(S_OK));
        ASSERT_FALSE(address.empty());

        const auto events = agent.query<IComBaseEvent>();
        Bstr exception;
        Bstr id;
        ASSERT_EQ(Hex(events->Subscribe(nullptr, nullptr, m_consumer.get(), nullptr, exception.put(), id.put())),
                  Hex(S_OK));
        ASSERT_EQ(Hex(events->Unsubscribe(id.get(), nullptr, nullptr)), Hex(S_OK));

        const auto tickets = agent.query<IWNEventAccess>();
        Bstr result;
        ASSERT_EQ(Hex(tickets->SubscribeForEvents(m_subscription.get(), exception.put(), result.put())), Hex(S_OK));
        id = Text(ElementText(Narrow(result.get()), "SubscriptionID"));
        ASSERT_EQ(Hex(tickets->UnsubscribeForEvents(id.get(), exception.put())), Hex(S_OK));
        // A second cancellation is refused: the exception text is the client's to free.
        ASSERT_EQ(Hex(tickets->UnsubscribeForEvents(id.get(), exception.put())), Hex(E_FAIL));
    }

    const Bstr m_ticket = Text("<intentTicket>" + std::string(1000, 't') + "</intentTicket>");
    const Bstr m_consumer = Text("http://127.0.0.1:8099/events");
    const Bstr m_subscription = Text("<Subscription><ConsumerInterface>c</ConsumerInterface></Subscription>");
    const CPComPtr<IServiceDesc> m_service = Service("device-7");
};

TEST_F(SoakTest, OperationsLeaveNothingBehind) {
    const char* asked = std::getenv("WNCOM_SOAK_COUNT");
    const int count = asked ? std::atoi(asked) : kDefaultCount;
    // What is made once and kept, and memory that the heap keeps for later, are there after some hundred rounds.
    Run(count / 10 + kPerAgent);
    const HostUsage before = CurrentUsage();
    const ULONG references = References();
    const long texts = LiveTexts();
    Run(count);
    const HostUsage after = CurrentUsage();
    std::printf("%d rounds: heap %zu to %zu bytes, handles %zu to %zu, mappings %zu to %zu\n", count,
                before.allocated, after.allocated, before.handles, after.handles, before.mappings, after.mappings);
    EXPECT_EQ(References(), references);
    EXPECT_EQ(LiveTexts(), texts);
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.mappings, before.mappings);
    EXPECT_LE(after.allocated, before.allocated + kHeapRoom);
}

}  // namespace
}  // namespace wncom::test
