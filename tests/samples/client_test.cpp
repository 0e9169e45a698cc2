// The examples of the client guide, each run as it stands, and the program that holds them.
#include <sstream>

#include "samples/client/Client.h"
#include "tests/samples/SampleFixture.h"

namespace wncom::test {
namespace {

class ClientSampleTest : public SampleFixture {
protected:
    using Example = void (*)(const CPComPtr<IWendrel>&, std::ostream&);

    static std::string Run(Example example, const CPComPtr<IWendrel>& agent) {
        std::ostringstream out;
        example(agent, out);
        return out.str();
    }
    static std::string Run(Example example) {
        return Run(example, sample::NewAgent(OLESTR("device-7"), OLESTR("sample://press")));
    }
};

TEST_F(ClientSampleTest, Submission) {
    EXPECT_EQ(Run(sample::ShowSubmission),
              "device: Sample device\n"
              "deliver the data to: sample://press/jobs/1/data by method 1\n"
              "the job is: sample://press/jobs/1\n");
}

TEST_F(ClientSampleTest, Jobs) {
    EXPECT_EQ(Run(sample::ShowJobs),
              "the job is: sample://press/jobs/1\n"
              "QueryJobStatus: 0x80004005\n"
              "CancelJob: 0x80004005\n"
              "a null ticket: 0x80004005\n");
}

TEST_F(ClientSampleTest, Sessions) {
    EXPECT_EQ(Run(sample::ShowSessions),
              "StartSession: 0x00000000\n"
              "RestartSession: 0x00000000\n"
              "EndSession: 0x00000000\n");
}

TEST_F(ClientSampleTest, DeviceData) {
    EXPECT_EQ(Run(sample::ShowDeviceData),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><deviceData>"
              "<value path=\"/device/message\">Gr&#246;&#223;e A3</value></deviceData>\n"
              "GetData: 0x80004005, There is no value at /device/lid\n"
              "/device/jobs: The value is read-only\n"
              "SetData: 0x80004005\n");
}

TEST_F(ClientSampleTest, Events) {
    EXPECT_EQ(Run(sample::ShowEvents),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<SupportedEvents>\n"
              "  <Event>dataChanged</Event>\n"
              "  <Event>jobAccepted</Event>\n"
              "</SupportedEvents>\n"
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<EventProperties>\n"
              "  <Name>path</Name>\n"
              "  <Name>value</Name>\n"
              "  <Name>jobUri</Name>\n"
              "</EventProperties>\n"
              "subscription-1, No Info\n"
              "GetSubscriptionIDList: 0x80004001\n");
}

TEST_F(ClientSampleTest, EventTickets) {
    EXPECT_EQ(Run(sample::ShowEventTickets),
              "first event: dataChanged\n"
              "subscription-1 for 600 seconds\n"
              "UnsubscribeForEvents: 0x80004005, There is no such subscription\n");
}

TEST_F(ClientSampleTest, AgentMadeByHandWorksLikeTheParents) {
    const auto agent = sample::NewAgentByHand(OLESTR("device-7"), OLESTR("sample://press"));
    EXPECT_THAT(Run(sample::ShowJobs, agent), testing::StartsWith("the job is: sample://press/jobs/1\n"));
}

TEST_F(ClientSampleTest, AFailureNamesTheOperationAndTheStatus) {
    try {
        sample::NewAgent(OLESTR("device-7"), OLESTR(""));
        FAIL() << "an agent without an address";
    } catch (const std::runtime_error& failure) {
        EXPECT_STREQ(failure.what(), "CreateWendrel failed with 0x80004005");
    }
}

TEST_F(ClientSampleTest, TheProgramRunsAllOfThem) {
    std::string line = "\"" + ProgramFolder() + "/wnSampleClient.exe\" sample://press";
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr, nullptr,
                               &startup, &process));
    DWORD code = STILL_ACTIVE;
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60'000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &code));
    EXPECT_EQ(code, 0U);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

}  // namespace
}  // namespace wncom::test
