#include "samples/transport/Device.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "samples/transport/Texts.h"
#include "wncom/Logging.h"

namespace sample {
namespace {

constexpr std::string_view kScheme = "sample://";
constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

bool IsAddress(std::string_view address) {
    return address.size() > kScheme.size() && address.starts_with(kScheme) &&
           std::all_of(address.begin(), address.end(), [](char c) {
               return c > ' ' && c < 0x7F && std::string_view("<>&\"'").find(c) == std::string_view::npos;
           });
}

}  // namespace

Device::Device(std::string address) : m_address(std::move(address)) {}

std::string Device::StartSession() {
    const std::lock_guard guard(m_lock);
    std::string& session = m_sessions[GetCurrentThreadId()];
    session = "session-" + std::to_string(++m_sessionsStarted);
    return session;
}

void Device::EndSession() {
    const std::lock_guard guard(m_lock);
    if (m_sessions.erase(GetCurrentThreadId()) == 0) throw std::runtime_error("There is no session");
}

std::string Device::Capabilities() const {
    const std::lock_guard guard(m_lock);
    RequireSession();
    std::string events;
    for (const std::string& name : EventNames()) events += Element("event", name);
    return kDeclaration + Element("capabilities", Element("deviceName", "Sample device") +
                                                      Element("dataDelivery", "post") + Element("events", events));
}

std::string Device::SubmitJob(std::string_view intentTicket) {
    const std::lock_guard guard(m_lock);
    RequireSession();
    if (intentTicket.empty()) throw std::runtime_error("The ticket is empty");
    m_data.SetJobs(++m_jobs);
    const std::string job = m_address + "/jobs/" + std::to_string(m_jobs);
    wncom::Log(3, "SampleDevice: %s from a ticket of %u bytes\n", job.c_str(), intentTicket.size());
    // The agent looks for the words PostURI (or sinkURI) and JobUri in the text and takes the contents of their
    // elements, so neither word may appear before its element.
    return kDeclaration + Element("submitResponse", Element("PostURI", job + "/data") + Element("JobUri", job));
}

std::string Device::Read(std::string_view path) const {
    const std::lock_guard guard(m_lock);
    RequireSession();
    return kDeclaration + m_data.Read(path);
}

std::string Device::Write(std::string_view setDocument, bool partly) {
    const std::lock_guard guard(m_lock);
    RequireSession();
    std::string failures;
    for (const auto& [path, reason] : m_data.Write(setDocument, partly)) {
        wncom::Log(2, "SampleDevice: %s was not set: %s\n", path.c_str(), reason.c_str());
        failures += Element("failure", Element("path", AsciiXml(path)) + Element("reason", reason));
    }
    if (failures.empty()) return {};
    if (!partly) throw std::runtime_error("Some values cannot be set, so none was");
    return kDeclaration + Element("setFailures", failures);
}

std::string Device::EventCapabilities() const {
    const std::lock_guard guard(m_lock);
    RequireSession();
    std::string events;
    for (const std::string& event : EventNames()) {
        std::string names = Element("EventName", event);
        for (const std::string& property : PropertyNames(event)) names += Element("Name", property);
        events += Element("Event", names);
    }
    return kDeclaration + Element("EventCapabilities", events);
}

std::string Device::SubscribeByTicket(std::string_view ticket) {
    const std::lock_guard guard(m_lock);
    RequireSession();
    const Subscriptions::Made made = m_subscriptions.Add(ticket, FirstElement(ticket, "ConsumerInterface"));
    return kDeclaration + Element("SubscriptionResult", Element("SubscriptionID", made.id) +
                                                            Element("Duration", std::to_string(made.duration)));
}

std::string Device::Subscribe(std::string_view info, std::string_view consumer) {
    const std::lock_guard guard(m_lock);
    return m_subscriptions.Add(info, consumer).id;
}

void Device::Renew(const std::string& subscription, std::string_view duration) {
    const std::lock_guard guard(m_lock);
    m_subscriptions.Renew(subscription, duration);
}

void Device::Unsubscribe(const std::string& subscription) {
    const std::lock_guard guard(m_lock);
    m_subscriptions.Remove(subscription);
}

void Device::RequireSession() const {
    if (!m_sessions.contains(GetCurrentThreadId())) throw std::runtime_error("There is no session");
}

Device& DeviceAt(std::string_view address) {
    static std::mutex lock;
    static std::map<std::string, Device, std::less<>> devices;
    if (!IsAddress(address)) throw std::invalid_argument("The address is not one of sample://");
    const std::lock_guard guard(lock);
    return devices.try_emplace(std::string(address), std::string(address)).first->second;
}

}  // namespace sample
