// Clients that mean harm: the device refuses them and goes on with the others.
#include <chrono>
#include <memory>
#include <vector>

#include "tests/tools/wndevice/WndeviceFixture.h"
#include "tools/wndevice/RecentTable.h"

namespace wncom::test {
namespace {

using Clock = std::chrono::steady_clock;

// A connection that sends any bytes.
class RawClient {
public:
    explicit RawClient(const std::string& address)
        : m_port(std::stoi(address.substr(address.rfind(':') + 1))), m_socket(Connect()) {}
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;
    ~RawClient() { httplib::detail::close_socket(m_socket); }

    // False when the device has closed the connection.
    bool Send(const std::string& bytes) const {
        return httplib::detail::send_socket(m_socket, bytes.data(), bytes.size(), 0) > 0;
    }
    // What comes until the device closes the connection, or half a minute passes.
    std::string Receive() const {
        std::string all;
        std::string buffer(65536, '\0');
        for (;;) {
            const auto count = httplib::detail::read_socket(m_socket, buffer.data(), buffer.size(), 0);
            if (count <= 0) return all + (count == 0 ? "" : " (not closed)");
            all.append(buffer, 0, static_cast<std::size_t>(count));
        }
    }

private:
    socket_t Connect() const {
        httplib::Error error{};
        return httplib::detail::create_client_socket("127.0.0.1", "", m_port, AF_UNSPEC, true, nullptr, 5, 0, 30, 0,
                                                     5, 0, "", error);
    }

    const httplib::Server m_noSignals;  // with it a broken connection is an error, not a signal
    int m_port;
    socket_t m_socket;
};

TEST_F(WndeviceTest, RequestWithoutAClearBodyIsRefusedAndNothingOfItIsTakenForAnother) {
    const std::string next = "GET /events HTTP/1.1\r\n\r\n";
    const auto post = [](const std::string& headers) { return "POST /jobs HTTP/1.1\r\n" + headers + "\r\n"; };
    const std::tuple<std::string, int, const char*> cases[] = {
        {post("Content-Length: abc\r\n"), 400, "The Content-Length is not a number"},
        {post("Content-Length: -1\r\n"), 400, "The Content-Length is not a number"},
        {post("Content-Length: 4 4\r\n"), 400, "The Content-Length is not a number"},
        {post("Content-Length: 99999999999999999999\r\n"), 400, "The Content-Length is not a number"},
        {post("Content-Length: 4\r\nContent-Length: 5\r\n"), 400, "The Content-Length is not a number"},
        {post("Content-Length: 4\r\nTransfer-Encoding: chunked\r\n"), 400, "The length of the body is unclear"},
        {post("Transfer-Encoding: gzip, chunked\r\n"), 400, "The length of the body is unclear"},
        {"GET /events HTTP/1.1\r\nContent-Length: 5\r\n\r\n", 400, "A request of this kind has no body"},
        {post("Content-Encoding: gzip\r\nContent-Length: 5\r\n"), 415, "A compressed body is not taken"},
        {post("Content-Type: multipart/form-data; boundary=a\r\nContent-Length: 5\r\n"), 415, "A form is not taken"},
        {"garbage\r\n\r\n", 400, "The request is not HTTP, or its head is too long"},
        {"POST /jobs HTTP/1.1\r\nA: " + std::string(20'000, 'a') + "\r\n\r\n", 400, "its head is too long"},
    };
    for (const auto& [request, status, sentence] : cases) {
        const RawClient raw(device.Address());
        raw.Send(request + next);
        const std::string answer = raw.Receive();
        EXPECT_TRUE(answer.starts_with("HTTP/1.1 " + std::to_string(status))) << request << answer;
        EXPECT_TRUE(Contains(answer, sentence)) << request;
        EXPECT_EQ(answer.find("HTTP/1.1", 1), std::string::npos) << request << answer;
        EXPECT_EQ(answer.find("not closed"), std::string::npos) << request << answer;
    }
    EXPECT_TRUE(device.Jobs().empty());
}

TEST_F(WndeviceTest, HeadWithoutEndIsNotKept) {
    const RawClient raw(device.Address());
    raw.Send("POST /jobs HTTP/1.1\r\n");
    const std::string lines(1000, 'a');
    std::size_t sent = 0;
    while (sent < (std::size_t{80} << 20) && raw.Send("A: " + lines + "\r\n")) sent += lines.size();
    EXPECT_LT(sent, std::size_t{80} << 20);
    EXPECT_EQ(Post("/jobs", "<a/>")->status, 201);
}

TEST_F(WndeviceTest, ChunkHeaderWithoutEndIsNotKept) {
    const RawClient raw(device.Address());
    raw.Send("POST " + Job() + "/data HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n" + std::string(100'000, '0'));
    EXPECT_TRUE(raw.Receive().starts_with("HTTP/1.1 400"));
}

TEST_F(WndeviceTest, ManySlowConnectionsShutNobodyOut) {
    std::vector<std::unique_ptr<RawClient>> slow;
    for (int i = 0; i < 200; ++i) {
        slow.push_back(std::make_unique<RawClient>(device.Address()));
        slow.back()->Send(i % 2 == 0 ? "POST /jo" : "PUT /a HTTP/1.1\r\nContent-Length: 100\r\n\r\na");
    }
    // Less than the time that the device gives each of the slow ones.
    httplib::Client other(device.Address());
    other.set_connection_timeout(25);
    other.set_read_timeout(25);
    for (int i = 0; i < 3; ++i) {
        const httplib::Result answer = other.Post("/sessions");
        ASSERT_TRUE(answer) << httplib::to_string(answer.error());
        ASSERT_EQ(answer->status, 201);
    }
    EXPECT_EQ(device.Stop(), 0);
}

TEST_F(WndeviceTest, PathThatCostsTooMuchIsRefusedAndTheDeviceGoesOn) {
    ASSERT_EQ(Set(SetValue("//d:operatorMessage", std::string(65'536, 'a')) +
                  SetValue("//d:state", std::string(32'768, 'a') + "b"))
                  ->status,
              200);
    std::string twice = "string(//d:operatorMessage)";
    for (int i = 0; i < 5; ++i) twice = "concat(" + twice + "," + twice + ")";
    const std::string paths[] = {
        "//*[//*[//*[//*[//*[//*[. = 'x']]]]]]",
        "//*[contains(//d:operatorMessage, //d:state)]",
        "//*[contains(" + twice + ", 'b')]",
        "contains(" + twice + ", //d:state)",
        "translate(/, /, 'b')",
        "//*[substring-after(/, //d:state) or substring-before(/, //d:state)]",
    };
    for (const std::string& path : paths) {
        const auto start = Clock::now();
        ExpectRefusal(Read(path), 422, "The path cannot be used");
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(10)) << path;
    }
    EXPECT_EQ(Value("contains(//d:state, 'ab')"), "true");
    EXPECT_EQ(device.Stop(), 0);
}

TEST(RecentTable, ForgetsWhatWasNotTouchedForLongest) {
    wndevice::RecentTable<int> table(3);
    for (const char* id : {"a", "b", "c"}) table.Add(id, id[0]);
    EXPECT_EQ(*table.Touch("a"), 'a');
    table.Add("d", 'd');
    EXPECT_EQ(table.Touch("b"), nullptr);
    EXPECT_TRUE(table.Remove("c"));
    EXPECT_FALSE(table.Remove("c"));
    table.Add("e", 'e');
    for (const char* id : {"a", "d", "e"}) EXPECT_EQ(*table.Touch(id), id[0]);
}

}  // namespace
}  // namespace wncom::test
