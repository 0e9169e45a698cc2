// wn events watch, with the real modules and a real device service.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "tests/support/DeviceProcess.h"
#include "tests/support/TestHome.h"
#include "tests/tools/WnProcess.h"

namespace wncom::test {
namespace {

using nlohmann::json;

int RunWn(const std::vector<std::string>& arguments) { return WnProcess(arguments).Wait(); }

void ExpectPart(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << text;
}

class WnWatchTest : public testing::Test {
protected:
    WnWatchTest() {
        WriteWholeFile(
            HomePath() + "/Transports.xml",
            "<transports><networkmapping>http</networkmapping><path>.</path><transportdlls><jobcontrol><dll>"
            "<type>http</type><name>wnHttpTransport.dll</name></dll></jobcontrol></transportdlls>"
            "</transports>");
        WriteWholeFile(HomePath() + "/ticket.xml", "<intentTicket><jobName>Probe</jobName></intentTicket>");
        EXPECT_EQ(RunWn({"register", ProgramFolder() + "/wnCOM.dll", ProgramFolder() + "/wnComponents.dll"}), 0);
        EXPECT_EQ(RunWn({"directories", "--catalogue", HomePath(), "--libraries", ProgramFolder()}), 0);
    }

    static std::vector<std::string> Arguments(const DeviceProcess& device, std::vector<std::string> more) {
        std::vector<std::string> arguments = {"events", "watch", "--json", "--to", device.Address()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }
    // The objects that it printed, one a line, once there are so many; a line that is not whole yet is left out. The
    // test's own timeout ends a wait for nothing.
    static std::vector<json> Lines(const WnProcess& wn, std::size_t count) {
        for (;; std::this_thread::sleep_for(std::chrono::milliseconds(10))) {
            const std::string output = wn.Output();
            std::vector<json> lines;
            std::istringstream stream(output.substr(0, output.rfind('\n') + 1));
            for (std::string line; std::getline(stream, line);) lines.push_back(json::parse(line));
            if (lines.size() >= count) return lines;
        }
    }
    static void Submit(const DeviceProcess& device) {
        EXPECT_EQ(RunWn({"submit", HomePath() + "/ticket.xml", "--to", device.Address()}), 0);
    }
    static void ExpectCancelled(DeviceProcess& device, const std::string& id) {
        EXPECT_EQ(device.Stop(), 0);
        ExpectPart(device.Log(), "DELETE /subscriptions/" + id + " 200");
    }
};

TEST_F(WnWatchTest, OutlivesTheDurationOfItsSubscriptionAndEndsInTime) {
    DeviceProcess device;
    WnProcess wn(Arguments(device, {"--duration", "4", "--for", "5"}));
    EXPECT_EQ(wn.Wait(), 0);
    ExpectCancelled(device, Lines(wn, 1)[0].at("subscription"));
}

TEST_F(WnWatchTest, FailsWhenTheServiceIsGone) {
    DeviceProcess device;
    WnProcess wn(Arguments(device, {"--duration", "2"}));
    const std::string id = Lines(wn, 1)[0].at("subscription");
    device.Kill();
    EXPECT_EQ(wn.Wait(), 1);
    ExpectPart(wn.Error(), "The subscription " + id + " was not renewed at " + device.Address());
}

TEST_F(WnWatchTest, CancelsAfterEitherSignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        DeviceProcess device;
        WnProcess wn(Arguments(device, {}));
        const std::string id = Lines(wn, 1)[0].at("subscription");
        Submit(device);
        Lines(wn, 2);
        kill(wn.Pid(), signal);
        EXPECT_EQ(wn.Wait(), 0);
        EXPECT_EQ(Lines(wn, 3).back(), (json{{"cancelled", id}, {"events", 1}}));
        ExpectCancelled(device, id);
    }
}

TEST_F(WnWatchTest, TellsWhatIsLostAndTakesNothingTwiceNorFromOthersNorWithoutEnd) {
    const DeviceProcess device;
    WnProcess wn(Arguments(device, {"--count", "2"}));
    const json beginning = Lines(wn, 1)[0];
    const std::string consumer = beginning.at("consumer");
    httplib::Client client(consumer.substr(0, consumer.rfind('/')));
    const auto post = [&client](const std::string& document, const char* path = "/events") {
        const auto answer = client.Post(path, document, "application/xml");
        return answer ? answer->status : 0;
    };
    const auto event = [](const std::string& id, const std::string& sequence, const std::string& cookie = "") {
        return "<Event><SubscriptionID>" + id + "</SubscriptionID><Sequence>" + sequence +
               "</Sequence><EventName>probe</EventName><ClientCookie>" + cookie + "</ClientCookie></Event>";
    };
    const std::string id = beginning.at("subscription");
    EXPECT_EQ(post(event("another", "1")), 200);
    EXPECT_EQ(post(event(id, "none")), 422);
    EXPECT_EQ(post("<Event>"), 422);
    EXPECT_EQ(post(event(id, "3")), 200);
    EXPECT_EQ(post(event(id, "3")), 200);
    client.set_compress(true);
    const std::string large(9 << 20, 'x');  // a few KB on the wire
    EXPECT_EQ(post(event(id, "4", large)), 413);
    EXPECT_EQ(post(large, "/elsewhere"), 404);
    EXPECT_EQ(post(event(id, "4")), 200);

    EXPECT_EQ(wn.Wait(), 0);
    const auto lines = Lines(wn, 4);
    EXPECT_EQ(lines[1].at("sequence"), 3);
    EXPECT_EQ(lines[1].at("lost"), 2);
    EXPECT_EQ(lines[2].at("sequence"), 4);
    EXPECT_EQ(lines[2].at("lost"), 0);
}

}  // namespace
}  // namespace wncom::test
