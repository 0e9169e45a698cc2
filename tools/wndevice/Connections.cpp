#include "tools/wndevice/Connections.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <filesystem>
#include <string>
#include <system_error>

namespace wndevice {
namespace {

// Calls the action with each connected socket of this process and the port at its other end.
template <class Action>
void ForEachConnection(Action action) {
    std::error_code gone;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", gone)) {
        const std::string name = entry.path().filename().string();
        int socket = -1;
        std::from_chars(name.data(), name.data() + name.size(), socket);
        sockaddr_in peer{};
        socklen_t size = sizeof(peer);
        if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) != 0 || peer.sin_family != AF_INET)
            continue;
        action(socket, int{ntohs(peer.sin_port)});
    }
}

}  // namespace

void EndConnection(int clientPort) {
    ForEachConnection([&](int socket, int port) {
        if (port == clientPort) shutdown(socket, SHUT_RDWR);
    });
}

void EndWaiting() {
    ForEachConnection([](int socket, int) { shutdown(socket, SHUT_RD); });
}

}  // namespace wndevice
