// The wait for a service.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace CLI {
class App;
}  // namespace CLI

namespace wn {

// How long a command may wait; nothing: as long as the transport does.
using TimeLimit = std::optional<std::chrono::milliseconds>;

// --timeout SECONDS
void AddTimeoutOption(CLI::App* command, TimeLimit& limit);

// While it lives, a person at a terminal is told after two seconds what is waited for, and the program ends with
// ExitStatus::TimeOver when the limit is over: a call into a library cannot be stopped in any other way.
class Waiting {
public:
    // what begins the message, such as "The job was not submitted to http://..."
    Waiting(std::string what, const std::string& address, TimeLimit limit, bool json);
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    ~Waiting();

private:
    void Watch(const std::string& what, const std::string& address, TimeLimit limit, bool json);

    std::mutex m_lock;
    std::condition_variable m_change;
    bool m_over = false;
    std::thread m_thread;
};

}  // namespace wn
