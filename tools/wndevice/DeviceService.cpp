#include "tools/wndevice/DeviceService.h"

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace wndevice {
namespace {

using httplib::ContentReader;

constexpr std::size_t kLongestDocument = std::size_t{64} << 20;  // bytes

// Hands the body to the sink in pieces and reads it to its end, whatever happens: an unread rest would be taken for
// the connection's next request. Without a length the library would read until the client closes the connection.
void ReadBody(const httplib::Request& request, const ContentReader& reader,
              const std::function<void(const char*, std::size_t)>& sink) {
    if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding")) {
        throw Refusal(411, "The request has no Content-Length");
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
    if (!whole) throw Refusal(400, "The body was cut off");
}

std::string ReadDocument(const httplib::Request& request, const ContentReader& reader) {
    std::string text;
    ReadBody(request, reader, [&](const char* bytes, std::size_t count) {
        if (count > kLongestDocument - text.size()) {
            throw Refusal(413, "The document is longer than " + std::to_string(kLongestDocument) + " bytes");
        }
        text.append(bytes, count);
    });
    return text;
}

void SkipBody(const httplib::Request& request, const ContentReader& reader) {
    try {
        ReadBody(request, reader, [](const char*, std::size_t) {});
    } catch (const Refusal&) {
        // Nothing was wanted of it.
    }
}

DeviceRequest RequestOf(const httplib::Request& request) {
    DeviceRequest result;
    if (request.matches.size() > 1) result.target = request.matches[1];
    result.session = request.get_header_value("Session-Id");
    result.requestId = request.get_header_value("Request-Id");
    result.failureDetails = request.get_header_value("Failure-Details") == "yes";
    return result;
}

}  // namespace

DeviceService::DeviceService(std::string name, const std::filesystem::path& store, Faults& faults, bool quiet)
    : m_device(std::move(name), store), m_faults(faults) {
    if (!quiet) {
        m_server.set_logger([](const Request& request, const Response& answer) {
            std::fprintf(stderr, "port %d: %s %s %d\n", request.remote_port, request.method.c_str(),
                         request.path.c_str(), answer.status);
        });
    }
    AddRoutes();
}

std::string DeviceService::Bind(int port) {
    const std::string address = m_server.Bind(port);
    m_device.SetAddress(address);
    return address;
}

void DeviceService::Stop() {
    m_device.Close();
    m_faults.EndWaits();
    m_server.Stop();
}

void DeviceService::AddRoutes() {
    constexpr Caller anyone = Caller::Anyone;
    constexpr Caller inSession = Caller::InSession;
    AddOperation("POST", "/sessions", "session", &Device::StartSession, anyone);
    AddOperation("DELETE", "/sessions/([^/]+)", "end", &Device::EndSession, anyone);
    AddDocument("/capabilities", "capabilities", &Device::Capabilities, inSession);
    AddDocument("/jobs", "submit", &Device::Submit, inSession);
    AddOperation("GET", "/jobs/([^/]+)", "job", &Device::ShowJob, anyone);
    AddDocument("/device-data/read", "read", &Device::ReadData, inSession);
    AddDocument("/device-data/write", "write", &Device::WriteData, inSession);
    AddOperation("GET", "/events", "events", &Device::ListEvents, anyone);
    AddOperation("GET", "/events/([^/]+)", "properties", &Device::ListProperties, anyone);
    AddOperation("GET", "/event-capabilities", "event-capabilities", &Device::DescribeEvents, inSession);
    AddDocument("/subscriptions", "subscribe", &Device::Subscribe, anyone);
    AddDocument("/subscription-tickets", "subscribe-ticket", &Device::SubscribeTicket, inSession);
    AddDocument("/subscriptions/([^/]+)", "renew", &Device::Renew, anyone);
    AddOperation("DELETE", "/subscriptions/([^/]+)", "cancel", &Device::Cancel, anyone);
    const auto data = [this](const Request& request, Response& answer, const ContentReader& reader) {
        TakeData(request, answer, reader);
    };
    m_server.Post("/jobs/([^/]+)/data", data);
    m_server.Put("/jobs/([^/]+)/data", data);
    // Everything else that has a body, lest the library keep it in memory.
    const auto unknown = [](const Request& request, Response& answer, const ContentReader& reader) {
        SkipBody(request, reader);
        Tell(answer, 404, "Nothing is served here");
    };
    m_server.Post(".*", unknown);
    m_server.Put(".*", unknown);
    m_server.Patch(".*", unknown);
    m_server.Delete(".*", unknown);
}

void DeviceService::AddOperation(const char* method, const char* pattern, const char* name, Operation operation,
                                 Caller caller) {
    const auto serve = [=, this](const Request& request, Response& answer) {
        Serve(name, request, answer, [&] {
            const DeviceRequest call = RequestOf(request);
            if (caller == Caller::InSession) m_device.RequireSession(call);
            return (m_device.*operation)(call);
        });
    };
    if (std::string_view(method) == "GET") {
        m_server.Get(pattern, serve);
        return;
    }
    const auto skipAndServe = [=](const Request& request, Response& answer, const ContentReader& reader) {
        SkipBody(request, reader);
        serve(request, answer);
    };
    std::string_view(method) == "POST" ? m_server.Post(pattern, skipAndServe)
                                       : m_server.Delete(pattern, skipAndServe);
}

void DeviceService::AddDocument(const char* pattern, const char* name, Operation operation, Caller caller) {
    m_server.Post(pattern, [=, this](const Request& request, Response& answer, const ContentReader& reader) {
        DeviceRequest call = RequestOf(request);
        bool read = false;
        Serve(name, request, answer, [&] {
            read = true;
            call.text = ReadDocument(request, reader);
            if (caller == Caller::InSession) m_device.RequireSession(call);
            call.document = ParseXml(call.text);
            return (m_device.*operation)(call);
        });
        if (!read) SkipBody(request, reader);  // a fault stood in for the work
    });
}

void DeviceService::Serve(const char* name, const Request& request, Response& answer,
                          const std::function<DeviceAnswer()>& work) {
    try {
        if (m_faults.Before(name, answer)) return;
        if (m_faults.Closes(name)) return m_server.EndConnection(request.remote_port);
        DeviceAnswer result = work();
        answer.status = result.status;
        answer.set_content(std::move(result.body),
                           result.isXml ? "application/xml; charset=utf-8" : "text/plain; charset=utf-8");
        if (!result.location.empty()) answer.set_header("Location", result.location);
        m_faults.After(name, answer);
        if (m_faults.LosesAnswer(name)) m_server.EndConnection(request.remote_port);
    } catch (const Refusal& refusal) {
        Tell(answer, refusal.Status(), refusal.what());
    } catch (const std::invalid_argument& fault) {
        Tell(answer, 422, fault.what());
    } catch (const std::exception& failure) {
        Tell(answer, 500, failure.what());
    }
}

void DeviceService::TakeData(const Request& request, Response& answer, const ContentReader& reader) {
    bool read = false;
    Serve("data", request, answer, [&] {
        const std::string jobId = request.matches[1];
        JobStore::Delivery delivery = m_device.Deliver(jobId);
        read = true;
        ReadBody(request, reader, [&](const char* bytes, std::size_t count) { delivery.Write(bytes, count); });
        return m_device.FinishDelivery(jobId, delivery);
    });
    if (!read) SkipBody(request, reader);
}

}  // namespace wndevice
