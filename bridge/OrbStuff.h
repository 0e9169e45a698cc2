// The bridge between one agent and the remote job-control object of its device service.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <memory>

#include "bridge/RemoteList.h"
#include "common/MallocText.h"
#include "transport/JobControlFactory.h"
#include "wncom/CString.h"
#include "wncom/RmtJobControl.h"

namespace wncom {

// Turns the agent's UTF-16 texts into the narrow texts of the remote interface, makes one guarded call per operation
// and hands the result back as a new text that the receiver owns.
//
// One agent owns it and calls it, on the agent's one thread; remote calls block that thread. Nothing is thrown: what
// a remote call or its conversions throw is logged and answered as if nothing had come back, and an operation of an
// unconnected bridge likewise. A slot must not be null unless its operation says otherwise; it is left as it was
// when no text is handed out. Lengths count the bytes of the remote answer. An exception slot goes to the remote
// object untouched and may be null.
class OrbStuff {
public:
    OrbStuff() noexcept;
    OrbStuff(const OrbStuff&) = delete;
    OrbStuff& operator=(const OrbStuff&) = delete;
    // Gives the remote object back; the session, if any, is not ended.
    virtual ~OrbStuff();

    // Connects to the service at the address, with a fresh remote object each time. A null or empty address only
    // forgets the address. Whether it worked shows in the operations that follow.
    void SetServiceURI(const WCHAR* szServiceURI) noexcept;

    // ---- sessions ----
    // The session id, empty when nothing came back; null only when memory runs out.
    MallocText<WCHAR> StartSession() noexcept;
    void EndSession() noexcept;
    void SetSessionID(const WCHAR* szSessionID) noexcept;

    // ---- tickets and device data ----
    // The length of the capabilities ticket, 0 when there is none. Without a workflow id, the environment variable
    // WF_DESTINATION gives it, and where that is not set either, the request carries an empty one. A null slot gives
    // 0 and nothing is asked.
    LONG GetCapTicket(const WCHAR* szWorkflowID, MallocText<WCHAR>* pszResp) noexcept;
    // The length of the response ticket, 0 when there is none, -12 for a null ticket, -13 for a null slot.
    LONG SubmitJob(const WCHAR* szTicket, MallocText<WCHAR>* pszResp) noexcept;
    // The length of the document, 0 when there is none, -17 for a null path. The prefixes may be null.
    LONG GetData(const WCHAR* szXDMPath, const WCHAR* szXDMPrefixes, BSTR* pException,
                 MallocText<WCHAR>* pszResp) noexcept;
    // True when the remote object reports success. It may store a malloc'ed text in the slot, which must point to
    // null and is the caller's then.
    bool SetData(const WCHAR* szXDMSetDocument, bool failureDetails, WCHAR** pszText) noexcept;

    // ---- events ----
    // The subscription id, empty when none was made; null only when memory runs out. Each text may be null.
    MallocText<WCHAR> Subscribe(const WCHAR* szSubscriptionInfo, const WCHAR* szFilterProperties,
                                const WCHAR* szConsumerInterface) noexcept;
    // A null or empty id is logged, or for null passed over, and nothing is sent.
    void Unsubscribe(const WCHAR* szSubscriptionID) noexcept;
    void _Unsubscribe(const char* szSubscriptionID) noexcept;
    // The number of names; the slot is written only when it is not 0.
    LONG GetSupportedEvents(PCharArray* list) noexcept;
    // The event's name in UTF-8; null asks for the properties of all events.
    LONG GetEventProperties(const char* szEventName, PCharArray* list) noexcept;
    // The length of the event capabilities ticket; 0, and null in the slot, when there is none.
    LONG GetEventCapabilities(BSTR* pException, MallocText<WCHAR>* pszResp) noexcept;
    // 0 always; the slot holds the subscription result ticket, or null. It is not written for a null or empty ticket.
    LONG SubscribeForEvents(const WCHAR* szEventSubscription, BSTR* pException, MallocText<WCHAR>* pszResp) noexcept;
    // True when the remote object reports success; false for a null or empty id. The duration may be null.
    bool Resubscribe(const WCHAR* szSubscriptionID, const WCHAR* szDuration, BSTR* pException) noexcept;
    bool UnsubscribeForEvents(const WCHAR* szSubscriptionID, BSTR* pException) noexcept;

private:
    RmtJobControl& Remote() const;
    void Disconnect() noexcept;

    MallocText<char> m_szServiceURI;  // in UTF-8
    std::unique_ptr<JobControlFactory> mFactory;
    RmtJobControl* mJobControl = nullptr;  // made by mFactory, given back through its Delete
};

}  // namespace wncom
