#include "samples/transport/SampleJobControl.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "samples/transport/Operation.h"
#include "samples/transport/Texts.h"
#include "wncom/RemoteArray.h"

namespace sample {

using wncom::CString;
using wncom::RemoteArray;

namespace {

CString Document(const std::string& element) {
    return CString("<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + element);
}

// The list is made with new and its elements with new[], for the agent deletes it and it deletes them: library and
// agent share one allocator.
RemoteArray* NewList(const std::vector<std::string>& names) {
    auto list = std::make_unique<RemoteArray>();
    auto elements = std::make_unique<CString[]>(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) elements[i] = CString(names[i]);
    list->Init(elements.release(), static_cast<LONG>(names.size()));
    return list.release();
}

}  // namespace

template <class Body>
auto SampleJobControl::OnDevice(const char* operation, bool inSession, BSTR* exceptionSlot, Body body) {
    return Answered(operation, exceptionSlot, [&] {
        if (!m_device) throw std::runtime_error("There is no connection to a device");
        const std::lock_guard guard(m_device->lock);
        if (inSession) m_device->RequireSession();
        return body(*m_device);
    });
}

// The logger is this library's own copy and needs a start of its own. The registry value "wnSampleTransport"
// configures it, else the default value that also configures the agent.
SampleJobControl::SampleJobControl() { m_logging.Start("wnSampleTransport"); }

// An address that cannot be used leaves an object that answers nothing: the agent keeps it and goes on calling.
void SampleJobControl::Initialize(CString serviceUri, wncom::CPComPtr<IUnknown>) {
    Answered("Initialize", nullptr, [&] {
        m_device = &DeviceAt(serviceUri);
        wncom::Log(3, "SampleJobControl::connected to %s\n", serviceUri);
    });
}

CString SampleJobControl::StartSession() {
    return OnDevice("StartSession", false, nullptr, [](Device& device) { return CString(device.StartSession()); });
}

void SampleJobControl::EndSession() {
    OnDevice("EndSession", true, nullptr, [](Device& device) { device.sessions.erase(GetCurrentThreadId()); });
}

CString SampleJobControl::GetWorkflowCapabilities(CString, int) {
    return OnDevice("GetWorkflowCapabilities", true, nullptr, [](Device&) {
        return Document(Element("capabilities", Element("deviceName", "Sample device")));
    });
}

CString SampleJobControl::SubmitJob(CString intentTicket, int) {
    return OnDevice("SubmitJob", true, nullptr, [&](Device& device) {
        if (intentTicket.empty()) throw std::runtime_error("The ticket is empty");
        const std::string job = device.address + "/jobs/" + std::to_string(++device.jobs);
        // The agent looks for the words PostURI (or sinkURI) and JobUri in the text and takes the contents of their
        // elements, so neither word may appear before its element.
        return Document(Element("submitResponse", Element("PostURI", job + "/data") + Element("JobUri", job)));
    });
}

CString SampleJobControl::GetData(CString xdmPath, CString, BSTR* exceptionSlot, int) {
    return OnDevice("GetData", true, exceptionSlot, [&](Device& device) {
        const std::string wanted(xdmPath);
        std::string values;
        for (const auto& [path, text] : device.values) {
            if (path != wanted && !path.starts_with(wanted + "/")) continue;
            values += "<value path=\"" + path + "\">" + AsciiXml(text) + "</value>";
        }
        if (values.empty()) throw std::runtime_error("There is no value at " + wanted);
        return Document(Element("deviceData", values));
    });
}

// The text reaches the client only beside true, so it serves to report what could not be set when the rest was.
bool SampleJobControl::SetData(CString xdmSetDocument, bool failureDetails, WCHAR** textSlot, int) {
    return OnDevice("SetData", true, nullptr, [&](Device& device) {
        const auto before = device.values;
        std::string failures;
        for (const std::string_view set : Elements(xdmSetDocument, "set")) {
            const std::string path(FirstElement(set, "path"));
            const std::string reason = device.Set(path, FirstElement(set, "value"));
            if (reason.empty()) continue;
            failures += Element("failure", Element("path", AsciiXml(path)) + Element("reason", reason));
        }
        if (!failures.empty() && !failureDetails) {
            device.values = before;
            throw std::runtime_error("Some values cannot be set, so none was");
        }
        if (!failures.empty() && textSlot) *textSlot = MallocText(Element("setFailures", failures));
        return true;
    });
}

RemoteArray* SampleJobControl::GetSupportedEvents() {
    return OnDevice("GetSupportedEvents", false, nullptr, [](Device&) { return NewList(EventNames()); });
}

RemoteArray* SampleJobControl::GetEventProperties(CString eventName) {
    return OnDevice("GetEventProperties", false, nullptr, [&](Device&) { return NewList(PropertyNames(eventName)); });
}

CString SampleJobControl::GetEventCapabilities(BSTR* exceptionSlot) {
    return OnDevice("GetEventCapabilities", true, exceptionSlot, [](Device&) {
        std::string events;
        for (const std::string& name : EventNames()) events += Element("EventName", name);
        return Document(Element("EventCapabilities", events));
    });
}

// These three texts come in the narrow code page, not in UTF-8; this device looks at their ASCII only.
CString SampleJobControl::Subscribe(CString subscriptionInfo, CString, CString consumerInterface) {
    return OnDevice("Subscribe", false, nullptr, [&](Device& device) {
        for (const std::string_view event : Elements(subscriptionInfo, "EventName")) PropertyNames(event);
        return CString(device.Subscribe(consumerInterface, ""));
    });
}

CString SampleJobControl::SubscribeForEvents(CString subscriptionTicket, BSTR* exceptionSlot) {
    return OnDevice("SubscribeForEvents", true, exceptionSlot, [&](Device& device) {
        const std::string_view duration = FirstElement(subscriptionTicket, "Duration");
        const std::string id = device.Subscribe(FirstElement(subscriptionTicket, "ConsumerInterface"), duration);
        return Document(Element("SubscriptionResult", Element("SubscriptionID", id) +
                                                          Element("Duration", std::to_string(Seconds(duration)))));
    });
}

bool SampleJobControl::Resubscribe(CString subscriptionId, CString duration, BSTR* exceptionSlot) {
    return OnDevice("Resubscribe", true, exceptionSlot, [&](Device& device) {
        device.RequireSubscription(subscriptionId.c_str());
        return Seconds(duration) > 0;
    });
}

bool SampleJobControl::UnsubscribeForEvents(CString subscriptionId, BSTR* exceptionSlot) {
    return OnDevice("UnsubscribeForEvents", true, exceptionSlot, [&](Device& device) {
        device.RequireSubscription(subscriptionId.c_str());
        return device.subscriptions.erase(subscriptionId.c_str()) == 1;
    });
}

void SampleJobControl::Unsubscribe(CString subscriptionId) {
    UnsubscribeForEvents(std::move(subscriptionId), nullptr);
}

}  // namespace sample
