// Posts events to one consumer.
#pragma once

#include <httplib.h>

#include <string>

#include "libraries/http/shared/HttpAddress.h"

namespace wndevice {

// The HTTP library's client with bounds: an attempt ends after 2 seconds of silence, and after 4 in any case; of the
// answer nothing but its status is read. One thread posts; any may stop it.
class ConsumerClient : private httplib::ClientImpl {
public:
    explicit ConsumerClient(const wncom::http::HttpAddress& consumer);

    // Whether the consumer took the document.
    bool Post(const std::string& document);
    // Makes a Post that is waiting return.
    void Stop() { stop(); }

private:
    bool process_socket(const Socket& socket, std::function<bool(httplib::Stream&)> exchange) override;

    std::string m_path;
};

}  // namespace wndevice
