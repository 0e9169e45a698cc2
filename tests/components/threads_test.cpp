// The cache manager and the port map under several apartments at once.
#include <array>
#include <atomic>
#include <thread>

#include "tests/components/CacheFixture.h"

namespace wncom::test {
namespace {

class ComponentThreads : public CacheFixture {};

TEST_F(ComponentThreads, ShareTheCachesConnection) {
    std::atomic<int> failed = 0;
    std::array<std::thread, 4> threads;
    for (std::size_t thread = 0; thread < threads.size(); ++thread) {
        threads[thread] = std::thread([&failed, thread] {
            const Apartment apartment;
            for (int i = 0; i < 30; ++i) {
                const std::string name = std::to_string(thread) + "-" + std::to_string(i);
                if (Put(name, name) != S_OK || Fetch(name) != name) ++failed;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failed, 0) << DebugOutput();
}

TEST_F(ComponentThreads, SearchesWhileThePortMapChangesSeeWholeMaps) {
    // Moved into place as a whole, as an editor does.
    const auto replace = [](const std::string& transport) {
        std::string device = "<device name='d'>";
        for (int i = 0; i < 50; ++i) device += "<service address='a' transport='" + transport + "'/>";
        const std::string next = PortMapPath() + ".new";
        WriteWholeFile(next, "<portmap>" + device + "</device></portmap>");
        // Windows does not replace a file while it is being read.
        for (int tries = 0; !MoveFileExA(next.c_str(), PortMapPath().c_str(), MOVEFILE_REPLACE_EXISTING); ++tries) {
            ASSERT_LT(tries, 10'000) << GetLastError();
            Sleep(1);
        }
    };
    replace("A");

    std::atomic<int> broken = 0;
    const auto search = [&broken] {
        const Apartment apartment;
        for (int i = 0; i < 100; ++i) {
            const std::vector<std::string> lines = Records(ServicesOf(FirstDevice("a")));
            if (lines.size() != 50 || lines.front() != lines.back()) ++broken;
        }
    };
    std::array<std::thread, 3> searchers = {std::thread(search), std::thread(search), std::thread(search)};
    for (int i = 0; i < 50; ++i) replace(i % 2 == 0 ? "BB" : "A");
    for (std::thread& searcher : searchers) searcher.join();
    EXPECT_EQ(broken, 0);
}

}  // namespace
}  // namespace wncom::test
