#include "tools/wndevice/server/HttpServer.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace wndevice {
namespace {

constexpr const char* kHost = "127.0.0.1";
constexpr int kThreads = 64;
constexpr std::size_t kLongestHead = 65536;  // bytes
constexpr std::chrono::seconds kHeadTime{30};
constexpr int kSilence = 30;  // seconds, inside a request and between two requests of a connection

struct Fault {
    int status;
    const char* sentence;
};

// Why the body of a request cannot be read for certain, or not as it is.
std::optional<Fault> FaultOfBody(const httplib::Request& request) {
    const std::string length = request.get_header_value("Content-Length");
    const bool chunked = request.has_header("Transfer-Encoding");
    if (request.get_header_value_count("Content-Length") > 1 || length.size() > 18 ||
        length.find_first_not_of("0123456789") != std::string::npos) {
        return Fault{400, "The Content-Length is not a number"};
    }
    if (chunked && (!length.empty() || request.get_header_value_count("Transfer-Encoding") > 1 ||
                    request.get_header_value("Transfer-Encoding") != "chunked")) {
        return Fault{400, "The length of the body is unclear"};
    }
    const bool hasBody = chunked || length.find_first_not_of('0') != std::string::npos;
    if (hasBody && (request.method == "GET" || request.method == "HEAD" || request.method == "OPTIONS")) {
        return Fault{400, "A request of this kind has no body"};
    }
    const std::string encoding = request.get_header_value("Content-Encoding");
    if (!encoding.empty() && encoding != "identity") return Fault{415, "A compressed body is not taken"};
    if (request.is_multipart_form_data()) return Fault{415, "A form is not taken, only the bytes themselves"};
    return {};
}

}  // namespace

void Tell(httplib::Response& answer, int status, const std::string& sentence) {
    answer.status = status;
    answer.set_content(sentence + "\n", "text/plain; charset=utf-8");
}

// The library's threads, told of each connection that needs one.
class HttpServer::Threads final : public httplib::ThreadPool {
public:
    explicit Threads(HttpServer& server) : ThreadPool(kThreads), m_server(server) {}
    void enqueue(std::function<void()> work) override {
        m_server.MakeRoom();
        ThreadPool::enqueue(std::move(work));
    }

private:
    HttpServer& m_server;
};

HttpServer::HttpServer() {
    new_task_queue = [this] { return new Threads(*this); };
    set_keep_alive_max_count(100'000);
    set_keep_alive_timeout(kSilence);
    set_read_timeout(kSilence);
    set_write_timeout(kSilence);
    set_tcp_nodelay(true);
    set_socket_options(&ClaimPort);
    set_pre_routing_handler([](const httplib::Request& request, httplib::Response& answer) {
        const std::optional<Fault> fault = FaultOfBody(request);
        if (!fault) return HandlerResponse::Unhandled;
        answer.set_header("Connection", "close");
        Tell(answer, fault->status, fault->sentence);
        return HandlerResponse::Handled;
    });
    set_error_handler([](const httplib::Request&, httplib::Response& answer) {
        if (answer.status == 400 && answer.body.empty()) {
            Tell(answer, 400, "The request is not HTTP, or its head is too long");
        }
    });
}

std::string HttpServer::Bind(int port) {
    if (port == 0) {
        port = bind_to_any_port(kHost);
        if (port < 0) throw std::runtime_error("cannot find a free port on 127.0.0.1");
    } else if (!bind_to_port(kHost, port)) {
        throw std::runtime_error("port " + std::to_string(port) + " is in use");
    }
    // The library lets five connections wait, and the next one then tries again after a second.
    ::listen(svr_sock_, kThreads);
    return std::string("http://") + kHost + ":" + std::to_string(port);
}

void HttpServer::Run() {
    listen_after_bind();
    m_ended = true;
}

void HttpServer::Stop() {
    // The library forgets a stop that comes before it serves.
    while (!is_running() && !m_ended) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    stop();
    const std::lock_guard guard(m_lock);
    for (Connection* const connection : m_connections) connection->EndReading();
}

void HttpServer::EndConnection(int clientPort) {
    const std::lock_guard guard(m_lock);
    for (Connection* const connection : m_connections) {
        std::string ip;
        int port = 0;
        connection->get_remote_ip_and_port(ip, port);
        if (port == clientPort) connection->End();
    }
}

void HttpServer::MakeRoom() {
    const std::lock_guard guard(m_lock);
    ++m_waiting;
    if (m_connections.size() - m_ending.size() + m_waiting <= std::size_t{kThreads}) return;
    Connection* slowest = nullptr;
    for (Connection* const connection : m_connections) {
        if (m_ending.count(connection) != 0) continue;
        if (!slowest || connection->SecondsPerByte() > slowest->SecondsPerByte()) slowest = connection;
    }
    if (!slowest) return;
    slowest->End();
    m_ending.insert(slowest);
}

bool HttpServer::process_and_close_socket(socket_t socket) {
    Connection connection(socket);
    {
        const std::lock_guard guard(m_lock);
        m_connections.insert(&connection);
        --m_waiting;
    }
    bool goesOn = true;
    bool clear = true;
    while (goesOn && svr_sock_ != INVALID_SOCKET && connection.AwaitHead(kHeadTime, kLongestHead)) {
        bool closed = false;
        clear = false;
        const bool answered = process_request(connection, false, closed, [&](httplib::Request& request) {
            connection.EndHead();
            clear = !FaultOfBody(request);
        });
        goesOn = answered && clear && !closed;
    }
    if (!clear) connection.Drain();
    const std::lock_guard guard(m_lock);
    m_connections.erase(&connection);
    m_ending.erase(&connection);
    connection.End();
    httplib::detail::close_socket(socket);
    return true;
}

}  // namespace wndevice
