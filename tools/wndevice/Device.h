// The device: what it keeps and what it answers, whatever carries the requests.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>

#include "tools/wndevice/DeviceData.h"
#include "tools/wndevice/JobStore.h"
#include "tools/wndevice/RecentTable.h"
#include "tools/wndevice/events/SubscriptionTable.h"
#include "tools/wndevice/xml/Xml.h"

namespace wndevice {

// A request that is refused, with the status that says so.
class Refusal : public std::runtime_error {
public:
    Refusal(int status, const std::string& sentence) : std::runtime_error(sentence), m_status(status) {}
    int Status() const noexcept { return m_status; }

private:
    int m_status;
};

struct DeviceRequest {
    std::string target;  // the id or the name that the path holds
    std::string session;
    std::string requestId;
    bool failureDetails = false;
    std::string text;      // the document as it came
    XmlDocument document;  // null for a request without one
};

struct DeviceAnswer {
    int status = 200;
    std::string body;
    bool isXml = false;
    std::string location;  // of what was made
};

// Any thread may call. Operations throw Refusal, std::invalid_argument for what the request holds, and any other
// exception when the device itself fails.
class Device {
public:
    // Throws when the store cannot be used.
    Device(std::string name, const std::filesystem::path& store);

    // The address that clients reach it at; set before the first request.
    void SetAddress(const std::string& address) { m_address = address; }
    // Ends what takes time.
    void Close() noexcept { m_data.Close(); }

    // Refuses a request that belongs to no open session.
    void RequireSession(const DeviceRequest& request);

    DeviceAnswer StartSession(const DeviceRequest& request);
    DeviceAnswer EndSession(const DeviceRequest& request);
    DeviceAnswer Capabilities(const DeviceRequest& request);
    DeviceAnswer Submit(const DeviceRequest& request);
    DeviceAnswer ShowJob(const DeviceRequest& request);
    DeviceAnswer ReadData(const DeviceRequest& request);
    DeviceAnswer WriteData(const DeviceRequest& request);
    DeviceAnswer ListEvents(const DeviceRequest& request);
    DeviceAnswer ListProperties(const DeviceRequest& request);
    DeviceAnswer DescribeEvents(const DeviceRequest& request);
    DeviceAnswer Subscribe(const DeviceRequest& request);
    DeviceAnswer SubscribeTicket(const DeviceRequest& request);
    DeviceAnswer Renew(const DeviceRequest& request);
    DeviceAnswer Cancel(const DeviceRequest& request);

    // The delivery of a job's data; then its end.
    JobStore::Delivery Deliver(const std::string& jobId) const;
    DeviceAnswer FinishDelivery(const std::string& jobId, JobStore::Delivery& delivery);

private:
    using Clock = std::chrono::steady_clock;
    // What requests have made, by their ids: a client whose connection broke sends the same request again.
    struct Made {
        std::mutex lock;
        RecentTable<std::string> ids{10'000};
    };

    // What the request made the first time, or else makes now; a request without an id always makes.
    static std::string Once(Made& made, const std::string& requestId, const std::function<std::string()>& make);
    std::string JobAddress(const std::string& jobId) const { return m_address + "/jobs/" + jobId; }
    std::string AddSubscription(const DeviceRequest& request, const Subscription& subscription);
    // So many more jobs, and so many more that have their data.
    void CountJobs(std::size_t accepted, std::size_t complete);

    std::string m_name;
    std::string m_address;
    JobStore m_jobs;
    DeviceData m_data;
    std::mutex m_countLock;
    JobStore::Counts m_counts;
    std::mutex m_sessionLock;
    RecentTable<Clock::time_point> m_sessions;  // with their last use
    SubscriptionTable m_subscriptions;
    Made m_submitted;   // job ids
    Made m_subscribed;  // subscription ids
};

}  // namespace wndevice
