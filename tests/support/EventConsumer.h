// A consumer of events inside the test.
#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace wncom::test {

// Listens on a free port of 127.0.0.1 while it lives and keeps the events that it took.
class EventConsumer {
public:
    EventConsumer() {
        m_server.Post("/events", [this](const httplib::Request& request, httplib::Response& answer) {
            std::unique_lock guard(m_lock);
            m_change.wait(guard, [&] { return !m_held; });
            if (m_refusals != 0) {
                --m_refusals;
                answer.status = 503;
                return;
            }
            m_events.push_back(request.body);
            m_change.notify_all();
        });
        m_address = "http://127.0.0.1:" + std::to_string(m_server.bind_to_any_port("127.0.0.1")) + "/events";
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
        while (!m_server.is_running()) std::this_thread::yield();
    }
    ~EventConsumer() {
        Release();
        m_server.stop();
        m_thread.join();
    }

    const std::string& Address() const { return m_address; }
    // Refuses the next so many attempts.
    void Refuse(int attempts) {
        const std::lock_guard guard(m_lock);
        m_refusals = attempts;
    }
    // Leaves every event unanswered until Release.
    void Hold() {
        const std::lock_guard guard(m_lock);
        m_held = true;
    }
    void Release() {
        const std::lock_guard guard(m_lock);
        m_held = false;
        m_change.notify_all();
    }
    // The events so far, once there are so many, or after half a minute.
    std::vector<std::string> Wait(std::size_t count) {
        std::unique_lock guard(m_lock);
        m_change.wait_for(guard, std::chrono::seconds(30), [&] { return m_events.size() >= count; });
        return m_events;
    }

private:
    httplib::Server m_server;
    std::string m_address;
    std::thread m_thread;
    std::mutex m_lock;
    std::condition_variable m_change;
    std::vector<std::string> m_events;
    int m_refusals = 0;
    bool m_held = false;
};

}  // namespace wncom::test
