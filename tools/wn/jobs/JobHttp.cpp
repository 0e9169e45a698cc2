#include "tools/wn/jobs/JobHttp.h"

#include <curl/curl.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <stdexcept>

#include "libraries/http/shared/HttpAddress.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Interruption.h"
#include "tools/wn/jobs/ProgressBar.h"

namespace wn {
namespace {

constexpr std::size_t kLongestAnswer = 1U << 20;  // bytes

struct Free {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

// A service may give an address that none of ours can take apart; the request then fails with its reason.
bool IsLoopback(const std::string& address) {
    try {
        return wncom::http::ParseHttpAddress(address).loopback;
    } catch (const std::invalid_argument&) {
        return false;
    }
}

// One request and the beginning of its answer.
class Request {
public:
    Request(const std::string& address, TimeLimit limit)
        : m_address(address), m_limited(limit), m_curl(curl_easy_init()) {
        if (!m_curl) throw CommandError("Cannot start the HTTP client");
        Set(CURLOPT_URL, address.c_str());
        Set(CURLOPT_PROTOCOLS_STR, "http,https");
        Set(CURLOPT_ERRORBUFFER, m_error);
        Set(CURLOPT_NOSIGNAL, 1L);
        // What is for this machine takes no way over a proxy, whatever the environment says.
        if (IsLoopback(address)) Set(CURLOPT_PROXY, "");
        Set(CURLOPT_CONNECTTIMEOUT_MS, 5000L);
        Set(CURLOPT_LOW_SPEED_LIMIT, 1L);
        Set(CURLOPT_LOW_SPEED_TIME, 60L);
        if (limit) Set(CURLOPT_TIMEOUT_MS, std::max(1L, static_cast<long>(limit->count())));
        Set(CURLOPT_WRITEFUNCTION, TakeAnswer);
        Set(CURLOPT_WRITEDATA, this);
        Set(CURLOPT_NOPROGRESS, 0L);
        Set(CURLOPT_XFERINFOFUNCTION, CheckInterruption);
        Set(CURLOPT_XFERINFODATA, this);
    }

    template <class Value>
    void Set(CURLoption option, Value value) {
        curl_easy_setopt(m_curl.get(), option, value);
    }

    // Gives the answer to a request that succeeded. what begins the message when it did not.
    const std::string& Perform(const std::string& what) {
        const CURLcode code = curl_easy_perform(m_curl.get());
        const std::string failed = what + " " + m_address;
        if (m_interruption.Wanted()) {
            throw CommandError(failed, {.reason = "Interrupted", .exit = m_interruption.Status()});
        }
        if (m_overflow) throw CommandError(failed, {.reason = "The service sent more than 1 MB in answer"});
        if (code == CURLE_OPERATION_TIMEDOUT && m_limited) {
            throw CommandError(failed, {.reason = m_error, .exit = ExitStatus::TimeOver});
        }
        if (code != CURLE_OK) {
            throw CommandError(failed, {.reason = m_error[0] != '\0' ? m_error : curl_easy_strerror(code)});
        }
        long status = 0;
        curl_easy_getinfo(m_curl.get(), CURLINFO_RESPONSE_CODE, &status);
        if (status < 200 || status > 299) {
            const std::string line = m_answer.substr(0, m_answer.find_first_of("\r\n"));
            throw CommandError(failed, {.reason = "The service refused it with HTTP status " +
                                                  std::to_string(status) + (line.empty() ? "" : ": " + line)});
        }
        return m_answer;
    }

private:
    static std::size_t TakeAnswer(char* bytes, std::size_t size, std::size_t count, void* context) {
        Request& request = *static_cast<Request*>(context);
        request.m_overflow = request.m_answer.size() + size * count > kLongestAnswer;
        if (request.m_overflow) return 0;
        request.m_answer.append(bytes, size * count);
        return size * count;
    }

    static int CheckInterruption(void* context, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
        return static_cast<Request*>(context)->m_interruption.Wanted() ? 1 : 0;
    }

    const std::string m_address;
    const bool m_limited;
    const Interruption m_interruption;
    const std::unique_ptr<CURL, Free> m_curl;
    char m_error[CURL_ERROR_SIZE] = {};
    std::string m_answer;
    bool m_overflow = false;
};

struct Upload {
    InputFile& file;
    ProgressBar progress;
    std::uint64_t sent = 0;
    std::exception_ptr failure{};  // carried past the library, which knows no exceptions
};

std::size_t GiveBytes(char* buffer, std::size_t size, std::size_t count, void* context) {
    Upload& upload = *static_cast<Upload*>(context);
    try {
        const std::size_t read = upload.file.Read(buffer, size * count);
        if (read == 0 && upload.sent < upload.file.size().value_or(0)) {
            throw CommandError(upload.file.name() + " became shorter while it was sent");
        }
        upload.sent += read;
        upload.progress.Show(upload.sent);
        return read;
    } catch (...) {
        upload.failure = std::current_exception();
        return CURL_READFUNC_ABORT;
    }
}

}  // namespace

void RequireHttp() {}  // libcurl does it

Delivery Deliver(InputFile& file, const std::string& address, DeliveryMethod method, TimeLimit limit) {
    Upload upload{file, ProgressBar(file.size())};
    Request request(address, limit);
    // Waiting for "100 Continue" would cost a second with a service that never says it.
    std::unique_ptr<curl_slist, Free> headers(
        curl_slist_append(curl_slist_append(nullptr, "Expect:"), "Content-Type: application/octet-stream"));
    if (!file.size()) headers.reset(curl_slist_append(headers.release(), "Transfer-Encoding: chunked"));
    const curl_off_t size = file.size() ? static_cast<curl_off_t>(*file.size()) : -1;
    request.Set(CURLOPT_HTTPHEADER, headers.get());
    request.Set(method == DeliveryMethod::Put ? CURLOPT_UPLOAD : CURLOPT_POST, 1L);
    request.Set(method == DeliveryMethod::Put ? CURLOPT_INFILESIZE_LARGE : CURLOPT_POSTFIELDSIZE_LARGE, size);
    request.Set(CURLOPT_READFUNCTION, GiveBytes);
    request.Set(CURLOPT_READDATA, &upload);

    const auto started = std::chrono::steady_clock::now();
    try {
        request.Perform("The data was not delivered to");
    } catch (const CommandError&) {
        if (upload.failure) std::rethrow_exception(upload.failure);
        throw;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    return {upload.sent, took.count()};
}

std::string ReadJob(const std::string& address, TimeLimit limit) {
    return Request(address, limit).Perform("Cannot read the job at");
}

}  // namespace wn
