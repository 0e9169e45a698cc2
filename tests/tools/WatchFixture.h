// wn events watch in the background, and what it prints.
#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "tests/support/DeviceProcess.h"
#include "tests/tools/WnFixture.h"

namespace wncom::test {

class WnWatchTest : public WnTest {
protected:
    void SetUp() override { Install(); }

    static std::vector<std::string> Arguments(const DeviceProcess& device, std::vector<std::string> more) {
        std::vector<std::string> arguments = {"events", "watch", "--json", "--to", device.Address()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }
    // The objects that it printed, one a line; a line that is not whole yet is left out.
    static std::vector<nlohmann::json> Lines(const std::string& output) {
        std::vector<nlohmann::json> lines;
        std::istringstream stream(output.substr(0, output.rfind('\n') + 1));
        for (std::string line; std::getline(stream, line);) lines.push_back(nlohmann::json::parse(line));
        return lines;
    }
    // Once there are so many; the test's own timeout ends a wait for nothing.
    static std::vector<nlohmann::json> WaitForLines(const WnProcess& wn, std::size_t count) {
        std::vector<nlohmann::json> lines;
        while ((lines = Lines(wn.Output())).size() < count)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return lines;
    }
    // One event each.
    static void Submit(const DeviceProcess& device) {
        ExpectDone(RunWn({"submit", NewTicket(), "--to", device.Address()}));
    }
    static void ExpectCancelled(DeviceProcess& device, const std::string& id) {
        EXPECT_EQ(device.Stop(), 0);
        EXPECT_THAT(device.Log(), testing::HasSubstr("DELETE /subscriptions/" + id + " 200"));
    }
};

}  // namespace wncom::test
