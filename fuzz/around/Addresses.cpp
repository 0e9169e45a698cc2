// Addresses: what is accepted means to libcurl, which connects, the same host and port.
#include <curl/curl.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "fuzz/support/Fuzz.h"
#include "libraries/http/shared/HttpAddress.h"

using namespace wncom;
using namespace wncom::fuzz;

namespace {

std::string Part(CURLU* address, CURLUPart which, unsigned flags = 0) {
    char* part = nullptr;
    std::string text = curl_url_get(address, which, &part, flags) == CURLUE_OK ? part : "";
    curl_free(part);
    return text;
}

void Compare(const std::string& text) {
    http::HttpAddress parsed;
    try {
        parsed = http::ParseHttpAddress(text);
    } catch (const std::invalid_argument&) {
        return;
    }
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> address(curl_url(), curl_url_cleanup);
    const CURLUcode status = curl_url_set(address.get(), CURLUPART_URL, text.c_str(), 0);
    // What libcurl refuses it does not connect to.
    if (status != CURLUE_OK) return;
    Expect(Part(address.get(), CURLUPART_USER).empty() && Part(address.get(), CURLUPART_PASSWORD).empty(),
           "no user is let pass");
    Expect(Part(address.get(), CURLUPART_SCHEME) == parsed.scheme, "the same scheme");
    std::string host = Part(address.get(), CURLUPART_HOST);
    for (char& c : host) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    // libcurl rewrites numbers, "127.1" and "[0::1]" too: what it rewrites is no loopback to us.
    const bool number = host[0] == '[' || host.find_first_not_of("0123456789.") == std::string::npos;
    Expect(host == parsed.host || (number && !parsed.loopback), "the same host");
    const std::string port = Part(address.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
    Expect(std::strtoul(port.c_str(), nullptr, 10) == parsed.port, "the same port");
    if (parsed.loopback) {
        Expect(host == "localhost" || host == "[::1]" || host.compare(0, 4, "127.") == 0, "loopback is loopback");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Compare(std::string(View(data, size)));
    FuzzedDataProvider input(data, size);
    Compare("http://" + PickText(input, 40, "a1.:/@[]?#%\\ 027f-"));
    return 0;
}
