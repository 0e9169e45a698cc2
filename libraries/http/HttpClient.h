// One call to a device over HTTP.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "libraries/http/shared/HttpAddress.h"
#include "libraries/http/shared/Settings.h"

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

// The device answered with a status outside 2xx.
class Refusal : public std::runtime_error {
public:
    Refusal(const std::string& message, std::string text) : std::runtime_error(message), m_text(std::move(text)) {}
    // The device's own words, a sentence or an XML document, as they came; empty when it gave neither.
    const std::string& Text() const noexcept { return m_text; }

private:
    std::string m_text;
};

// Calls one service. An object belongs to one thread at a time.
class HttpClient {
public:
    HttpClient(ServiceAddress address, const Settings& settings);

    // Gives the body of the answer. Anything but a whole answer with a status of 2xx and the wanted type throws
    // std::runtime_error with a text that tells what went wrong; a status outside 2xx throws Refusal. Redirects are
    // not followed: such a status is a refusal like any other.
    std::string Send(const Call& call) const;

    const ServiceAddress& Address() const noexcept { return m_address; }

private:
    ServiceAddress m_address;
    Settings m_settings;
};

}  // namespace wncom::http
