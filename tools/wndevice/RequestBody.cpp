#include "tools/wndevice/RequestBody.h"

#include <exception>

namespace wndevice {
namespace {

// Without either header the HTTP library would read until the client closes the connection.
bool HasBody(const httplib::Request& request) {
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

bool Forget(const char*, std::size_t) { return true; }

}  // namespace

void Tell(httplib::Response& answer, int status, const std::string& sentence) {
    answer.status = status;
    answer.set_content(sentence + "\n", "text/plain; charset=utf-8");
}

void TellXml(httplib::Response& answer, int status, const std::string& document) {
    answer.status = status;
    answer.set_content(document, "application/xml; charset=utf-8");
}

bool ReadBody(const httplib::Request& request, httplib::Response& answer, const httplib::ContentReader& reader,
              const std::function<void(const char*, std::size_t)>& sink) {
    if (!HasBody(request)) {
        Tell(answer, 411, "The request tells no length of its body");
        return false;
    }
    if (request.is_multipart_form_data()) {
        SkipBody(request, reader);
        Tell(answer, 415, "A form is not taken, only the bytes themselves");
        return false;
    }
    std::exception_ptr failure;
    const bool whole = reader([&](const char* bytes, std::size_t count) {
        try {
            if (!failure) sink(bytes, count);
        } catch (...) {
            failure = std::current_exception();
        }
        return true;
    });
    if (failure) std::rethrow_exception(failure);
    if (!whole) Tell(answer, 400, "The body was cut off");
    return whole;
}

bool ReadText(const httplib::Request& request, httplib::Response& answer, const httplib::ContentReader& reader,
              std::size_t limit, std::string& text) {
    bool fits = true;
    const bool whole = ReadBody(request, answer, reader, [&](const char* bytes, std::size_t count) {
        fits = fits && count <= limit - text.size();
        if (fits) text.append(bytes, count);
    });
    if (whole && !fits) Tell(answer, 413, "The body is longer than " + std::to_string(limit) + " bytes");
    return whole && fits;
}

void SkipBody(const httplib::Request& request, const httplib::ContentReader& reader) {
    if (!HasBody(request)) return;
    if (request.is_multipart_form_data()) {
        reader([](const httplib::MultipartFormData&) { return true; }, Forget);
    } else {
        reader(Forget);
    }
}

}  // namespace wndevice
