// The consumer of a subscription's events.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "tools/wn/events/DeviceEvent.h"

namespace httplib {
class Server;
class ContentReader;
struct Response;
}  // namespace httplib

namespace wn {

// Takes events over HTTP on a free port of 127.0.0.1 for as long as it lives; writing to a pipe that nobody reads
// fails from then on instead of ending the program. Events beyond a thousand that wait are refused: the service then
// tries again.
class EventListener {
public:
    // Throws CommandError when it cannot listen.
    EventListener();
    EventListener(const EventListener&) = delete;
    EventListener& operator=(const EventListener&) = delete;
    ~EventListener();

    // Where the service is to send the events.
    const std::string& Address() const { return m_address; }
    // The next event, in the order of their arrival; nothing when none came in this time. For one thread.
    std::optional<DeviceEvent> Wait(std::chrono::milliseconds time);

private:
    void Take(const httplib::ContentReader& read, httplib::Response& answer);

    std::mutex m_lock;
    std::condition_variable m_change;
    std::deque<DeviceEvent> m_waiting;
    std::unique_ptr<httplib::Server> m_server;
    std::string m_address;
    std::atomic<bool> m_ended = false;  // the server, by itself or by being stopped
    std::thread m_thread;
};

}  // namespace wn
