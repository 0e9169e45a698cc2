// Devices that misbehave. The agent answers E_FAIL, the log tells why, and the agent works again with the next
// device.
#include "tests/road/RoadFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

struct DeviceFault {
    const char* name;
    const char* fault;
    const char* says;  // in the log
};

void PrintTo(const DeviceFault& fault, std::ostream* stream) { *stream << fault.name; }

class DeviceFaultTest : public RoadFixture {
protected:
    DeviceFaultTest() {
        SetTransport("calltimeout", 2000);
        SetTransport("answerlimit", 1024);
    }

    void ExpectFailureAndRecovery(const std::string& address, const char* says) {
        const CPComPtr<IServiceDesc> service = Service(address);
        const CPComPtr<IWendrel> agent = Agent(service);
        Log();
        EXPECT_EQ(Submit(agent), Hex(E_FAIL));
        const std::string log = Log();
        EXPECT_THAT(log, HasSubstr(says));
        EXPECT_THAT(log, HasSubstr("Orb.SubmitJob failed"));

        const DeviceProcess sound;
        SetAddress(service, sound.Address());
        EXPECT_EQ(Submit(agent), Hex(S_OK));
        EXPECT_EQ(SubmitAnew(sound.Address()), Hex(S_OK));
        EXPECT_EQ(sound.Jobs().size(), 2U);
    }
};

class EachDeviceFaultTest : public DeviceFaultTest, public testing::WithParamInterface<DeviceFault> {};

TEST_P(EachDeviceFaultTest, FailsTheSubmissionAndNothingElse) {
    const DeviceProcess device({"--fault", GetParam().fault});
    ExpectFailureAndRecovery(device.Address(), GetParam().says);
}

const DeviceFault kFaults[] = {
    {"Hangs", "submit:hang=60", "HttpJobControl::SubmitJob failed"},
    {"RefusesTheTicket", "submit:status=503", "status 503, a fault on request"},
    {"RefusesTheSession", "session:status=503", "status 503, a fault on request"},
    {"ClosesTheConnection", "submit:close", "HttpJobControl::SubmitJob failed"},
    {"CutsTheAnswerOff", "submit:cut=100", "HttpJobControl::SubmitJob failed"},
    {"AnswersHtml", "submit:type=text/html", "the answer is of type text/html"},
    {"AnswersAHundredMegabytes", "submit:size=104857600", "the answer is longer than 1024 KB"},
};

INSTANTIATE_TEST_SUITE_P(All, EachDeviceFaultTest, testing::ValuesIn(kFaults),
                         [](const auto& given) { return std::string(given.param.name); });

TEST_F(DeviceFaultTest, ADeviceThatIsDownFailsTheSubmissionAndNothingElse) {
    DeviceProcess device;
    device.Kill();
    ExpectFailureAndRecovery(device.Address(), "HttpJobControl::StartSession failed");
}

TEST_F(DeviceFaultTest, TwentyMegabytesWithoutAnAddressAreTakenWhereTheyAreAllowed) {
    SetTransport("calltimeout", 60'000);
    SetTransport("answerlimit", 256 * 1024);
    const DeviceProcess device({"--fault", "submit:size=20971520"});
    std::string dataAddress = "(none)";
    EXPECT_EQ(Submit(Agent(device.Address()), &dataAddress), Hex(S_OK));
    EXPECT_EQ(dataAddress, "");
}

}  // namespace
}  // namespace wncom::test
