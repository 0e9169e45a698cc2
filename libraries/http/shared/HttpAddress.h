// Addresses on the web, taken apart and checked before anything is sent to them.
#pragma once

#include <string>
#include <string_view>

namespace wncom::http {

struct HttpAddress {
    std::string scheme;  // "http" or "https"
    std::string host;    // in lower case, an IPv6 address in its brackets
    unsigned port = 0;   // the scheme's own where the address names none
    std::string path;    // with the query and the fragment as written, at least "/"
    bool loopback = false;
};

// Throws std::invalid_argument with a reason when the text is not an http or https address, or carries a user or a
// password: addresses stand in logs. The reason never shows what could be a password.
HttpAddress ParseHttpAddress(std::string_view text);

// Whether a host names this machine only: "localhost", "[::1]", or four numbers of which the first is 127. A name
// that merely begins like that does not.
bool IsLoopback(std::string_view host) noexcept;

struct ServiceAddress {
    std::string base;    // without a trailing slash: every operation's path is appended to it
    std::string origin;  // scheme, host and port: what one connection serves
    bool loopback = false;
};

// The address of a device service. Throws as ParseHttpAddress does, and for an address with a query or a fragment.
ServiceAddress ParseServiceAddress(std::string_view text);

}  // namespace wncom::http
