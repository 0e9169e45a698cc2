// The connections that the objects of this process share.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace wncom::http {

// Handles of libcurl between calls, each with the connection that it used last kept open: a new object for a service
// goes on where the previous one ended. Any thread may call; a handle is one thread's while it is out.
class Connections {
public:
    struct HandleDeleter {
        void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    };
    using Handle = std::unique_ptr<CURL, HandleDeleter>;

    // Each object enters before its first call and leaves after its last. Throws std::runtime_error when libcurl
    // does not start.
    void Enter();
    void Leave() noexcept;
    // Closes everything, unless an object is still there: nothing must be left to do when the module is unloaded.
    void CloseWhenUnused() noexcept;

    // A handle without options, by preference one that has a connection to the origin. Throws std::bad_alloc.
    Handle Take(const std::string& origin);
    // Keeps the handle for the next call to the origin.
    void Keep(const std::string& origin, Handle handle) noexcept;

private:
    struct Idle {
        std::string origin;
        Handle handle;
    };

    std::mutex m_lock;
    std::size_t m_objects = 0;
    bool m_started = false;
    std::vector<Idle> m_idle;  // the last one kept is at the end
};

// The one of this module.
Connections& SharedConnections() noexcept;

}  // namespace wncom::http
