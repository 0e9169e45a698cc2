// The device service as its clients see it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>

#include "tests/support/DeviceProcess.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

constexpr const char* kXml = "application/xml";

class WndeviceTest : public testing::Test {
protected:
    void SetUp() override { client.set_keep_alive(true); }

    std::string Session() { return client.Post("/sessions")->body; }
    httplib::Result Submit(const std::string& session, const std::string& ticket, httplib::Headers headers = {}) {
        headers.emplace("Session-Id", session);
        return client.Post("/jobs", headers, ticket, kXml);
    }
    // A new job; its path at the service.
    std::string Job() {
        Submit(Session(), "<a/>");
        return "/jobs/" + device.Jobs().at(0);
    }
    std::string DataFile(const std::string& job) const { return device.Store() + job + "/data.bin"; }

    DeviceProcess device;
    httplib::Client client{device.Address()};
};

std::string Megabytes(std::size_t count) {
    std::string data(count << 20, '\0');
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 31 + (i >> 8));
    return data;
}

TEST_F(WndeviceTest, DataIsStoredByteForByteAndCompletesTheJob) {
    const std::string data = Megabytes(5);
    const std::string job = Job();
    EXPECT_THAT(client.Get(job)->body, HasSubstr("<state>waitingForData</state>"));

    EXPECT_EQ(client.Put(job + "/data", data, "application/octet-stream")->status, 200);

    EXPECT_TRUE(ReadWholeFile(DataFile(job)) == data);
    EXPECT_THAT(client.Get(job)->body, HasSubstr("<state>complete</state>\n  <dataBytes>5242880</dataBytes>"));
}

TEST_F(WndeviceTest, DataMayComeInChunks) {
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

TEST_F(WndeviceTest, UploadThatBreaksOffLeavesNoTrace) {
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

TEST_F(WndeviceTest, SecondDeliveryIsRefusedAndTheFirstStays) {
    const std::string job = Job();
    client.Put(job + "/data", "first", "text/plain");
    EXPECT_EQ(client.Put(job + "/data", "second", "text/plain")->status, 409);
    EXPECT_EQ(ReadWholeFile(DataFile(job)), "first");
}

TEST_F(WndeviceTest, RepeatedRequestIdGivesTheSameJob) {
    const std::string session = Session();
    const httplib::Headers id = {{"Request-Id", std::string(32, 'a')}};
    const std::string first = Submit(session, "<a/>", id)->body;
    EXPECT_EQ(Submit(session, "<a/>", id)->body, first);
    EXPECT_NE(Submit(session, "<a/>")->body, first);
    EXPECT_EQ(device.Jobs().size(), 2u);
}

TEST_F(WndeviceTest, SessionOpensTheDoorUntilItEndsOrIsReplaced) {
    const std::string ended = Session();
    EXPECT_EQ(client.Delete("/sessions/" + ended)->status, 200);
    const std::string replaced = Session();
    const std::string open =
        client.Post("/sessions", httplib::Headers{{"Session-Id", replaced}}, "", "text/plain")->body;

    EXPECT_EQ(Submit(ended, "<a/>")->status, 403);
    EXPECT_EQ(Submit(replaced, "<a/>")->status, 403);
    EXPECT_EQ(Submit("", "<a/>")->status, 403);
    EXPECT_EQ(Submit(open, "<a/>")->status, 201);
    EXPECT_EQ(client.Delete("/sessions/" + ended)->status, 403);
}

TEST_F(WndeviceTest, TicketThatIsNoXmlDocumentIsRefusedWithAReason) {
    const std::string session = Session();
    for (const char* ticket : {"", "text", "<a>", "<a/><b/>"}) {
        const auto result = Submit(session, ticket);
        EXPECT_EQ(result->status, 422) << ticket;
        EXPECT_THAT(result->body, HasSubstr("The document is not well-formed: "));
    }
    EXPECT_TRUE(device.Jobs().empty());
}

TEST_F(WndeviceTest, TicketThatIsTooLongIsRefusedAndTheConnectionGoesOn) {
    const std::string session = Session();
    EXPECT_EQ(Submit(session, "<a>" + std::string(std::size_t{64} << 20, ' ') + "</a>")->status, 413);
    EXPECT_EQ(Submit(session, "<a/>")->status, 201);
}

TEST_F(WndeviceTest, UnknownPlacesAreNotFoundAndTheirBodiesAreNotTakenForRequests) {
    const std::string id(32, '0');
    for (const std::string& path :
         {"/jobs/" + id + "/data", std::string("/jobs/../data"), std::string("/elsewhere")}) {
        EXPECT_EQ(client.Put(path, "GET / HTTP/1.1\r\n\r\n", "text/plain")->status, 404) << path;
    }
    EXPECT_EQ(client.Get("/jobs/" + id)->status, 404);
    EXPECT_EQ(client.Get("/jobs/..%2F..")->status, 404);
}

TEST_F(WndeviceTest, FormIsNotTakenForData) {
    const std::string job = Job();
    const httplib::MultipartFormDataItems form = {{"file", "content", "name", "text/plain"}};
    EXPECT_EQ(client.Post(job + "/data", form)->status, 415);
    EXPECT_FALSE(std::filesystem::exists(DataFile(job)));
}

TEST_F(WndeviceTest, EndsCleanlyWhileConnectionsAreOpen) {
    Session();
    EXPECT_EQ(device.Stop(), 0);
}

TEST_F(WndeviceTest, PortThatIsTakenIsRefused) {
    const std::string port = device.Address().substr(device.Address().rfind(':') + 1);
    EXPECT_EQ(RunDevice({"--port", port, "--store", HomePath() + "/other"}), 1);
}

TEST_F(WndeviceTest, PortFileHoldsTheAddress) {
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
