// How a session outlives the object that started it.
#pragma once

#include <windows.h>

#include <map>
#include <mutex>
#include <string>

namespace wncom::http {

// The bridge gives its object back and makes a new one whenever it connects, and it connects before it ends a
// session: the new object must know the session that it is to end. Both happen on one thread, one right after the
// other, so a session is left under the calling thread and its service, and the next object for that service takes
// it.
class SessionHandover {
public:
    // Replaces what the calling thread left before. When memory runs out the session is lost.
    void Leave(const std::string& service, const std::string& session) noexcept;
    // What the calling thread left for the service; empty when there is nothing. What it left for another is gone.
    std::string Take(const std::string& service);
    // Drops what the calling thread left: no successor will come.
    void Forget() noexcept;

private:
    struct Entry {
        std::string service;
        std::string session;
    };

    std::mutex m_lock;
    std::map<DWORD, Entry> m_entries;  // by thread id
};

// The one of this module.
SessionHandover& SharedHandover() noexcept;

}  // namespace wncom::http
