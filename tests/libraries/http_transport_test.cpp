// The HTTP transport against a real device service.
#include <set>
#include <sstream>

#include "tests/libraries/HttpTransportFixture.h"

namespace wncom::test {
namespace {

// The client ports that stand in a device's log: one per connection.
std::set<std::string> Connections(const std::string& log) {
    std::set<std::string> ports;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) ports.insert(line.substr(0, line.find(':')));
    return ports;
}

TEST_F(HttpTransportTest, SubmittedTicketIsStoredAndAnsweredWithBothAddresses) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());

    const CString answer = object->SubmitJob(kTicket, 1);

    ASSERT_EQ(device.Jobs().size(), 1u);
    const std::string job = device.Jobs().front();
    EXPECT_EQ(ReadWholeFile(device.Store() + "/jobs/" + job + "/ticket.xml"), kTicket);
    EXPECT_EQ(ElementText(answer, "JobUri"), device.Address() + "/jobs/" + job);
    EXPECT_EQ(ElementText(answer, "PostURI"), device.Address() + "/jobs/" + job + "/data");
}

TEST_F(HttpTransportTest, ServiceAddressMayEndWithASlash) {
    const DeviceProcess device;
    EXPECT_FALSE(Make(device.Address() + "/")->StartSession().empty());
}

TEST_F(HttpTransportTest, CharactersTravelInUtf8AndComeBackInTheNarrowCodePage) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());

    // U+00E9, U+20AC, U+4E2D, and U+1F600 as the bridge encodes it: half by half.
    const CString ticket = object->GetWorkflowCapabilities(
        "<capabilitiesRequest><workflowId>\xC3\xA9\xE2\x82\xAC\xE4\xB8\xAD\xED\xA0\xBD\xED\xB8\x80</workflowId>"
        "</capabilitiesRequest>",
        1);

    EXPECT_EQ(ElementText(ticket, "workflowId"), "\xE9\x80&#20013;&#128512;");
}

TEST_F(HttpTransportTest, HalfACharacterIsRefusedBeforeItIsSent) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    EXPECT_EQ(FailureOf([&] { object->SubmitJob("<a>\xED\xA0\xBD</a>", 1); }),
              "the text holds half a character at byte 3");
    EXPECT_TRUE(device.Jobs().empty());
}

TEST_F(HttpTransportTest, ObjectsOneAfterTheOtherUseOneConnection) {
    DeviceProcess device;
    for (int i = 0; i < 3; ++i) MakeInSession(device.Address())->SubmitJob(kTicket, 1);
    device.Stop();
    EXPECT_EQ(Connections(device.Log()).size(), 1u) << device.Log();
}

TEST_F(HttpTransportTest, DeviceThatStartsAgainIsReachedOnANewConnection) {
    DeviceProcess device;
    const std::string port = device.Address().substr(device.Address().rfind(':') + 1);
    const Object object = MakeInSession(device.Address());
    device.Stop();
    const DeviceProcess again({"--port", port});
    EXPECT_FALSE(object->StartSession().empty());
}

TEST_F(HttpTransportTest, TicketWhoseAnswerWasLostIsSentAgainAndMakesOneJob) {
    const DeviceProcess device({"--fault", "submit:lost-answer"});
    const Object object = MakeInSession(device.Address());

    const CString answer = object->SubmitJob(kTicket, 1);

    ASSERT_EQ(device.Jobs().size(), 1u);
    EXPECT_EQ(ElementText(answer, "JobId"), device.Jobs().front());
}

TEST_F(HttpTransportTest, NextObjectEndsTheSessionOfThePreviousOne) {
    const DeviceProcess device;
    MakeInSession(device.Address()).reset();

    const Object next = Make(device.Address());

    next->EndSession();
    EXPECT_EQ(FailureOf([&] { next->EndSession(); }), "there is no session");
}

TEST_F(HttpTransportTest, SessionDoesNotGoOnWithAnotherService) {
    const DeviceProcess device;
    const DeviceProcess other;
    MakeInSession(device.Address()).reset();
    EXPECT_EQ(FailureOf([&] { Make(other.Address())->EndSession(); }), "there is no session");
}

TEST_F(HttpTransportTest, SessionDoesNotGoOnOnceTheLibraryWasGivenBack) {
    const DeviceProcess device;
    MakeInSession(device.Address()).reset();
    Unmake(nullptr);
    EXPECT_EQ(FailureOf([&] { Make(device.Address())->EndSession(); }), "there is no session");
}

TEST_F(HttpTransportTest, NewSessionReplacesThePreviousOneAtTheDevice) {
    const DeviceProcess device;
    const Object object = Make(device.Address());
    const CString first = object->StartSession();
    object->StartSession();
    object->SetSessionID(first);
    EXPECT_TRUE(Contains(FailureOf([&] { object->SubmitJob(kTicket, 1); }), "status 403"));
}

TEST_F(HttpTransportTest, SessionIdIsTakenOverFromTheCaller) {
    const DeviceProcess device;
    const Object first = Make(device.Address());
    const CString id = first->StartSession();
    const Object second = Make(device.Address());
    second->SetSessionID(id);
    EXPECT_FALSE(second->SubmitJob(kTicket, 1).empty());
}

TEST_F(HttpTransportTest, ModuleWorksAgainAfterItWasReleased) {
    const DeviceProcess device;
    for (int i = 0; i < 3; ++i) {
        MakeInSession(device.Address())->SubmitJob(kTicket, 1);
        Unload();
        Load();
    }
    EXPECT_EQ(device.Jobs().size(), 3u);
}

TEST_F(HttpTransportTest, FailureIsLoggedWithItsReasonAndTheDevicesText) {
    const LogCapture log(1);
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    FailureOf([&] { object->SubmitJob("<a>", 1); });
    EXPECT_EQ(log.Lines(), std::vector<std::string>{"1 HttpJobControl::SubmitJob failed: POST " + device.Address() +
                                                    "/jobs: status 422, The document is not well-formed: "
                                                    "Premature end of data in tag a line 1"});
}

}  // namespace
}  // namespace wncom::test
