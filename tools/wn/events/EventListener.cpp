#include "tools/wn/events/EventListener.h"

#include <httplib.h>

#include <stdexcept>
#include <utility>

#include "tools/wn/core/CommandError.h"

namespace wn {
namespace {

constexpr std::size_t kMostWaiting = 1000;
constexpr std::size_t kLongestEvent = std::size_t{8} << 20;  // bytes
constexpr std::size_t kThreads = 4;
constexpr const char* kPath = "/events";
constexpr const char* kText = "text/plain; charset=utf-8";

}  // namespace

EventListener::EventListener() : m_server(std::make_unique<httplib::Server>()) {
    m_server->new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    m_server->set_payload_max_length(kLongestEvent);
    // What is for no one must not be read: its length has no limit once it is expanded.
    m_server->set_pre_routing_handler([](const httplib::Request& request, httplib::Response& answer) {
        if (request.method == "POST" && request.path == kPath) return httplib::Server::HandlerResponse::Unhandled;
        answer.status = 404;
        answer.set_header("Connection", "close");
        return httplib::Server::HandlerResponse::Handled;
    });
    m_server->Post(kPath, [this](const httplib::Request&, httplib::Response& answer,
                                 const httplib::ContentReader& read) { Take(read, answer); });
    const int port = m_server->bind_to_any_port("127.0.0.1");
    if (port < 0) throw CommandError("Cannot listen on 127.0.0.1 for events");
    m_address = "http://127.0.0.1:" + std::to_string(port) + kPath;
    m_thread = std::thread([this] {
        m_server->listen_after_bind();
        m_ended = true;
    });
    // Stopping it before it runs would be lost.
    while (!m_server->is_running() && !m_ended) std::this_thread::yield();
}

EventListener::~EventListener() {
    m_server->stop();
    m_thread.join();
}

std::optional<DeviceEvent> EventListener::Wait(std::chrono::milliseconds time) {
    std::unique_lock guard(m_lock);
    if (!m_change.wait_for(guard, time, [this] { return !m_waiting.empty(); })) return std::nullopt;
    DeviceEvent event = std::move(m_waiting.front());
    m_waiting.pop_front();
    return event;
}

void EventListener::Take(const httplib::ContentReader& read, httplib::Response& answer) {
    // The server's own limit counts the bytes as they come, and a few compressed ones may be very many.
    std::string document;
    const bool whole = read([&](const char* bytes, std::size_t count) {
        if (count > kLongestEvent - document.size()) return false;
        document.append(bytes, count);
        return true;
    });
    if (!whole) {
        answer.status = 413;
        return;
    }
    try {
        DeviceEvent event = ParseDeviceEvent(document);
        const std::lock_guard guard(m_lock);
        if (m_waiting.size() == kMostWaiting) {
            answer.status = 503;
            return;
        }
        m_waiting.push_back(std::move(event));
        m_change.notify_one();
        answer.status = 200;
    } catch (const std::invalid_argument& failure) {
        answer.status = 422;
        answer.set_content(failure.what(), kText);
    }
}

}  // namespace wn
