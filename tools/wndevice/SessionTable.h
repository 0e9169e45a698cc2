// The sessions that the service knows.
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace wndevice {

// Sessions live in memory only. One that was not used for an hour is forgotten. Any thread may call.
class SessionTable {
public:
    // A new session's id. The session that it replaces ends; an id that is not known replaces nothing.
    std::string Start(const std::string& replaced);
    // Both tell whether the session was known; Use counts as a use.
    bool Use(const std::string& id);
    bool End(const std::string& id);

private:
    using Clock = std::chrono::steady_clock;
    void ForgetIdle();

    std::mutex m_lock;
    std::map<std::string, Clock::time_point> m_lastUse;
};

}  // namespace wndevice
