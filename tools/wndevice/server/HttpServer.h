// The HTTP library's server, hardened against clients that mean harm.
#pragma once

#include <httplib.h>

#include <atomic>
#include <mutex>
#include <set>
#include <string>

#include "tools/wndevice/server/Connection.h"

namespace wndevice {

// Sets an answer of one sentence.
void Tell(httplib::Response& answer, int status, const std::string& sentence);

// Serves loopback. Each connection has a thread; when all are in use, a new connection takes the place of the one
// that is silent or slow. Heads of requests are bounded in length and time. Requests whose bodies cannot be read as
// they are (an unclear length, a compressed body, a form) are refused and their connections closed. Handlers are
// added before Run.
class HttpServer : private httplib::Server {
public:
    HttpServer();

    using httplib::Server::Delete;
    using httplib::Server::Get;
    using httplib::Server::Patch;
    using httplib::Server::Post;
    using httplib::Server::Put;
    using httplib::Server::set_logger;

    // Takes a port of 127.0.0.1, any free one for 0, and gives the server's address without a trailing slash. Throws
    // std::runtime_error when the port is in use.
    std::string Bind(int port);
    // Serves until Stop, which may come from any thread once Run was called or is about to be. Requests that are
    // being answered then still get their answers, uploads are cut off.
    void Run();
    void Stop();
    bool HasEnded() const noexcept { return m_ended; }
    // Ends the connection to a client's port at once, without another byte.
    void EndConnection(int clientPort);

private:
    class Threads;

    bool process_and_close_socket(socket_t socket) override;
    void MakeRoom();

    std::mutex m_lock;
    std::set<Connection*> m_connections;
    std::set<Connection*> m_ending;  // those that gave up their place and still hold it
    std::size_t m_waiting = 0;       // accepted, without a thread yet
    std::atomic<bool> m_ended = false;
};

}  // namespace wndevice
