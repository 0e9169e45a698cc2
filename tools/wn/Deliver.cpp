#include "tools/wn/Deliver.h"

#include <curl/curl.h>

#include <chrono>
#include <exception>
#include <memory>

#include "tools/wn/Command.h"
#include "tools/wn/InputFile.h"
#include "tools/wn/ProgressBar.h"

namespace wn {
namespace {

constexpr std::uint64_t kLongestAnswer = 1U << 20;  // bytes

struct Upload {
    InputFile& file;
    ProgressBar& progress;
    std::uint64_t sent = 0;
    std::uint64_t answered = 0;
    std::string answer;          // the beginning of it
    std::exception_ptr failure;  // carried past the library, which knows no exceptions
};

struct Free {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

std::size_t GiveBytes(char* buffer, std::size_t size, std::size_t count, void* context) {
    Upload& upload = *static_cast<Upload*>(context);
    try {
        const std::size_t read = upload.file.Read(buffer, size * count);
        if (read == 0 && upload.sent < upload.file.size())
            throw CommandError("The data file became shorter meanwhile");
        upload.sent += read;
        upload.progress.Show(upload.sent);
        return read;
    } catch (...) {
        upload.failure = std::current_exception();
        return CURL_READFUNC_ABORT;
    }
}

std::size_t TakeAnswer(char* bytes, std::size_t size, std::size_t count, void* context) {
    constexpr std::size_t kKept = 500;
    Upload& upload = *static_cast<Upload*>(context);
    std::string& answer = upload.answer;
    if (answer.size() < kKept) answer.append(bytes, std::min(size * count, kKept - answer.size()));
    upload.answered += size * count;
    return upload.answered <= kLongestAnswer ? size * count : 0;
}

// Data for this machine takes no way over a proxy, whatever the environment says.
bool IsLoopback(const std::string& address) {
    const std::unique_ptr<CURLU, Free> url(curl_url());
    char* host = nullptr;
    if (!url || curl_url_set(url.get(), CURLUPART_URL, address.c_str(), 0) != CURLUE_OK ||
        curl_url_get(url.get(), CURLUPART_HOST, &host, 0) != CURLUE_OK) {
        return false;
    }
    const std::string name(host);
    curl_free(host);
    return name == "localhost" || name == "[::1]" || name.starts_with("127.");
}

std::string FirstLine(const std::string& text) {
    const std::string line = text.substr(0, text.find_first_of("\r\n"));
    return line.empty() ? "" : ": " + line;
}

}  // namespace

void RequireDelivery() {}  // libcurl does it

Delivery Deliver(const std::string& path, const std::string& address, int deliveryMethod) {
    InputFile file(path);
    ProgressBar progress(file.size());
    Upload upload{file, progress, 0, 0, {}, nullptr};
    const std::unique_ptr<CURL, Free> handle(curl_easy_init());
    if (!handle) throw CommandError("Cannot start the HTTP client");
    CURL* curl = handle.get();
    // Waiting for "100 Continue" would cost a second with a service that never says it.
    const std::unique_ptr<curl_slist, Free> headers(
        curl_slist_append(curl_slist_append(nullptr, "Expect:"), "Content-Type: application/octet-stream"));

    curl_easy_setopt(curl, CURLOPT_URL, address.c_str());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    if (IsLoopback(address)) curl_easy_setopt(curl, CURLOPT_PROXY, "");
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, 5000L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, 60L);
    if (deliveryMethod == 3) {
        curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(curl, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(file.size()));
    } else {
        curl_easy_setopt(curl, CURLOPT_POST, 1L);
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(file.size()));
    }
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, GiveBytes);
    curl_easy_setopt(curl, CURLOPT_READDATA, &upload);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, TakeAnswer);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &upload);

    const auto started = std::chrono::steady_clock::now();
    const CURLcode code = curl_easy_perform(curl);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    if (upload.failure) std::rethrow_exception(upload.failure);
    if (upload.answered > kLongestAnswer) throw CommandError("The service at " + address + " answers without end");
    if (code != CURLE_OK) {
        throw CommandError("The data did not reach " + address + ": " + curl_easy_strerror(code));
    }
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    if (status < 200 || status > 299) {
        throw CommandError("The service refused the data at " + address + " with HTTP status " +
                           std::to_string(status) + FirstLine(upload.answer));
    }
    return {upload.sent, took.count()};
}

}  // namespace wn
