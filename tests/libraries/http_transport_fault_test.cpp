// What a device or a network may do wrong, and what the caller then learns.
#include <gmock/gmock.h>

#include <chrono>
#include <ostream>

#include "tests/libraries/HttpTransportFixture.h"
#include "tests/libraries/RawServer.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

struct FaultCase {
    const char* name;
    const char* fault;
    const char* failure;
    friend void PrintTo(const FaultCase& one, std::ostream* out) { *out << one.fault; }
};

class HttpTransportFaultTest : public HttpTransportTest, public testing::WithParamInterface<FaultCase> {};

TEST_P(HttpTransportFaultTest, SubmissionFailsAndTellsWhy) {
    SetNumber("calltimeout", 300);
    SetNumber("answerlimit", 64);
    const DeviceProcess device({"--fault", GetParam().fault});
    const Object object = MakeInSession(device.Address());

    EXPECT_THAT(FailureOf([&] { object->SubmitJob(kTicket, 1); }), HasSubstr(GetParam().failure));
    EXPECT_FALSE(object->StartSession().empty()) << "the object goes on";
}

INSTANTIATE_TEST_SUITE_P(Faults, HttpTransportFaultTest,
                         testing::Values(FaultCase{"Status", "submit:status=500", "status 500, a fault on request"},
                                         FaultCase{"Redirect", "submit:status=302", "status 302"},
                                         FaultCase{"ClosedConnection", "submit:close", "Empty reply from server"},
                                         FaultCase{"Silence", "submit:hang=30", "timed out after"},
                                         FaultCase{"CutOffAnswer", "submit:cut=100", "1 bytes remaining"},
                                         FaultCase{"HugeAnswer", "submit:size=65537", "longer than 64 KB"},
                                         FaultCase{"WrongType", "submit:type=text/html",
                                                   "of type text/html instead of application/xml"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(HttpTransportTest, AnswerAsLongAsTheLimitIsTaken) {
    SetNumber("answerlimit", 64);
    const DeviceProcess device({"--fault", "submit:size=65536"});
    EXPECT_EQ(MakeInSession(device.Address())->SubmitJob(kTicket, 1).length(), 65536u);
}

TEST_F(HttpTransportTest, SettingsOutOfReasonLeaveTheDefaults) {
    const LogCapture log(2);
    SetNumber("calltimeout", 0);
    SetNumber("answerlimit", 0xFFFFFFFF);
    Set("connecttimeout", REG_SZ, "5", 2);
    const DeviceProcess device;
    EXPECT_FALSE(Make(device.Address())->StartSession().empty());
    EXPECT_THAT(log.Lines(), testing::ElementsAre(
                                 "2 HttpTransport: the registry value \"connecttimeout\" is not usable, 5000 stays",
                                 "2 HttpTransport: the registry value \"calltimeout\" is not usable, 60000 stays",
                                 "2 HttpTransport: the registry value \"answerlimit\" is not usable, 262144 stays"));
}

TEST_F(HttpTransportTest, SessionThatIsNoIdIsRefused) {
    const std::string file = HomePath() + "/body";
    WriteWholeFile(file, "id\r\nX: y");
    const DeviceProcess device({"--fault", "session:body=" + file});
    EXPECT_EQ(FailureOf([&] { Make(device.Address())->StartSession(); }), "the device gave no session id");
}

TEST_F(HttpTransportTest, SessionOfTheWrongTypeIsRefused) {
    const DeviceProcess device({"--fault", "session:type=text/html"});
    EXPECT_THAT(FailureOf([&] { Make(device.Address())->StartSession(); }), HasSubstr("instead of text/plain"));
}

TEST_F(HttpTransportTest, AnswerThatIsNoUtf8IsRefused) {
    const std::string file = HomePath() + "/body";
    WriteWholeFile(file, "<a>\xFF</a>");
    const DeviceProcess device({"--fault", "submit:body=" + file});
    const Object object = MakeInSession(device.Address());
    EXPECT_EQ(FailureOf([&] { object->SubmitJob(kTicket, 1); }), "the answer is no UTF-8");
}

TEST_F(HttpTransportTest, ByteOrderMarkBeforeAnAnswerIsDropped) {
    const std::string file = HomePath() + "/body";
    WriteWholeFile(file, "\xEF\xBB\xBF<a>\xC3\xA9</a>");
    const DeviceProcess device({"--fault", "submit:body=" + file});
    EXPECT_STREQ(MakeInSession(device.Address())->SubmitJob(kTicket, 1).c_str(), "<a>\xE9</a>");
}

TEST_F(HttpTransportTest, DeviceThatIsGoneIsReported) {
    DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    device.Kill();
    EXPECT_THAT(FailureOf([&] { object->SubmitJob(kTicket, 1); }), HasSubstr("Failed to connect"));
}

TEST_F(HttpTransportTest, AnswersOfAServerThatSpeaksSomethingElseAreRefused) {
    for (const char* answer : {"garbage\n", "\x16\x03\x01", "", "HTTP/1.1 abc\r\n\r\n", "HTTP/1.1 201 Created\r\n",
                               "HTTP/1.1 201 Created\r\nContent-Type: text/plain\r\nContent-Length: -1\r\n\r\nabc",
                               "HTTP/1.1 201 Created\r\nContent-Type: text/plain\r\n"
                               "Transfer-Encoding: chunked\r\n\r\nZZ\r\nabc"}) {
        const RawServer server(answer);
        EXPECT_THAT(FailureOf([&] { Make(server.Address())->StartSession(); }), HasSubstr("POST " + server.Address()))
            << answer;
    }
}

TEST_F(HttpTransportTest, EndlessAnswerWithoutALengthIsCutAtTheLimit) {
    SetNumber("answerlimit", 1);
    const RawServer server("HTTP/1.1 201 Created\r\nContent-Type: text/plain\r\n\r\n" + std::string(4096, 'a'));
    EXPECT_THAT(FailureOf([&] { Make(server.Address())->StartSession(); }), HasSubstr("longer than 1 KB"));
}

TEST_F(HttpTransportTest, TextOfADeviceCannotForgeLinesOfTheLog) {
    const LogCapture log(1);
    const RawServer server(
        "HTTP/1.1 500 No\r\nContent-Type: text/plain\r\nContent-Length: 14\r\n\r\nfirst\nsecond\r\n");
    EXPECT_THAT(FailureOf([&] { Make(server.Address())->StartSession(); }), HasSubstr("status 500, first second"));
    EXPECT_EQ(log.Lines().size(), 1u);
}

}  // namespace
}  // namespace wncom::test
