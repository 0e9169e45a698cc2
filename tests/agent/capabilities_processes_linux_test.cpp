// The cached ticket of another process.
#include "tests/agent/CapabilitiesFixture.h"
#include "tests/support/ForkedProcess.h"

namespace wncom::test {
namespace {

TEST_F(SharedCacheTest, ATicketIsKeptForAllAgentsOfAllProcesses) {
    ExpectSuccess(RunInProcess([this] { return Ask() == "<caps/>" ? S_OK : E_FAIL; }));
    Script().Answer(kTicketOfService, "<other/>");
    EXPECT_EQ(Ask(), "<caps/>");
    EXPECT_TRUE(Script().CallsOf("FakeTransport").empty());
}

}  // namespace
}  // namespace wncom::test
