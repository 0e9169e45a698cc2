// The device service: its addresses and what it answers there.
#pragma once

#include <httplib.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>

#include "tools/wndevice/DeviceData.h"
#include "tools/wndevice/Faults.h"
#include "tools/wndevice/JobStore.h"
#include "tools/wndevice/RequestMemory.h"
#include "tools/wndevice/SessionTable.h"
#include "tools/wndevice/SubscriptionTable.h"

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
    void AddDataRoutes();
    void AddEventRoutes();
    void AddLog();
    // One operation with its faults. Work that throws std::invalid_argument refuses what the request holds (422);
    // any other failure is the device's own (500).
    void Serve(const char* operation, const httplib::Request& request, httplib::Response& answer, const Work& work);
    // An operation that takes an XML document, in a session or by anyone; the work gets it in the request's body.
    enum class Caller { Anyone, InSession };
    httplib::Server::HandlerWithContentReader ServeDocument(const char* operation, Caller caller, Work work);
    // Whether the request belongs to an open session; refuses it otherwise.
    bool IsInSession(const httplib::Request& request, httplib::Response& answer);

    void StartSession(const httplib::Request& request, httplib::Response& answer);
    void EndSession(const httplib::Request& request, httplib::Response& answer);
    void Capabilities(const httplib::Request& request, httplib::Response& answer) const;
    void Submit(const httplib::Request& request, httplib::Response& answer);
    void TakeData(const httplib::Request& request, httplib::Response& answer, const httplib::ContentReader& reader);
    void ShowJob(const httplib::Request& request, httplib::Response& answer) const;

    // So many more jobs, and so many more that have their data.
    void CountJobs(std::size_t accepted, std::size_t complete);

    void ReadData(const httplib::Request& request, httplib::Response& answer) const;
    void WriteData(const httplib::Request& request, httplib::Response& answer);

    void ListProperties(const httplib::Request& request, httplib::Response& answer) const;
    // The new subscription's id; empty when there are too many.
    std::string AddSubscription(const httplib::Request& request, const Subscription& subscription);
    void Subscribe(const httplib::Request& request, httplib::Response& answer);
    void SubscribeTicket(const httplib::Request& request, httplib::Response& answer);
    void Renew(const httplib::Request& request, httplib::Response& answer);
    void Cancel(const httplib::Request& request, httplib::Response& answer);

    std::string m_name;
    std::string m_address;
    JobStore m_jobs;
    DeviceData m_data;
    std::mutex m_countLock;
    JobStore::Counts m_counts;
    SessionTable m_sessions;
    SubscriptionTable m_subscriptions;
    Faults& m_faults;
    RequestMemory m_submitted;   // gives job ids
    RequestMemory m_subscribed;  // gives subscription ids
    std::atomic<bool> m_ended = false;
    httplib::Server m_server;
};

}  // namespace wndevice
