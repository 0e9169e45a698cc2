// Requests that may come twice.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace wndevice {

// Remembers what each request made, by the request's id: a client whose connection broke sends the same request
// again. Any thread may call.
class RequestMemory {
public:
    // What the request made the first time, or else makes now; a request without an id always makes. An empty text is
    // not remembered: the request failed. Throws std::invalid_argument for an id of another form, and what make
    // throws.
    std::string Once(const std::string& requestId, const std::function<std::string()>& make);

private:
    std::mutex m_lock;
    std::map<std::string, std::string> m_made;
};

}  // namespace wndevice
