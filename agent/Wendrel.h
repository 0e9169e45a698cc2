// The agent: one COM object bound to one device service.
#pragma once

#include <windows.h>

#include <ole2.h>

#include "bridge/OrbStuff.h"
#include "common/server/Dispatch.h"
#include "wncom/CPComPtr.h"
#include "wncom/Descriptions.h"
#include "wncom/Logging.h"
#include "wncom/wnCOM.h"

namespace wncom {

// Holds the client's service description, the transport description that the parent made, and the bridge to the
// service's remote job-control object. Everything runs on the thread of the client's apartment. Methods throw
// nothing; one that needs the service answers E_UNEXPECTED on an agent that was never initialised.
class CWendrel : public server::Dispatch<IWendrel>,
                 public IWNInitByParent,
                 public IComBaseEvent,
                 public ISessionControl,
                 public IJobControl,
                 public IWNXDMAccess,
                 public IWNEventAccess {
public:
    CWendrel();
    ~CWendrel();
    CWendrel(const CWendrel&) = delete;
    CWendrel& operator=(const CWendrel&) = delete;

    void* FindInterface(REFIID iid) noexcept;

    // IWendrel
    HRESULT STDMETHODCALLTYPE GetCapabilitiesTicket(BSTR* pTicket) override;
    HRESULT STDMETHODCALLTYPE SendIntentTicket(BSTR Ticket, IUnknown** ppITransportDesc) override;

    // IWNInitByParent. An agent that is initialised already keeps what it holds and answers E_UNEXPECTED.
    HRESULT STDMETHODCALLTYPE InitByParent(IUnknown* pISD, IUnknown* pTD) override;

    // ISessionControl
    HRESULT STDMETHODCALLTYPE StartSession() override;
    HRESULT STDMETHODCALLTYPE EndSession() override;
    HRESULT STDMETHODCALLTYPE RestartSession() override;

    // IJobControl
    HRESULT STDMETHODCALLTYPE CancelJobWithMessage(BSTR jobURI, BSTR cancelMessage) override;
    HRESULT STDMETHODCALLTYPE CancelJob(BSTR jobURI) override;
    HRESULT STDMETHODCALLTYPE QueryJobStatus(BSTR jobURI, BSTR* intentTicket) override;
    HRESULT STDMETHODCALLTYPE SubmitJob(BSTR intentTicket, BSTR* ResponseTicket) override;

    // IWNXDMAccess
    HRESULT STDMETHODCALLTYPE GetData(BSTR xdmPath, BSTR xdmPrefixes, BSTR* ExceptionInfo,
                                      BSTR* xdmDocument) override;
    HRESULT STDMETHODCALLTYPE SetData(BSTR xdmSetDocument, LONG FailureDetails, BSTR* ExceptionInfo) override;

    // IComBaseEvent
    HRESULT STDMETHODCALLTYPE Subscribe(BSTR SubscriptionInfo, BSTR FilterProperties, BSTR ConsumerInterface,
                                        BSTR SessionInfo, BSTR* ExceptionInfo, BSTR* SubscriptionID) override;
    HRESULT STDMETHODCALLTYPE Unsubscribe(BSTR SubscriptionID, BSTR SessionInfo, BSTR* ExceptionInfo) override;
    HRESULT STDMETHODCALLTYPE GetSupportedEvents(BSTR SessionInfo, BSTR* ExceptionInfo, BSTR* EventList) override;
    HRESULT STDMETHODCALLTYPE GetSubscriptionIDList(BSTR SessionInfo, BSTR* ExceptionInfo,
                                                    BSTR* SubscriptionIDList) override;
    HRESULT STDMETHODCALLTYPE GetSubscriptionDetails(BSTR SubscriptionID, BSTR SessionInfo, BSTR* ExceptionInfo,
                                                     BSTR* SubscriptionDetails) override;
    HRESULT STDMETHODCALLTYPE GetEventProperties(BSTR EventName, BSTR SessionInfo, BSTR* ExceptionInfo,
                                                 BSTR* EventPropertyList) override;
    HRESULT STDMETHODCALLTYPE GetEventSystemCapabilities(BSTR SessionInfo, BSTR* ExceptionInfo,
                                                         BSTR* EventCapabilities) override;

    // IWNEventAccess
    HRESULT STDMETHODCALLTYPE GetEventCapabilities(BSTR* ExceptionInfo, BSTR* eventCapabilitiesTicket) override;
    HRESULT STDMETHODCALLTYPE SubscribeForEvents(BSTR eventSubscription, BSTR* ExceptionInfo,
                                                 BSTR* subscriptionResultTicket) override;
    HRESULT STDMETHODCALLTYPE Resubscribe(BSTR SubscriptionID, BSTR duration, BSTR* ExceptionInfo) override;
    HRESULT STDMETHODCALLTYPE UnsubscribeForEvents(BSTR SubscriptionID, BSTR* ExceptionInfo) override;

private:
    HRESULT Initialise(IUnknown* serviceDescription, IUnknown* transportDescription);
    HRESULT StartSessionOfService();
    // Reads the service's address, which may have changed, and connects the bridge to it afresh. Without an address
    // nothing is connected and the failure's text is logged with the status.
    struct Connection {
        HRESULT status;  // of reading the address
        bool made;
    };
    Connection Connect(const char* failure);
    HRESULT Submit(BSTR intentTicket, BSTR* responseTicket);
    // Null when the session or the service gave none.
    MallocText<WCHAR> GetCapabilitiesTicketViaOrb(BSTR identifier);

    CPComPtr<ITransportDesc> m_transportDesc;  // null until initialised
    CPComPtr<IServiceDesc> m_serviceDesc;      // null until initialised
    OrbStuff m_bridge;
    LogReference m_logging;
};

// True when the description gives a non-empty identifier and a non-empty address.
bool ValidateSD(IServiceDesc& sd);

}  // namespace wncom
