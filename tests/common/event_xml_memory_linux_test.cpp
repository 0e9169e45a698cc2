// The N-th allocation fails while a subscription document is read, for every N.
#include <gmock/gmock.h>

#include "common/EventXMLProcessor.h"
#include "tests/fakes/FakeScript.h"
#include "tests/support/Com.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

class EventXMLMemoryTest : public testing::Test {
protected:
    EventXMLMemoryTest() {
        EXPECT_EQ(Hex(RegisterFakeComponents(ProgramFolder())), Hex(S_OK));
        Script().AnswerQuery("./EventName", "Jam");
        Script().AnswerQuery("./ReliabilityOption", "Best");
        Script().AnswerQuery("./ClientCookie", "7");
        Script().AnswerQuery("./FilterOn/Name", "A;B");
        Script().AnswerQuery("./FilterOn/Value", "1;2");
    }

    // Nothing may be asked that is not asked otherwise, and no text may come that does not come otherwise.
    template <class Read>
    void Walk(std::size_t places, Read read) {
        const Bstr document = Text("<s/>");
        const auto run = [&](unsigned number, char**& content) {
            Script().ForgetCalls();
            const FailingAllocation armed(number);
            content = read(document.get());
            return armed.Count();
        };
        char** content = nullptr;
        const unsigned count = run(0, content);
        ASSERT_NE(content, nullptr);
        ASSERT_GT(count, 10U);
        const std::vector<std::string> texts(content, content + places);
        const std::vector<std::string> calls = Script().Calls();
        for (unsigned number = 1; number <= count; ++number) {
            SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(count));
            run(number, content);
            for (std::size_t i = 0; content && i < places; ++i) {
                if (content[i]) {
                    EXPECT_EQ(content[i], texts[i]);
                }
            }
            EXPECT_THAT(calls, testing::IsSupersetOf(Script().Calls()));
        }
    }

    Apartment m_apartment;
    EventXMLProcessor m_processor;
};

TEST_F(EventXMLMemoryTest, GivesNoOtherTexts) {
    Walk(3, [this](BSTR document) { return m_processor.getSubContent(document); });
}

TEST_F(EventXMLMemoryTest, GivesNoOtherFilters) {
    Walk(4, [this](BSTR document) { return m_processor.getFilterContent(document); });
}

}  // namespace
}  // namespace wncom::test
