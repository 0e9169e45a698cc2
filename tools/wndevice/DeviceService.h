// The device over HTTP.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "tools/wndevice/Device.h"
#include "tools/wndevice/server/Faults.h"
#include "tools/wndevice/server/HttpServer.h"

namespace wndevice {

// Serves the protocol of docs/device-protocol.md on loopback. Made, bound and run once, in that order; Stop may come
// from any thread once Run was called or is about to be.
class DeviceService {
public:
    // One line per request goes to standard error unless quiet. The faults must outlive the service. Throws when the
    // store cannot be used.
    DeviceService(std::string name, const std::filesystem::path& store, Faults& faults, bool quiet);

    // Takes a port of 127.0.0.1, any free one for 0, and gives the service address, without a trailing slash. Clients
    // may connect from now on; Run answers them. Throws std::runtime_error when the port is in use.
    std::string Bind(int port);
    // Serves until Stop; requests that are being answered then still get their answers, uploads are cut off.
    void Run() { m_server.Run(); }
    void Stop();
    bool HasEnded() const noexcept { return m_server.HasEnded(); }

private:
    using Request = httplib::Request;
    using Response = httplib::Response;
    using Operation = DeviceAnswer (Device::*)(const DeviceRequest&);
    enum class Caller { Anyone, InSession };

    void AddRoutes();
    void AddOperation(const char* method, const char* pattern, const char* name, Operation operation, Caller caller);
    // An operation that takes an XML document.
    void AddDocument(const char* pattern, const char* name, Operation operation, Caller caller);
    // One operation with its faults. Work that throws std::invalid_argument refuses what the request holds (422);
    // any other failure is the device's own (500).
    void Serve(const char* name, const Request& request, Response& answer, const std::function<DeviceAnswer()>& work);
    void TakeData(const Request& request, Response& answer, const httplib::ContentReader& reader);

    Device m_device;
    Faults& m_faults;
    HttpServer m_server;
};

}  // namespace wndevice
