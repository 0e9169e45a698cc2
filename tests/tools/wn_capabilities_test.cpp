// wn capabilities, with the real modules, cache and device service.
#include <nlohmann/json.hpp>

#include "tests/support/DeviceProcess.h"
#include "tests/tools/WnFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

class WnCapabilitiesTest : public WnTest {
protected:
    void SetUp() override { Install(); }

    static nlohmann::json Ask(const DeviceProcess& device, std::vector<std::string> more = {}) {
        std::vector<std::string> arguments = {"capabilities", "--json", "--to", device.Address()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const WnOutcome outcome = RunWn(arguments);
        ExpectDone(outcome);
        return nlohmann::json::parse(outcome.output);
    }
};

TEST_F(WnCapabilitiesTest, ComeFromTheServiceFirstAndFromTheCacheThen) {
    DeviceProcess device({"--name", "Press 4"});
    const auto first = Ask(device);
    EXPECT_EQ(first.at("source"), "service");
    EXPECT_THAT(first.at("ticket"), HasSubstr("<deviceName>Press 4</deviceName>"));

    device.Kill();
    const auto second = Ask(device);
    EXPECT_EQ(second.at("source"), "cache");
    EXPECT_EQ(second.at("ticket"), first.at("ticket"));
    ExpectRefusal(RunWn({"capabilities", "--to", device.Address(), "--id", "another"}), 1,
                  "No capabilities ticket from " + device.Address());
}

TEST_F(WnCapabilitiesTest, ComeFromTheServiceWhenTheCacheIsOff) {
    const DeviceProcess device;
    Ask(device);
    WriteWholeFile(InHome("windows/qbos.ini"), "[Cache]\r\nCapTicket=0\r\n");
    EXPECT_EQ(Ask(device).at("source"), "service");
}

TEST_F(WnCapabilitiesTest, GoWholeIntoAFile) {
    const DeviceProcess device;
    const std::string ticket = Ask(device).at("ticket");
    const WnOutcome outcome =
        RunWn({"capabilities", "--to", device.Address(), "--output", InHome("\xE6\x97\xA5.xml")});
    ExpectDone(outcome);
    EXPECT_EQ(outcome.output, "source            cache\nfile              " + InHome("\xE6\x97\xA5.xml") + "\n");
    EXPECT_EQ(ReadWholeFile(InHome("\xE6\x97\xA5.xml")), ticket);
    ExpectRefusal(RunWn({"capabilities", "--to", device.Address(), "--output", InHome("none/a.xml")}), 1,
                  "Cannot write " + InHome("none/a.xml"));
}

}  // namespace
}  // namespace wncom::test
