#include "tools/wndevice/DeviceService.h"

#include <sys/socket.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "tools/wndevice/Connections.h"
#include "tools/wndevice/Documents.h"
#include "tools/wndevice/EventDocuments.h"
#include "tools/wndevice/RandomId.h"
#include "tools/wndevice/RequestBody.h"

namespace wndevice {
namespace {

using httplib::ContentReader;
using httplib::Request;
using httplib::Response;

constexpr const char* kHost = "127.0.0.1";
constexpr std::size_t kTicketLimit = std::size_t{64} << 20;  // bytes
// Each open connection holds a thread, whether it is in use or not.
constexpr std::size_t kConnections = 64;
constexpr int kSeconds = 30;  // of silence inside a request, and between two requests of a connection

}  // namespace

DeviceService::DeviceService(std::string name, const std::filesystem::path& store, Faults& faults, bool quiet)
    : m_name(std::move(name)), m_jobs(store), m_data(store), m_faults(faults) {
    const JobStore::Counts counts = m_jobs.Count();
    CountJobs(counts.accepted, counts.complete);
    m_server.new_task_queue = [] { return new httplib::ThreadPool(kConnections); };
    m_server.set_keep_alive_max_count(100000);
    m_server.set_keep_alive_timeout(kSeconds);
    m_server.set_read_timeout(kSeconds);
    m_server.set_write_timeout(kSeconds);
    m_server.set_tcp_nodelay(true);
    // By default the library lets two services share one port.
    m_server.set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
    if (!quiet) AddLog();
    AddRoutes();
}

void DeviceService::Bind(int port) {
    if (port == 0) {
        port = m_server.bind_to_any_port(kHost);
        if (port < 0) throw std::runtime_error("no free port on 127.0.0.1");
    } else if (!m_server.bind_to_port(kHost, port)) {
        throw std::runtime_error("port " + std::to_string(port) + " of 127.0.0.1 is not to be had");
    }
    m_address = std::string("http://") + kHost + ":" + std::to_string(port);
}

void DeviceService::Run() {
    m_server.listen_after_bind();
    m_ended = true;
}

void DeviceService::Stop() {
    // The library forgets a stop that comes before it serves.
    while (!m_server.is_running() && !m_ended) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    m_server.stop();
    m_faults.EndWaits();
    EndWaiting();
}

void DeviceService::AddLog() {
    m_server.set_logger([](const Request& request, const Response& answer) {
        std::fprintf(stderr, "port %d: %s %s %d\n", request.remote_port, request.method.c_str(), request.path.c_str(),
                     answer.status);
    });
}

void DeviceService::AddRoutes() {
    m_server.Post("/sessions", [this](const Request& request, Response& answer, const ContentReader& reader) {
        SkipBody(request, reader);
        Serve("session", request, answer, [this](const Request& r, Response& a) { StartSession(r, a); });
    });
    m_server.Delete("/sessions/([^/]+)",
                    [this](const Request& request, Response& answer, const ContentReader& reader) {
                        SkipBody(request, reader);
                        Serve("end", request, answer, [this](const Request& r, Response& a) { EndSession(r, a); });
                    });
    m_server.Post("/capabilities", ServeDocument("capabilities", Caller::InSession,
                                                 [this](const Request& r, Response& a) { Capabilities(r, a); }));
    m_server.Post(
        "/jobs", ServeDocument("submit", Caller::InSession, [this](const Request& r, Response& a) { Submit(r, a); }));
    const auto data = [this](const Request& request, Response& answer, const ContentReader& reader) {
        bool taken = false;
        Serve("data", request, answer, [&](const Request& r, Response& a) {
            taken = true;
            TakeData(r, a, reader);
        });
        if (!taken) SkipBody(request, reader);  // a fault stood in for the work
    };
    m_server.Post("/jobs/([^/]+)/data", data);
    m_server.Put("/jobs/([^/]+)/data", data);
    m_server.Get("/jobs/([^/]+)", [this](const Request& request, Response& answer) {
        Serve("job", request, answer, [this](const Request& r, Response& a) { ShowJob(r, a); });
    });
    AddDataRoutes();
    AddEventRoutes();
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

void DeviceService::Serve(const char* operation, const Request& request, Response& answer, const Work& work) {
    try {
        if (m_faults.Before(operation, request, answer)) return;
        work(request, answer);
        m_faults.After(operation, request, answer);
    } catch (const std::invalid_argument& fault) {
        Tell(answer, 422, fault.what());
    } catch (const std::exception& failure) {
        Tell(answer, 500, failure.what());
    }
}

httplib::Server::HandlerWithContentReader DeviceService::ServeDocument(const char* operation, Caller caller,
                                                                       Work work) {
    return [=, this](const Request& request, Response& answer, const ContentReader& reader) {
        std::string document;
        if (!ReadText(request, answer, reader, kTicketLimit, document)) return;
        Serve(operation, request, answer, [&](const Request&, Response&) {
            if (caller == Caller::InSession && !IsInSession(request, answer)) return;
            const std::string fault = FaultOfXml(document);
            if (!fault.empty()) throw std::invalid_argument("The document is not well-formed: " + fault);
            Request whole = request;
            whole.body = std::move(document);
            work(whole, answer);
        });
    };
}

bool DeviceService::IsInSession(const Request& request, Response& answer) {
    if (m_sessions.Use(request.get_header_value("Session-Id"))) return true;
    Tell(answer, 403, "The request belongs to no open session");
    return false;
}

void DeviceService::StartSession(const Request& request, Response& answer) {
    const std::string id = m_sessions.Start(request.get_header_value("Session-Id"));
    answer.status = 201;
    answer.set_header("Location", m_address + "/sessions/" + id);
    answer.set_content(id, "text/plain; charset=utf-8");
}

void DeviceService::EndSession(const Request& request, Response& answer) {
    if (!m_sessions.End(request.matches[1])) return Tell(answer, 403, "There is no such session");
    Tell(answer, 200, "The session has ended");
}

void DeviceService::Capabilities(const Request& request, Response& answer) const {
    const auto workflowId = WorkflowOfRequest(request.body);
    if (!workflowId) return Tell(answer, 422, "The document is no capabilities request");
    TellXml(answer, 200, CapabilitiesTicket(m_name, *workflowId));
}

void DeviceService::Submit(const Request& request, Response& answer) {
    const auto address = [this](const std::string& jobId) { return m_address + "/jobs/" + jobId; };
    const std::string jobId = m_submitted.Once(request.get_header_value("Request-Id"), [&] {
        const std::string id = m_jobs.Add(request.body);
        CountJobs(1, 0);
        Event event{"jobAccepted", {{"jobId", id}, {"jobUri", address(id)}}};
        const std::string name = JobNameOf(request.body);
        if (!name.empty()) event.properties.emplace_back("jobName", name);
        m_subscriptions.Publish(event);
        return id;
    });
    TellXml(answer, 201, ResponseTicket(jobId, address(jobId) + "/data", address(jobId)));
    answer.set_header("Location", address(jobId));
}

void DeviceService::TakeData(const Request& request, Response& answer, const ContentReader& reader) {
    const std::string jobId = request.matches[1];
    if (!m_jobs.Has(jobId)) {
        SkipBody(request, reader);
        return Tell(answer, 404, "There is no such job");
    }
    JobStore::Delivery delivery(m_jobs, jobId);
    const auto sink = [&](const char* bytes, std::size_t count) { delivery.Write(bytes, count); };
    if (!ReadBody(request, answer, reader, sink)) return;
    if (!delivery.Finish()) return Tell(answer, 409, "The job has its data already");
    CountJobs(0, 1);
    m_subscriptions.Publish({"jobDataReceived",
                             {{"jobId", jobId},
                              {"jobUri", m_address + "/jobs/" + jobId},
                              {"dataBytes", std::to_string(m_jobs.DataBytes(jobId).value_or(0))}}});
    Tell(answer, 200, "The job has its data");
}

void DeviceService::CountJobs(std::size_t accepted, std::size_t complete) {
    const std::lock_guard guard(m_countLock);
    m_counts.accepted += accepted;
    m_counts.complete += complete;
    m_data.SetCounter("jobsAccepted", m_counts.accepted);
    m_data.SetCounter("jobsComplete", m_counts.complete);
}

void DeviceService::ShowJob(const Request& request, Response& answer) const {
    const std::string jobId = request.matches[1];
    if (!m_jobs.Has(jobId)) return Tell(answer, 404, "There is no such job");
    TellXml(answer, 200, JobState(jobId, m_jobs.DataBytes(jobId)));
}

}  // namespace wndevice
