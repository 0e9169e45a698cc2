#include "libraries/http/HttpClient.h"

#include <curl/curl.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "libraries/http/Connections.h"
#include "libraries/http/shared/OneLine.h"
#include "wncom/Logging.h"

namespace wncom::http {
namespace {

struct HeadersDeleter {
    void operator()(curl_slist* headers) const noexcept { curl_slist_free_all(headers); }
};

class Headers {
public:
    void Add(const char* header) {
        curl_slist* const longer = curl_slist_append(m_headers.get(), header);
        if (!longer) throw std::bad_alloc();
        m_headers.release();
        m_headers.reset(longer);
    }
    curl_slist* get() const noexcept { return m_headers.get(); }

private:
    std::unique_ptr<curl_slist, HeadersDeleter> m_headers;
};

struct Answer {
    std::string body;
    std::size_t limit = 0;  // bytes
    bool tooLong = false;
    bool outOfMemory = false;
};

// Called by libcurl, which no exception may cross; fewer bytes than it offers end the transfer.
std::size_t Receive(const char* bytes, std::size_t one, std::size_t count, void* context) noexcept {
    Answer& answer = *static_cast<Answer*>(context);
    if (count > answer.limit - answer.body.size()) {
        answer.tooLong = true;
        return 0;
    }
    try {
        answer.body.append(bytes, count);
    } catch (const std::bad_alloc&) {
        answer.outOfMemory = true;
        return 0;
    }
    return one * count;
}

template <class Value>
void Set(CURL* handle, CURLoption option, Value value) {
    const CURLcode code = curl_easy_setopt(handle, option, value);
    if (code == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
    if (code != CURLE_OK)
        throw std::runtime_error(std::string("libcurl refuses an option: ") + curl_easy_strerror(code));
}

// "application/xml; charset=utf-8" is of type "application/xml".
bool IsOfType(const char* given, std::string_view wanted) {
    const std::string_view type = given ? given : "";
    const std::string_view name = type.substr(0, type.find_first_of("; "));
    return name.size() == wanted.size() && _strnicmp(name.data(), wanted.data(), wanted.size()) == 0;
}

}  // namespace

HttpClient::HttpClient(ServiceAddress address, const Settings& settings)
    : m_address(std::move(address)), m_settings(settings) {}

std::string HttpClient::Send(const Call& call) const {
    const std::string url = m_address.base + call.path;
    const std::string what = std::string(call.method) + " " + url;
    Log(4, "HttpClient: %s with %u bytes", what.c_str(), call.body.size());

    Answer answer;
    answer.limit = std::size_t{m_settings.answerLimit} * 1024;
    Headers headers;
    for (const std::string& header : call.headers) headers.Add(header.c_str());
    // Tickets are short: asking first whether they are welcome would cost a turn.
    headers.Add("Expect:");
    char reason[CURL_ERROR_SIZE] = "";

    Connections::Handle handle = SharedConnections().Take(m_address.origin);
    CURL* const curl = handle.get();
    Set(curl, CURLOPT_URL, url.c_str());
    Set(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    Set(curl, CURLOPT_NOSIGNAL, 1L);
    Set(curl, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(m_settings.connectTimeout));
    Set(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(m_settings.callTimeout));
    Set(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(answer.limit));
    Set(curl, CURLOPT_HTTPHEADER, headers.get());
    Set(curl, CURLOPT_ERRORBUFFER, reason);
    Set(curl, CURLOPT_WRITEFUNCTION, &Receive);
    Set(curl, CURLOPT_WRITEDATA, &answer);
    if (m_address.loopback) Set(curl, CURLOPT_PROXY, "");
    if (std::string_view(call.method) == "POST") {
        Set(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(call.body.size()));
        Set(curl, CURLOPT_POSTFIELDS, call.body.c_str());
    } else {
        Set(curl, CURLOPT_CUSTOMREQUEST, call.method);
    }

    const CURLcode code = curl_easy_perform(curl);
    long status = 0;  // libcurl's type
    const char* type = nullptr;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(curl, CURLINFO_CONTENT_TYPE, &type);
    if (answer.outOfMemory) throw std::bad_alloc();
    if (answer.tooLong || code == CURLE_FILESIZE_EXCEEDED) {
        throw std::runtime_error(what + ": the answer is longer than " + std::to_string(m_settings.answerLimit) +
                                 " KB");
    }
    if (code != CURLE_OK) throw std::runtime_error(what + ": " + (*reason ? reason : curl_easy_strerror(code)));
    Log(3, "HttpClient: %s answered %d with %u bytes", what.c_str(), status, answer.body.size());
    const bool rightType = !call.answerType || IsOfType(type, call.answerType);
    const std::string typeShown = OneLine(type ? type : "none");
    const bool sentence = IsOfType(type, "text/plain");
    const bool document = IsOfType(type, "application/xml");
    SharedConnections().Keep(m_address.origin, std::move(handle));

    if (status < 200 || status > 299) {
        std::string message = what + ": status " + std::to_string(status);
        // The agent hands on no reason of a refused write, so the log must have it.
        if (sentence || document) message += ", " + OneLine(answer.body);
        throw Refusal(message, sentence || document ? std::move(answer.body) : std::string());
    }
    if (!rightType) {
        throw std::runtime_error(what + ": the answer is of type " + typeShown + " instead of " + call.answerType);
    }
    return std::move(answer.body);
}

}  // namespace wncom::http
