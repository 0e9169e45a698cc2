// What outlives a client's main.
#include <gtest/gtest.h>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

TEST(ModulesAtTheProcessesEnd, ServeTheClientsLastStatics) {
    Peer client("", ProgramFolder() + "/exit_client.exe");
    EXPECT_EQ(client.Result(), 0U);
}

}  // namespace
}  // namespace wncom::test
