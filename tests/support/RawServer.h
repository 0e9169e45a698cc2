// A server that sends fixed bytes, whatever it is asked.
#pragma once

#include <httplib.h>

#include <string>
#include <thread>
#include <utility>

namespace wncom::test {

// Takes connections on a free port of 127.0.0.1; on each it waits for the first bytes of a request, sends the answer
// and closes the connection.
class RawServer : private httplib::Server {
public:
    explicit RawServer(std::string answer) : m_answer(std::move(answer)) {
        m_address = "http://127.0.0.1:" + std::to_string(bind_to_any_port("127.0.0.1"));
        m_thread = std::thread([this] { listen_after_bind(); });
        while (!is_running()) std::this_thread::yield();
    }
    ~RawServer() {
        stop();
        m_thread.join();
    }

    const std::string& Address() const { return m_address; }

private:
    bool process_and_close_socket(socket_t client) override {
        std::string request(65536, '\0');
        if (httplib::detail::read_socket(client, request.data(), request.size(), 0) > 0) {
            httplib::detail::send_socket(client, m_answer.data(), m_answer.size(), 0);
        }
        httplib::detail::close_socket(client);
        return true;
    }

    std::string m_answer;
    std::string m_address;
    std::thread m_thread;
};

}  // namespace wncom::test
