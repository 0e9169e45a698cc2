// One call to a device over HTTP.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "transports/http/ServiceAddress.h"
#include "transports/http/Settings.h"

namespace wncom::http {

struct Call {
    Call(const char* callMethod, std::string callPath) : method(callMethod), path(std::move(callPath)) {}

    const char* method;
    std::string path;                  // appended to the service address, begins with a slash
    std::vector<std::string> headers;  // "Name: value" each, trusted text
    std::string body;
    // What the answer must be, such as "application/xml"; null takes any type.
    const char* answerType = nullptr;
};

// Calls one service. An object belongs to one thread at a time.
class HttpClient {
public:
    HttpClient(ServiceAddress address, const Settings& settings);

    // Gives the body of the answer. Anything but a whole answer with a status of 2xx and the wanted type throws
    // std::runtime_error with a text that tells what went wrong. Redirects are not followed: such a status is a
    // failure like any other.
    std::string Send(const Call& call) const;

    const ServiceAddress& Address() const noexcept { return m_address; }

private:
    ServiceAddress m_address;
    Settings m_settings;
};

}  // namespace wncom::http
