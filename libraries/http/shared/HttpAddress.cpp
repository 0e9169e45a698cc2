#include "libraries/http/shared/HttpAddress.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "libraries/http/shared/OneLine.h"

namespace wncom::http {
namespace {

// Not the C library's: those depend on the locale.
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return lower;
}

// A broken address may still hold a password.
[[noreturn]] void Refuse(std::string_view text, const char* why) {
    const bool secret = text.find('@') != std::string_view::npos;
    throw std::invalid_argument((secret ? "the address" : "the address \"" + OneLine(text) + "\"") + " " + why);
}

// A number of 1 to most; 0 for anything else.
unsigned Number(std::string_view text, unsigned most) {
    unsigned number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() && number <= most ? number : 0;
}

bool IsHost(std::string_view host) {
    if (host.starts_with('[')) {
        return host.size() > 3 && host.ends_with(']') && std::all_of(host.begin() + 1, host.end() - 1, [](char c) {
                   return IsDigit(c) || IsLetter(c) || c == ':' || c == '.' || c == '%';
               });
    }
    return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
        return IsDigit(c) || IsLetter(c) || c == '-' || c == '.' || c == '_' || (c & 0x80) != 0;
    });
}

}  // namespace

bool IsLoopback(std::string_view host) noexcept {
    if (host == "localhost" || host == "[::1]") return true;
    if (!host.starts_with("127.")) return false;
    host.remove_prefix(3);
    for (int i = 0; i < 3; ++i) {
        if (!host.starts_with('.')) return false;
        host.remove_prefix(1);
        const std::string_view octet = host.substr(0, host.find('.'));
        if (octet != "0" && (octet.starts_with('0') || Number(octet, 255) == 0)) return false;
        host.remove_prefix(octet.size());
    }
    return host.empty();
}

HttpAddress ParseHttpAddress(std::string_view text) {
    HttpAddress address;
    const std::size_t colon = text.find("://");
    address.scheme = Lower(text.substr(0, std::min(colon, text.size())));
    if (colon == std::string_view::npos || (address.scheme != "http" && address.scheme != "https")) {
        Refuse(text, "does not begin with http:// or https://");
    }
    if (std::any_of(text.begin(), text.end(),
                    [](char c) { return (c & 0xE0) == 0 || c == ' ' || c == '\\' || c == 0x7F; })) {
        Refuse(text, "contains a space, a backslash or a control character");
    }
    const std::string_view rest = text.substr(colon + 3);
    std::string_view authority = rest.substr(0, rest.find_first_of("/?#"));
    address.path = rest.substr(authority.size());
    if (!address.path.starts_with('/')) address.path.insert(0, "/");
    if (authority.find('@') != std::string_view::npos) {
        Refuse(text, "contains a user name or a password, which would appear in logs: remove it");
    }
    const std::size_t end = authority.starts_with('[') ? authority.find(']') : 0;
    const std::size_t portAt = end == std::string_view::npos ? end : authority.find(':', end);
    address.port = address.scheme == "https" ? 443 : 80;
    if (portAt != std::string_view::npos) {
        address.port = Number(authority.substr(portAt + 1), 65535);
        if (address.port == 0) Refuse(text, "has an invalid port");
        authority = authority.substr(0, portAt);
    }
    if (!IsHost(authority)) Refuse(text, "has no valid host name");
    address.host = Lower(authority);
    address.loopback = IsLoopback(address.host);
    return address;
}

ServiceAddress ParseServiceAddress(std::string_view text) {
    const HttpAddress parsed = ParseHttpAddress(text);
    if (parsed.path.find_first_of("?#") != std::string::npos) {
        Refuse(text, "has a query or a fragment, which a service address cannot have");
    }
    ServiceAddress address;
    address.loopback = parsed.loopback;
    address.origin = parsed.scheme + "://" + parsed.host + ":" + std::to_string(parsed.port);
    address.base = text.substr(0, text.find_last_not_of('/') + 1);
    return address;
}

}  // namespace wncom::http
