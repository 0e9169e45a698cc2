// The remote job-control object of the sample device.
#pragma once

#include "samples/transport/Device.h"
#include "wncom/Logging.h"
#include "wncom/RmtJobControl.h"

namespace sample {

// One connection to a device. The agent makes a new one whenever it connects, which is before each session start and
// end: what has to last lives in the device.
class SampleJobControl final : public wncom::RmtJobControl {
public:
    SampleJobControl();

    wncom::CString GetWorkflowCapabilities(wncom::CString request, int flag) override;
    wncom::CString SubmitJob(wncom::CString intentTicket, int flag) override;
    void Reserved2() override {}
    void Reserved3() override {}
    void Reserved4() override {}
    void SetSessionID(wncom::CString) override {}  // the device knows the thread's session
    wncom::CString StartSession() override;
    void EndSession() override;
    wncom::CString Subscribe(wncom::CString subscriptionInfo, wncom::CString filterProperties,
                             wncom::CString consumerInterface) override;
    void Unsubscribe(wncom::CString subscriptionId) override;
    wncom::RemoteArray* GetSupportedEvents() override;
    wncom::RemoteArray* GetEventProperties(wncom::CString eventName) override;
    void Initialize(wncom::CString serviceUri, wncom::CPComPtr<IUnknown> none) override;
    wncom::CString GetData(wncom::CString xdmPath, wncom::CString xdmPrefixes, BSTR* exceptionSlot,
                           int flag) override;
    bool SetData(wncom::CString xdmSetDocument, bool failureDetails, WCHAR** textSlot, int flag) override;
    wncom::CString GetEventCapabilities(BSTR* exceptionSlot) override;
    wncom::CString SubscribeForEvents(wncom::CString subscriptionTicket, BSTR* exceptionSlot) override;
    bool Resubscribe(wncom::CString subscriptionId, wncom::CString duration, BSTR* exceptionSlot) override;
    bool UnsubscribeForEvents(wncom::CString subscriptionId, BSTR* exceptionSlot) override;

private:
    // Runs an operation on the device, with its lock held and, where it needs one, in a session.
    template <class Body>
    auto OnDevice(const char* operation, bool inSession, BSTR* exceptionSlot, Body body);

    wncom::LogReference m_logging;
    Device* m_device = nullptr;  // null until Initialize succeeds; the device outlives this object
};

}  // namespace sample
