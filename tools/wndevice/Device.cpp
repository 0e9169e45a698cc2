#include "tools/wndevice/Device.h"

#include <set>
#include <utility>

#include "tools/wndevice/RandomId.h"
#include "tools/wndevice/events/Events.h"
#include "tools/wndevice/events/Subscription.h"
#include "tools/wndevice/xml/Documents.h"

namespace wndevice {
namespace {

constexpr std::size_t kMostSessions = 10'000;
constexpr std::chrono::hours kLongestIdle{1};

DeviceAnswer Sentence(const char* text) { return {200, std::string(text) + "\n", false, {}}; }
DeviceAnswer Document(const std::string& text) { return {200, text, true, {}}; }

// One name a line.
DeviceAnswer Names(const std::set<std::string>& names) {
    DeviceAnswer answer;
    for (const std::string& name : names) answer.body.append(name).append("\n");
    return answer;
}

[[noreturn]] void RefuseJob() { throw Refusal(404, "There is no such job"); }
[[noreturn]] void RefuseSubscription() { throw Refusal(404, "There is no such subscription"); }

}  // namespace

Device::Device(std::string name, const std::filesystem::path& store)
    : m_name(std::move(name)), m_jobs(store), m_data(store), m_sessions(kMostSessions) {
    const JobStore::Counts counts = m_jobs.Count();
    CountJobs(counts.accepted, counts.complete);
}

void Device::RequireSession(const DeviceRequest& request) {
    const std::lock_guard guard(m_sessionLock);
    Clock::time_point* const lastUse = m_sessions.Touch(request.session);
    if (!lastUse || *lastUse < Clock::now() - kLongestIdle) {
        throw Refusal(403, "The request belongs to no open session");
    }
    *lastUse = Clock::now();
}

DeviceAnswer Device::StartSession(const DeviceRequest& request) {
    const std::string id = NewId();
    const std::lock_guard guard(m_sessionLock);
    m_sessions.Remove(request.session);
    m_sessions.Add(id, Clock::now());
    return {201, id, false, m_address + "/sessions/" + id};
}

DeviceAnswer Device::EndSession(const DeviceRequest& request) {
    const std::lock_guard guard(m_sessionLock);
    if (!m_sessions.Remove(request.target)) throw Refusal(403, "There is no such session");
    return Sentence("The session has ended");
}

DeviceAnswer Device::Capabilities(const DeviceRequest& request) {
    return Document(CapabilitiesTicket(m_name, WorkflowOfRequest(*request.document)));
}

DeviceAnswer Device::Submit(const DeviceRequest& request) {
    const std::string jobId = Once(m_submitted, request.requestId, [&] {
        const std::string id = m_jobs.Add(request.text);
        CountJobs(1, 0);
        Event event{"jobAccepted", {{"jobId", id}, {"jobUri", JobAddress(id)}}};
        const std::string name = JobNameOf(*request.document);
        if (!name.empty()) event.properties.emplace_back("jobName", name);
        m_subscriptions.Publish(event);
        return id;
    });
    const std::string address = JobAddress(jobId);
    return {201, ResponseTicket(jobId, address + "/data", address), true, address};
}

DeviceAnswer Device::ShowJob(const DeviceRequest& request) {
    if (!m_jobs.Has(request.target)) RefuseJob();
    return Document(JobState(request.target, m_jobs.DataBytes(request.target)));
}

JobStore::Delivery Device::Deliver(const std::string& jobId) const {
    if (!m_jobs.Has(jobId)) RefuseJob();
    return JobStore::Delivery(m_jobs, jobId);
}

DeviceAnswer Device::FinishDelivery(const std::string& jobId, JobStore::Delivery& delivery) {
    if (!delivery.Finish()) throw Refusal(409, "The job has its data already");
    CountJobs(0, 1);
    m_subscriptions.Publish({"jobDataReceived",
                             {{"jobId", jobId},
                              {"jobUri", JobAddress(jobId)},
                              {"dataBytes", std::to_string(m_jobs.DataBytes(jobId).value_or(0))}}});
    return Sentence("The job has its data");
}

DeviceAnswer Device::ReadData(const DeviceRequest& request) {
    const auto result = m_data.Read(ParseDataRequest(*request.document));
    if (!result) throw Refusal(404, "The path selects nothing");
    return Document(*result);
}

DeviceAnswer Device::WriteData(const DeviceRequest& request) {
    const SetDocument document = ParseSetDocument(*request.document);
    const std::vector<SetFailure> failures = m_data.Write(document);
    if (failures.empty()) {
        for (const DataChange& change : document.changes) {
            m_subscriptions.Publish({"deviceDataChanged", {{"path", change.path}, {"value", change.value}}});
        }
        return Sentence("The values are set");
    }
    if (request.failureDetails) return {422, FailureDetails(failures), true, {}};
    throw Refusal(422, "No value is set: " + std::to_string(failures.size()) + " of " +
                           std::to_string(document.changes.size()) + " cannot be set");
}

DeviceAnswer Device::ListEvents(const DeviceRequest&) {
    std::set<std::string> names;
    for (const EventKind& kind : EventKinds()) names.insert(kind.name);
    return Names(names);
}

DeviceAnswer Device::ListProperties(const DeviceRequest& request) {
    std::set<std::string> names;
    for (const EventKind& kind : EventKinds()) {
        if (request.target == "all" || request.target == kind.name) {
            names.insert(kind.properties.begin(), kind.properties.end());
        }
    }
    if (names.empty()) throw Refusal(404, "There is no such event");
    return Names(names);
}

DeviceAnswer Device::DescribeEvents(const DeviceRequest&) { return Document(EventCapabilities()); }

DeviceAnswer Device::Subscribe(const DeviceRequest& request) {
    const std::string id = AddSubscription(request, ParseSubscriptionParts(*request.document));
    return {201, id, false, m_address + "/subscriptions/" + id};
}

DeviceAnswer Device::SubscribeTicket(const DeviceRequest& request) {
    const Subscription subscription = ParseSubscriptionTicket(*request.document);
    const std::string id = AddSubscription(request, subscription);
    return {201, SubscriptionResult(id, subscription.duration), true, m_address + "/subscriptions/" + id};
}

DeviceAnswer Device::Renew(const DeviceRequest& request) {
    if (!m_subscriptions.Renew(request.target, ParseRenewal(*request.document))) RefuseSubscription();
    return Sentence("The subscription is renewed");
}

DeviceAnswer Device::Cancel(const DeviceRequest& request) {
    if (!m_subscriptions.Cancel(request.target)) RefuseSubscription();
    return Sentence("The subscription is cancelled");
}

std::string Device::Once(Made& made, const std::string& requestId, const std::function<std::string()>& make) {
    if (requestId.empty()) return make();
    if (!IsId(requestId)) throw std::invalid_argument("The request id is not 32 hexadecimal digits");
    // Held while it is made: a repeated request that overtakes its first must not make a second thing.
    const std::lock_guard guard(made.lock);
    if (const std::string* const id = made.ids.Touch(requestId)) return *id;
    const std::string id = make();
    made.ids.Add(requestId, id);
    return id;
}

std::string Device::AddSubscription(const DeviceRequest& request, const Subscription& subscription) {
    return Once(m_subscribed, request.requestId, [&] {
        const std::string id = m_subscriptions.Add(subscription);
        if (id.empty()) throw Refusal(503, "The device keeps no more subscriptions");
        return id;
    });
}

void Device::CountJobs(std::size_t accepted, std::size_t complete) {
    const std::lock_guard guard(m_countLock);
    m_counts.accepted += accepted;
    m_counts.complete += complete;
    m_data.SetCounter("jobsAccepted", m_counts.accepted);
    m_data.SetCounter("jobsComplete", m_counts.complete);
}

}  // namespace wndevice
