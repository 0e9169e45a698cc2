// wn submit, with the real modules and a real device service.
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/support/DeviceProcess.h"
#include "tests/tools/WnFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class WnSubmitTest : public WnTest {
protected:
    void SetUp() override { Install(); }

    static std::string Stored(const DeviceProcess& device, const char* name) {
        const std::vector<std::string> jobs = device.Jobs();
        return jobs.size() == 1 ? ReadWholeFile(device.Store() + "/jobs/" + jobs[0] + "/" + name) : "(no single job)";
    }
    // Every byte value, in an order that no block size hides.
    static std::string Data(std::size_t bytes) {
        std::string data(bytes, '\0');
        for (std::size_t i = 0; i < bytes; ++i) data[i] = static_cast<char>(i * 31 + i / 251);
        return data;
    }
};

TEST_F(WnSubmitTest, TellsTheAddressesOfAJobWithoutData) {
    const DeviceProcess device;
    const WnOutcome outcome = RunWn({"submit", NewTicket(), "--to", device.Address(), "--json"});
    ExpectDone(outcome);
    const auto answer = nlohmann::json::parse(outcome.output);
    EXPECT_THAT(answer.at("dataAddress").get<std::string>(), StartsWith(device.Address() + "/jobs/"));
    EXPECT_THAT(answer.at("jobAddress").get<std::string>(), StartsWith(device.Address() + "/jobs/"));
    EXPECT_FALSE(answer.at("session").get<std::string>().empty());
    EXPECT_FALSE(answer.contains("delivered"));
    EXPECT_EQ(Stored(device, "ticket.xml"), kTicketText);
}

TEST_F(WnSubmitTest, DeliversTheBytesOfTheDataUnchanged) {
    const DeviceProcess device;
    const std::string data = Data(3'000'001);
    WriteWholeFile(InHome("daten/gr\xC3\xB6\xC3\x9F"
                          "e.bin"),
                   data);
    const WnOutcome outcome =
        RunWn({"--json", "submit", NewTicket("tickets/\xE6\x97\xA5.xml"), "--to", device.Address(), "--data",
               InHome("daten/gr\xC3\xB6\xC3\x9F"
                      "e.bin")});
    ExpectDone(outcome);
    EXPECT_EQ(nlohmann::json::parse(outcome.output).at("delivered").at("bytes"), data.size());
    EXPECT_TRUE(Stored(device, "data.bin") == data);
}

TEST_F(WnSubmitTest, DeliversEmptyData) {
    const DeviceProcess device;
    WriteWholeFile(InHome("empty"), "");
    ExpectDone(RunWn({"submit", NewTicket(), "--to", device.Address(), "--data", InHome("empty")}));
    EXPECT_EQ(device.Jobs().size(), 1U);
}

TEST_F(WnSubmitTest, TellsTheAddressesOfAJobWhoseDataIsRefused) {
    const DeviceProcess device({"--fault", "data:status=507"});
    WriteWholeFile(InHome("data"), Data(1000));
    const WnOutcome outcome =
        RunWn({"submit", NewTicket(), "--to", device.Address(), "--data", InHome("data"), "--json"});
    const std::string address = nlohmann::json::parse(outcome.output).at("dataAddress");
    ExpectRefusal(outcome, 1, "refused the data at " + address + " with HTTP status 507");
}

TEST_F(WnSubmitTest, TellsTheAddressesOfAJobBeforeItsDeviceDies) {
    DeviceProcess device({"--fault", "data:hang=60"});
    WriteWholeFile(InHome("data"), Data(1000));
    WnProcess wn({"submit", NewTicket(), "--to", device.Address(), "--data", InHome("data")});
    while (wn.Output().find("job address") == std::string::npos) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));  // the test's own timeout ends a wait for nothing
    }
    device.Kill();
    const WnOutcome outcome = wn.Wait();
    EXPECT_THAT(outcome.output, HasSubstr(device.Address() + "/jobs/"));
    ExpectRefusal(outcome, 1, "The data did not reach " + device.Address());
}

TEST_F(WnSubmitTest, LeavesNoJobWhenTheDataFileIsAbsent) {
    const DeviceProcess device;
    ExpectRefusal(RunWn({"submit", NewTicket(), "--to", device.Address(), "--data", InHome("none")}), 1,
                  "Cannot open " + InHome("none"));
    EXPECT_EQ(device.Jobs().size(), 0U);
}

TEST_F(WnSubmitTest, SaysWhereTheReasonOfARefusalIs) {
    const DeviceProcess device({"--fault", "submit:status=500"});
    ExpectRefusal(RunWn({"submit", NewTicket(), "--to", device.Address()}), 1, "Configure a log and try again");
    ExpectDone(RunWn({"logging", "file", InHome("wn.log")}));
    ExpectRefusal(RunWn({"submit", NewTicket(), "--to", device.Address()}), 1, "The log tells why");
    EXPECT_THAT(ReadWholeFile(InHome("wn.log")), HasSubstr("a fault on request"));
}

TEST_F(WnSubmitTest, SaysThatAServiceIsDown) {
    DeviceProcess device;
    device.Kill();
    const WnOutcome outcome = RunWn({"submit", NewTicket(), "--to", device.Address(), "--json"});
    ExpectRefusal(outcome, 1, "The job was not submitted to " + device.Address());
    EXPECT_EQ(outcome.output, "");
}

TEST_F(WnSubmitTest, SaysWhichComponentIsNotRegistered) {
    ExpectDone(RunWn({"unregister", ProgramFolder() + "/wnCOM.dll"}));
    ExpectRefusal(RunWn({"submit", NewTicket(), "--to", "http://127.0.0.1:1"}), 1, "wnCOM.dll");
    ExpectDone(RunWn({"unregister", ProgramFolder() + "/wnComponents.dll"}));
    ExpectRefusal(RunWn({"submit", NewTicket(), "--to", "http://127.0.0.1:1"}), 1, "wnComponents.dll");
}

}  // namespace
}  // namespace wncom::test
