#include "libraries/http/ServiceAddress.h"

#include <curl/curl.h>

#include <memory>
#include <stdexcept>

#include "libraries/http/WireText.h"

namespace wncom::http {
namespace {

struct UrlDeleter {
    void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, UrlDeleter>;

// Empty for a part that the address lacks.
std::string Part(CURLU* url, CURLUPart part, unsigned flags = 0) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, flags) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
    return text;
}

bool IsLoopback(const std::string& host) {
    return host == "localhost" || host == "[::1]" || host.compare(0, 4, "127.") == 0;
}

}  // namespace

ServiceAddress ParseServiceAddress(std::string_view text) {
    const std::string shown = "\"" + OneLine(text) + "\"";
    const Url url(curl_url());
    if (!url) throw std::bad_alloc();
    if (curl_url_set(url.get(), CURLUPART_URL, std::string(text).c_str(), 0) != CURLUE_OK) {
        throw std::invalid_argument("the service address " + shown + " is no address");
    }
    const std::string scheme = Part(url.get(), CURLUPART_SCHEME);
    if (scheme != "http" && scheme != "https") {
        throw std::invalid_argument("the service address " + shown + " is neither http nor https");
    }
    if (!Part(url.get(), CURLUPART_QUERY).empty() || !Part(url.get(), CURLUPART_FRAGMENT).empty()) {
        throw std::invalid_argument("the service address " + shown + " carries a query or a fragment");
    }
    ServiceAddress address;
    const std::string host = Part(url.get(), CURLUPART_HOST);
    address.loopback = IsLoopback(host);
    address.origin = scheme + "://" + host + ":" + Part(url.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
    address.base = Part(url.get(), CURLUPART_URL);
    address.base.erase(address.base.find_last_not_of('/') + 1);
    return address;
}

}  // namespace wncom::http
