// The address of a device service, taken apart once.
#pragma once

#include <string>
#include <string_view>

namespace wncom::http {

struct ServiceAddress {
    std::string base;    // without a trailing slash: every operation's path is appended to it
    std::string origin;  // scheme, host and port: what one connection serves
    bool loopback = false;
};

// Throws std::invalid_argument when the text is no http or https address, or carries a query or a fragment.
ServiceAddress ParseServiceAddress(std::string_view text);

}  // namespace wncom::http
