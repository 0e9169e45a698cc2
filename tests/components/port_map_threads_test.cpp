// The port map under several apartments at once.
#include <array>
#include <atomic>
#include <thread>

#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

class PortMapThreads : public ComponentsFixture {};

TEST_F(PortMapThreads, SearchesWhileTheFileChangesSeeWholeMaps) {
    const auto mapWith = [](const std::string& transport) {
        std::string device = "<device name='d'>";
        for (int i = 0; i < 50; ++i) device += "<service address='a' transport='" + transport + "'/>";
        return "<portmap>" + device + "</device></portmap>";
    };
    // Moved into place as a whole, as an editor does.
    const auto replace = [&](const std::string& transport) {
        WriteWholeFile(PortMapPath() + ".new", mapWith(transport));
        // Windows does not replace a file while it is being read.
        const std::string next = PortMapPath() + ".new";
        for (int tries = 0; !MoveFileExA(next.c_str(), PortMapPath().c_str(), MOVEFILE_REPLACE_EXISTING); ++tries) {
            ASSERT_LT(tries, 10'000) << GetLastError();
            Sleep(1);
        }
    };
    replace("A");

    std::atomic<int> broken = 0;
    const auto search = [&broken] {
        const Apartment apartment;
        const auto map = Create<IPortMap>(kProgIdPortMap);
        const auto wanted = TemplateFor("a");
        for (int i = 0; i < 100; ++i) {
            CPComPtr<IPortMapList> devices;
            CPComPtr<IPortMapContent> device;
            CPComPtr<IUnknown> held;
            CPComPtr<IPortMapList> services;
            if (map->GetMatchingDevices(wanted.get(), devices.put()) != S_OK ||
                devices->First(device.put()) != S_OK || device->get_ServiceList(held.put()) != S_OK ||
                held.QueryInterface(services) != S_OK) {
                ++broken;
                continue;
            }
            const std::vector<std::string> lines = Records(services);
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
