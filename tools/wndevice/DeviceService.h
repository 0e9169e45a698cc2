// The device service: its addresses and what it answers there.
#pragma once

#include <httplib.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "tools/wndevice/Faults.h"
#include "tools/wndevice/JobStore.h"
#include "tools/wndevice/SessionTable.h"

namespace wndevice {

// Serves the protocol of docs/device-protocol.md on loopback. Made, bound and run once, in that order; Stop may come
// from any thread once Run was called or is about to be.
class DeviceService {
public:
    // One line per request goes to standard error unless quiet. The faults must outlive the service. Throws when the
    // store cannot be used.
    DeviceService(std::string name, const std::filesystem::path& store, Faults& faults, bool quiet);

    // Takes a port of 127.0.0.1, any free one for 0. Clients may connect from now on; Run answers them. Throws
    // std::runtime_error when the port is not to be had.
    void Bind(int port);
    // The service address, without a trailing slash.
    const std::string& Address() const { return m_address; }
    // Serves until Stop; requests that are being answered then still get their answers, uploads are cut off.
    void Run();
    void Stop();

private:
    using Work = std::function<void(const httplib::Request&, httplib::Response&)>;

    void AddRoutes();
    void AddLog();
    // One operation with its faults; a failure of the work is answered with 500.
    void Serve(const char* operation, const httplib::Request& request, httplib::Response& answer, const Work& work);
    // An operation that takes an XML document inside a session; the work gets it in the request's body.
    void ServeDocument(const char* operation, const httplib::Request& request, httplib::Response& answer,
                       const httplib::ContentReader& reader, const Work& work);

    void StartSession(const httplib::Request& request, httplib::Response& answer);
    void EndSession(const httplib::Request& request, httplib::Response& answer);
    void Capabilities(const httplib::Request& request, httplib::Response& answer) const;
    void Submit(const httplib::Request& request, httplib::Response& answer);
    void TakeData(const httplib::Request& request, httplib::Response& answer, const httplib::ContentReader& reader);
    void ShowJob(const httplib::Request& request, httplib::Response& answer) const;

    std::string m_name;
    std::string m_address;
    JobStore m_jobs;
    SessionTable m_sessions;
    Faults& m_faults;
    std::mutex m_submitLock;
    std::map<std::string, std::string> m_submitted;  // request id to job id
    std::atomic<bool> m_ended = false;
    httplib::Server m_server;
};

}  // namespace wndevice
