// One connection of the HTTP library, with limits that it does not have.
#pragma once

#include <httplib.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>

namespace wndevice {

// Reads and writes a connected socket, whose timeouts for silence are set already. It ends what comes too slowly or
// never ends: the part of a message before its body, and every line. One thread reads and writes; any may ask for the
// age and end it.
class Connection final : public httplib::Stream {
public:
    using Clock = std::chrono::steady_clock;

    explicit Connection(socket_t socket) noexcept : m_socket(socket) {}
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Waits for the first byte of a message, whose head must then come within the time and the bytes. False when
    // nothing comes.
    bool AwaitHead(std::chrono::milliseconds time, std::size_t bytes);
    // The head that comes next must come within the time and the bytes.
    void LimitHead(std::chrono::milliseconds time, std::size_t bytes);
    // The rest of the message may take any time and length.
    void EndHead() noexcept;
    // Tells the client that nothing more is sent, and takes what it is still sending: a connection that is closed
    // with bytes unread takes the last answer with it.
    void Drain();

    // How long the present message, or the silence before it, has lasted for each of its bytes: the greatest is the
    // connection that holds its thread for the least.
    double SecondsPerByte() const noexcept;
    // Both make blocked calls of the other thread return. Reading alone lets an answer still reach its client.
    void End() noexcept;
    void EndReading() noexcept;

    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    ssize_t read(char* bytes, std::size_t count) override;
    ssize_t write(const char* bytes, std::size_t count) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string&, int&) const override {}
    socket_t socket() const override { return m_socket; }

private:
    void StartMessage() noexcept;
    bool Fill();

    const socket_t m_socket;
    std::array<char, 16384> m_buffer;
    std::size_t m_begin = 0;  // of what was received and is not read yet
    std::size_t m_end = 0;
    std::size_t m_left = 0;  // bytes that may still be read
    std::size_t m_line = 0;  // bytes of the line so far
    Clock::time_point m_deadline;
    std::atomic<Clock::rep> m_started{0};  // when the present message, or the silence before it, began
    std::atomic<std::size_t> m_moved{0};   // its bytes in both directions
};

// Lets no other program share or take over the port of a listening socket, and lets it be used again at once.
void ClaimPort(socket_t socket) noexcept;

}  // namespace wndevice
