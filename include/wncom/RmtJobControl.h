// The contract between the bridge and a transport library: the remote job-control object of one device service, and
// the two exports that make it and take it back.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "wncom/CPComPtr.h"
#include "wncom/CString.h"

namespace wncom {

class RemoteArray;

// One device service, as a transport library reaches it. The bridge is its only user: it calls Initialize right
// after the object is made, then any operation in any order, all on one thread, one at a time.
//
// Any operation may throw anything; the bridge catches it, logs the operation's name and goes on as if nothing had
// come back. An empty text result means that nothing came back. Texts go out to the object in UTF-8 (SetSessionID
// and Subscribe: in the narrow code page); texts that it returns are read in the system's narrow code page.
//
// flag is always 1. An exception slot points to a text that the caller set to null (the pointer itself may be null
// when the client wants none); the object may store a new BSTR there, which the caller then frees.
struct RmtJobControl {
    virtual CString GetWorkflowCapabilities(CString request, int flag) = 0;
    virtual CString SubmitJob(CString intentTicket, int flag) = 0;
    virtual void Reserved2() = 0;  // never called
    virtual void Reserved3() = 0;  // never called
    virtual void Reserved4() = 0;  // never called
    virtual void SetSessionID(CString sessionId) = 0;
    virtual CString StartSession() = 0;
    virtual void EndSession() = 0;
    virtual CString Subscribe(CString subscriptionInfo, CString filterProperties, CString consumerInterface) = 0;
    virtual void Unsubscribe(CString subscriptionId) = 0;
    // New lists, made with new; the bridge deletes them. Null counts as a failure.
    virtual RemoteArray* GetSupportedEvents() = 0;
    virtual RemoteArray* GetEventProperties(CString eventName) = 0;  // "all" means every event
    virtual void Initialize(CString serviceUri, CPComPtr<IUnknown> none) = 0;
    virtual CString GetData(CString xdmPath, CString xdmPrefixes, BSTR* exceptionSlot, int flag) = 0;
    // textSlot points to null; the object may store there a UTF-16 text from malloc, which the caller frees.
    virtual bool SetData(CString xdmSetDocument, bool failureDetails, WCHAR** textSlot, int flag) = 0;
    virtual CString GetEventCapabilities(BSTR* exceptionSlot) = 0;
    virtual CString SubscribeForEvents(CString subscriptionTicket, BSTR* exceptionSlot) = 0;
    virtual bool Resubscribe(CString subscriptionId, CString duration, BSTR* exceptionSlot) = 0;
    virtual bool UnsubscribeForEvents(CString subscriptionId, BSTR* exceptionSlot) = 0;

protected:
    ~RmtJobControl() = default;  // goes back through demaker, never through delete
};

// What a transport library exports under the names "maker" and "demaker", with the platform's C calling convention.
// Make gives a new object, or null; Unmake destroys one that this library made, and must accept null: it comes
// whenever the library is about to be released.
using TransportMake = RmtJobControl* (*)();
using TransportUnmake = void (*)(RmtJobControl* object);

}  // namespace wncom
