// The device service as its clients see it: sessions, jobs and their data.
#include <filesystem>

#include "tests/tools/wndevice/WndeviceFixture.h"

namespace wncom::test {
namespace {

std::string Megabytes(std::size_t count) {
    std::string data(count << 20, '\0');
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 31 + (i >> 8));
    return data;
}

class WndeviceJobTest : public WndeviceTest {
protected:
    std::string DataFile(const std::string& job) const { return device.Store() + job + "/data.bin"; }
};

TEST_F(WndeviceJobTest, DataIsStoredByteForByteAndCompletesTheJob) {
    const std::string data = Megabytes(2);
    const std::string job = Job();
    EXPECT_EQ(ElementText(client.Get(job)->body, "state"), "waitingForData");

    EXPECT_EQ(client.Put(job + "/data", data, "application/octet-stream")->status, 200);

    EXPECT_TRUE(ReadWholeFile(DataFile(job)) == data);
    EXPECT_EQ(ReadWholeFile(device.Store() + job + "/ticket.xml"), "<a/>");
    EXPECT_EQ(ElementText(client.Get(job)->body, "state"), "complete");
    EXPECT_EQ(ElementText(client.Get(job)->body, "dataBytes"), std::to_string(data.size()));
    ExpectRefusal(client.Put(job + "/data", "second", "text/plain"), 409, "The job has its data already");
    EXPECT_TRUE(ReadWholeFile(DataFile(job)) == data);
}

TEST_F(WndeviceJobTest, DataMayComeInChunks) {
    const std::string data = Megabytes(2);
    const std::string job = Job();
    const auto result = client.Post(
        job + "/data",
        [&](std::size_t offset, httplib::DataSink& sink) {
            const std::string piece = data.substr(offset, 100'000);
            piece.empty() ? sink.done() : static_cast<void>(sink.write(piece.data(), piece.size()));
            return true;
        },
        "application/octet-stream");
    EXPECT_EQ(result->status, 200);
    EXPECT_TRUE(ReadWholeFile(DataFile(job)) == data);
}

TEST_F(WndeviceJobTest, UploadThatBreaksOffLeavesNoTrace) {
    const std::string job = Job();
    httplib::Client other(device.Address());
    other.Put(
        job + "/data", 1'000'000,
        [](std::size_t offset, std::size_t, httplib::DataSink& sink) {
            return offset == 0 && sink.write("begun", 5);
        },
        "application/octet-stream");
    EXPECT_EQ(device.Stop(), 0);
    EXPECT_FALSE(std::filesystem::exists(DataFile(job)));
    EXPECT_TRUE(std::filesystem::is_empty(device.Store() + "/incoming"));
}

TEST_F(WndeviceJobTest, RepeatedRequestIdGivesTheSameJob) {
    const httplib::Headers id = {{"Request-Id", std::string(32, 'a')}};
    const std::string first = Post("/jobs", "<a/>", id)->body;
    EXPECT_EQ(Post("/jobs", "<a/>", id)->body, first);
    EXPECT_NE(Post("/jobs", "<a/>")->body, first);
    EXPECT_EQ(device.Jobs().size(), 2u);
    ExpectRefusal(Post("/jobs", "<a/>", {{"Request-Id", "A"}}), 422, "The request id is not 32 hexadecimal digits");
}

TEST_F(WndeviceJobTest, SessionIsOpenUntilItEndsOrIsReplaced) {
    const std::string ended = Session();
    EXPECT_EQ(client.Delete("/sessions/" + ended)->status, 200);
    const std::string replaced = Session();
    const auto open = client.Post("/sessions", httplib::Headers{{"Session-Id", replaced}}, "", "text/plain");

    for (const std::string& closed : {ended, replaced, std::string()}) {
        ExpectRefusal(Post("/jobs", "<a/>", {{"Session-Id", closed}}), 403, "The request belongs to no open session");
    }
    EXPECT_EQ(Post("/jobs", "<a/>", {{"Session-Id", open->body}})->status, 201);
    EXPECT_EQ(open->get_header_value("Location"), device.Address() + "/sessions/" + open->body);
    ExpectRefusal(client.Delete("/sessions/" + ended), 403, "There is no such session");
}

TEST_F(WndeviceJobTest, OfTenThousandSessionsTheOnesInUseStay) {
    const std::string idle = Session();
    for (int i = 0; i < 9'999; ++i) {
        if (i == 5'000) {
            EXPECT_EQ(Post("/jobs", "<a/>")->status, 201);
        }
        ASSERT_EQ(Session().size(), 32u);
    }
    EXPECT_EQ(Post("/jobs", "<a/>")->status, 201);
    EXPECT_EQ(Post("/jobs", "<a/>", {{"Session-Id", idle}})->status, 403);
}

TEST_F(WndeviceJobTest, DocumentThatCannotBeReadIsRefusedWithAReason) {
    std::string attributes = "<a";
    for (int i = 0; i < 300; ++i) attributes += " a" + std::to_string(i) + "=\"\"";
    const std::pair<std::string, const char*> cases[] = {
        {"", "not well-formed"},
        {"text", "not well-formed"},
        {"<a>", "not well-formed: Premature end of data in tag a"},
        {"<a/><b/>", "not well-formed"},
        {"<a>&#1;</a>", "not well-formed"},
        {"<!DOCTYPE a [<!ENTITY b \"c\">]><a/>", "A document type declaration is not taken"},
        {attributes + "/>", "more than 256 attributes"},
    };
    for (const auto& [ticket, reason] : cases) ExpectRefusal(Post("/jobs", ticket), 422, reason);
    ExpectRefusal(Post("/capabilities", "<a/>"), 422, "The document is not a capabilitiesRequest");
    ExpectRefusal(Post("/jobs", std::string((std::size_t{64} << 20) + 1, ' ')), 413, "longer than 67108864 bytes");
    EXPECT_TRUE(device.Jobs().empty());
    EXPECT_EQ(Post("/jobs", "<a><![CDATA[<!DOCTYPE b=\"\">]]><!-- <!DOCTYPE --></a>")->status, 201);
}

TEST_F(WndeviceJobTest, CapabilitiesTicketTellsTheDeviceAndTheWorkflowAskedFor) {
    const std::string request = "<capabilitiesRequest><workflowId>";
    const std::string ticket = Post("/capabilities", request + "a&amp;b</workflowId></capabilitiesRequest>")->body;
    EXPECT_EQ(ElementText(ticket, "deviceName"), "wndevice");
    EXPECT_EQ(ElementText(ticket, "workflowId"), "a&amp;b");
    EXPECT_TRUE(Contains(ticket, "\n    <media>\n      <size>A4</size>"));
    EXPECT_EQ(ElementText(Post("/capabilities", request + "</workflowId></capabilitiesRequest>")->body, "workflowId"),
              "production");
}

TEST_F(WndeviceJobTest, UnknownPlacesAreNotFoundAndTheirBodiesAreNotTakenForRequests) {
    const std::string id(32, '0');
    for (const std::string& path :
         {"/jobs/" + id + "/data", std::string("/jobs/../data"), std::string("/elsewhere")}) {
        EXPECT_EQ(client.Put(path, "GET / HTTP/1.1\r\n\r\n", "text/plain")->status, 404) << path;
    }
    EXPECT_EQ(client.Get("/jobs/" + id)->status, 404);
    EXPECT_EQ(client.Get("/jobs/..%2F..")->status, 404);
    EXPECT_EQ(device.Stop(), 0) << "with a connection open";
}

TEST_F(WndeviceJobTest, PortFileHoldsTheAddressAndAPortInUseIsRefused) {
    const std::string port = device.Address().substr(device.Address().rfind(':') + 1);
    EXPECT_EQ(RunDevice({"--port", port, "--store", HomePath() + "/other"}), 1);
    const std::string file = HomePath() + "/port";
    const DeviceProcess other({"--port-file", file});
    EXPECT_EQ(ReadWholeFile(file), other.Address() + "\n");
}

TEST(WndeviceArguments, FaultThatIsNotUnderstoodIsRefused) {
    for (const char* fault : {"", "submit", "submit:", "print:close", "submit:burn", "submit:close=1",
                              "submit:status", "submit:status=x", "submit:hang=-1", "submit:body=/absent"}) {
        EXPECT_EQ(RunDevice({"--store", HomePath() + "/store", "--fault", fault}), 1) << fault;
    }
}

}  // namespace
}  // namespace wncom::test
