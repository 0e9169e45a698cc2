#include "tools/wndevice/ConsumerAddress.h"

#include <arpa/inet.h>
#include <curl/curl.h>

#include <memory>

namespace wndevice {
namespace {

constexpr std::size_t kLongest = 1024;

struct UrlDeleter {
    void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
};

std::string Part(CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, 0) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
    return text;
}

// A name that merely begins like a loopback address is none.
bool IsLoopback(const std::string& host) {
    in_addr address{};
    if (inet_pton(AF_INET, host.c_str(), &address) == 1) return (ntohl(address.s_addr) >> 24) == 127;
    return host == "localhost" || host == "[::1]";
}

}  // namespace

bool IsConsumerAddress(const std::string& text) {
    if (text.size() > kLongest || text.find_first_of(" \t\r\n") != std::string::npos) return false;
    const std::unique_ptr<CURLU, UrlDeleter> url(curl_url());
    if (!url || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), CURLU_DISALLOW_USER) != CURLUE_OK) return false;
    return Part(url.get(), CURLUPART_SCHEME) == "http" && IsLoopback(Part(url.get(), CURLUPART_HOST));
}

}  // namespace wndevice
