#include "tools/wndevice/server/Connection.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace wndevice {
namespace {

constexpr std::size_t kLongestLine = 16384;
constexpr std::size_t kMostDrained = std::size_t{64} << 20;
constexpr std::chrono::seconds kDrainTime{5};
constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();
// The same on every host; only the names differ.
constexpr int kReading = 0;
constexpr int kWriting = 1;
constexpr int kBoth = 2;

}  // namespace

bool Connection::AwaitHead(std::chrono::milliseconds time, std::size_t bytes) {
    StartMessage();
    m_deadline = Clock::time_point::max();
    if (m_begin == m_end && !Fill()) return false;
    LimitHead(time, bytes);
    return true;
}

void Connection::LimitHead(std::chrono::milliseconds time, std::size_t bytes) {
    StartMessage();
    m_deadline = Clock::now() + time;
    m_left = bytes;
    m_line = 0;
}

void Connection::EndHead() noexcept {
    m_deadline = Clock::time_point::max();
    m_left = kUnlimited;
}

void Connection::Drain() {
    shutdown(m_socket, kWriting);
    m_deadline = Clock::now() + kDrainTime;
    for (std::size_t count = 0; count < kMostDrained && Fill(); count += m_end) {
    }
}

double Connection::SecondsPerByte() const noexcept {
    const Clock::duration age = Clock::now().time_since_epoch() - Clock::duration(m_started);
    return std::chrono::duration<double>(age).count() / static_cast<double>(m_moved + 1);
}

void Connection::End() noexcept { shutdown(m_socket, kBoth); }
void Connection::EndReading() noexcept { shutdown(m_socket, kReading); }

void Connection::StartMessage() noexcept {
    m_started = Clock::now().time_since_epoch().count();
    m_moved = 0;
}

bool Connection::Fill() {
    const ssize_t received = httplib::detail::read_socket(m_socket, m_buffer.data(), m_buffer.size(), 0);
    if (received <= 0 || Clock::now() > m_deadline) return false;
    m_begin = 0;
    m_end = static_cast<std::size_t>(received);
    m_moved += m_end;
    return true;
}

ssize_t Connection::read(char* bytes, std::size_t count) {
    if (m_left == 0 || (m_begin == m_end && !Fill())) return -1;
    const std::size_t given = std::min({count, m_end - m_begin, m_left});
    std::memcpy(bytes, m_buffer.data() + m_begin, given);
    m_begin += given;
    if (m_left != kUnlimited) m_left -= given;
    // The library reads lines byte by byte and keeps what it has of them.
    m_line = count == 1 && *bytes != '\n' ? m_line + 1 : 0;
    return m_line > kLongestLine ? -1 : static_cast<ssize_t>(given);
}

ssize_t Connection::write(const char* bytes, std::size_t count) {
    const ssize_t sent = httplib::detail::send_socket(m_socket, bytes, count, 0);
    if (sent > 0) m_moved += static_cast<std::size_t>(sent);
    return sent;
}

void Connection::get_remote_ip_and_port(std::string&, int& port) const {
    sockaddr_in peer{};
    socklen_t size = sizeof(peer);
    if (getpeername(m_socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0) port = ntohs(peer.sin_port);
}

void ClaimPort(socket_t socket) noexcept {
    const int yes = 1;
#ifdef SO_EXCLUSIVEADDRUSE
    constexpr int option = SO_EXCLUSIVEADDRUSE;
#else
    constexpr int option = SO_REUSEADDR;
#endif
    setsockopt(socket, SOL_SOCKET, option, reinterpret_cast<const char*>(&yes), sizeof(yes));
}

}  // namespace wndevice
