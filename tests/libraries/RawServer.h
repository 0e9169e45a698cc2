// A server that sends fixed bytes, whatever it is asked.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace wncom::test {

// Takes one connection, waits for the first bytes of a request, sends the answer and closes the connection.
class RawServer {
public:
    explicit RawServer(std::string answer)
        : m_answer(std::move(answer)), m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const general = reinterpret_cast<sockaddr*>(&address);
        if (bind(m_listener, general, size) != 0 || listen(m_listener, 1) != 0 ||
            getsockname(m_listener, general, &size) != 0) {
            throw std::runtime_error("no loopback port");
        }
        m_address = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        m_thread = std::thread([this] { Answer(); });
    }
    ~RawServer() {
        shutdown(m_listener, SHUT_RDWR);
        m_thread.join();
        close(m_listener);
    }

    const std::string& Address() const { return m_address; }

private:
    void Answer() const {
        const int client = accept(m_listener, nullptr, nullptr);
        if (client < 0) return;
        char request[65536];
        if (recv(client, request, sizeof(request), 0) > 0) {
            send(client, m_answer.data(), m_answer.size(), MSG_NOSIGNAL);
        }
        close(client);
    }

    std::string m_answer;
    int m_listener;
    std::string m_address;
    std::thread m_thread;
};

}  // namespace wncom::test
