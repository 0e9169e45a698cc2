#include <gtest/gtest.h>
#include <windows.h>

#include "tests/platform/processes/Peer.h"
#include "tests/support/Host.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

TEST(DebugOutput, ReachesTheDebuggerAsItIs) {
    const std::string path = InHome("debug.txt");
    CaptureDebugOutput(path);
    OutputDebugStringA("one %s\r\n");
    OutputDebugStringA("two \xE9");
    EXPECT_EQ(ReadWholeFile(path), "one %s\r\ntwo \xE9");
}

}  // namespace
}  // namespace wncom::test
