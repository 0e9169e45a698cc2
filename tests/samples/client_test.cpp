// The examples of the client guide, each run as it stands, and the program that holds them.
#include <sstream>

#include "common/Owned.h"
#include "samples/client/Client.h"
#include "tests/samples/SampleFixture.h"

namespace wncom::test {
namespace {

class ClientSampleTest : public SampleFixture {};

TEST_F(ClientSampleTest, EachExampleShowsWhatTheGuideSays) {
    const struct {
        void (*run)(const CPComPtr<IWendrel>&, std::ostream&);
        const char* shown;
    } kExamples[] = {
        {sample::ShowSubmission,
         "device: Sample device\n"
         "deliver the data to: sample://press/jobs/1/data by method 1\n"
         "the job is: sample://press/jobs/1\n"},
        {sample::ShowJobs,
         "the job is: sample://press/jobs/2\n"
         "QueryJobStatus: 0x80004005\n"
         "CancelJob: 0x80004005\n"
         "a null ticket: 0x80004005\n"},
        {sample::ShowSessions, "StartSession: 0x00000000\nRestartSession: 0x00000000\nEndSession: 0x00000000\n"},
        {sample::ShowDeviceData,
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><deviceData>"
         "<value path=\"/device/message\">Gr&#246;&#223;e A3</value></deviceData>\n"
         "GetData: 0x80004005, There is no value at /device/lid\n"
         "/device/lid: There is no such value\n"
         "SetData: 0x80004005, Some values cannot be set, so none was\n"},
        {sample::ShowEvents,
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<SupportedEvents>\n  <Event>dataChanged</Event>\n  <Event>jobAccepted</Event>\n</SupportedEvents>\n"
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<EventProperties>\n  <Name>path</Name>\n  <Name>value</Name>\n  <Name>jobUri</Name>\n</EventProperties>\n"
         "subscription-1, No Info\n"
         "GetSubscriptionIDList: 0x80004001\n"},
        {sample::ShowEventTickets,
         "first event: dataChanged\n"
         "subscription-2 for 600 seconds\n"
         "UnsubscribeForEvents: 0x80004005, There is no such subscription\n"},
    };
    const auto agent = sample::NewAgent(OLESTR("device-7"), OLESTR("sample://press"));
    for (const auto& example : kExamples) {
        std::ostringstream out;
        example.run(agent, out);
        EXPECT_EQ(out.str(), example.shown);
    }
    std::ostringstream out;
    sample::ShowJobs(sample::NewAgentByHand(OLESTR("device-7"), OLESTR("sample://press")), out);
    EXPECT_TRUE(out.str().starts_with("the job is: sample://press/jobs/3\n")) << "made by hand";
}

TEST_F(ClientSampleTest, AFailureNamesTheOperationTheStatusAndTheReason) {
    const auto failure = [](auto operation) {
        try {
            operation();
            return std::string("success");
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
    };
    EXPECT_EQ(failure([] { sample::NewAgent(OLESTR("device-7"), OLESTR("")); }),
              "CreateWendrel failed with 0x80004005");
    const auto elsewhere = sample::NewAgent(OLESTR("device-7"), OLESTR("elsewhere"));
    std::ostringstream out;
    EXPECT_EQ(failure([&] { sample::ShowJobs(elsewhere, out); }),
              "SubmitJob failed with 0x80004005: There is no connection to a device");
}

TEST_F(ClientSampleTest, TheProgramRunsAllOfThem) {
    std::string line = "\"" + ProgramFolder() + "/wnSampleClient.exe\" sample://press";
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr, nullptr,
                               &startup, &process));
    const OwnedHandle owners[] = {OwnedHandle(process.hProcess), OwnedHandle(process.hThread)};
    DWORD code = STILL_ACTIVE;
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60'000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &code));
    EXPECT_EQ(code, 0U);
}

}  // namespace
}  // namespace wncom::test
