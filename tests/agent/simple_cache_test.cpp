// The cache of tickets by itself: what the agent has no occasion to ask of it.
#include "agent/WNSimpleCache.h"

#include <gmock/gmock.h>

#include "tests/fakes/FakeScript.h"
#include "tests/support/Com.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;

class SimpleCacheTest : public testing::Test {
protected:
    SimpleCacheTest() { EXPECT_EQ(Hex(RegisterFakeComponents(ProgramFolder())), Hex(S_OK)); }
    ~SimpleCacheTest() override { EXPECT_EQ(Script().LiveObjects(), 0); }

    // Removes a service's ticket with a new cache; the lines of the removal.
    std::vector<std::string> Remove(int expected) {
        _WNSimpleCache cache;
        m_log.Clear();
        EXPECT_EQ(cache.RemoveFromCache(Text("device-7").get()), expected);
        return m_log.Lines();
    }

    Apartment m_apartment;
    LogCapture m_log{3};
};

TEST_F(SimpleCacheTest, ARemovedTicketIsGone) {
    EXPECT_THAT(Remove(0),
                ElementsAre("3 WNSimpleCache::RemoveFromCache attempting to delete device-7-capTicket from cache",
                            "3 WNSimpleCache::RemoveFromCache succeeded"));
    EXPECT_THAT(Script().CallsOf("XMLCacheMgr.RemoveXML"), ElementsAre("XMLCacheMgr.RemoveXML(device-7-capTicket)"));
}

TEST_F(SimpleCacheTest, AFailedRemovalIsTold) {
    Script().FailIn("XMLCacheMgr.RemoveXML", {Fault::Status, E_ACCESSDENIED}, 1);
    EXPECT_EQ(Remove(2).back(), "2 WNSimpleCache::RemoveFromCache failed 80070005");
    Script().FailIn("XMLCacheMgr.RemoveXML", {Fault::Integer}, 2);
    EXPECT_EQ(Remove(2).back(), "2 WNSimpleCache::RemoveFromCache failed 8000ffff");
}

TEST_F(SimpleCacheTest, WithoutAManagerThereIsNothingToRemove) {
    Script().FailIn("XMLCacheMgr.create", {Fault::Status, E_ACCESSDENIED});
    EXPECT_THAT(Remove(0), ElementsAre("1 WNSimpleCache::SimpleCache not init'ed"));
}

}  // namespace
}  // namespace wncom::test
