// The bridge's events and subscriptions.
#include <memory>
#include <stdexcept>

#include "bridge/OrbStuff.h"
#include "bridge/RemoteCall.h"
#include "bridge/TextConversions.h"
#include "wncom/Logging.h"
#include "wncom/TraceScope.h"

namespace wncom {

MallocText<WCHAR> OrbStuff::Subscribe(const WCHAR* szSubscriptionInfo, const WCHAR* szFilterProperties,
                                      const WCHAR* szConsumerInterface) noexcept {
    const TraceScope trace("OrbStuff::Subscribe", ".\\OrbStuff");
    Log(3, "m_szServiceURI is: %s\n", m_szServiceURI.get());
    Log(3, "In OS::Subscribe, subInfo is: %S\n", szSubscriptionInfo);
    Log(3, "In OS::Subscribe, filtProp is: %S\n", szFilterProperties);
    Log(3, "In OS::Subscribe, consInt is: %S\n", szConsumerInterface);
    CString result;
    GuardedCall(2, "Failed mJobControl->Subscribe method call", [&] {
        const CString info(szSubscriptionInfo);
        const CString filter(szFilterProperties);
        const CString consumer(szConsumerInterface);
        result = Remote().Subscribe(info, filter, consumer);
    });
    MallocText<WCHAR> subscriptionId = CStringToWChar(result);
    Log(3, "New subID='%S'\n", subscriptionId ? subscriptionId.get() : OLESTR("failed"));
    return subscriptionId;
}

void OrbStuff::Unsubscribe(const WCHAR* szSubscriptionID) noexcept {
    if (const MallocText<char> id = WCharToUtf8(szSubscriptionID)) _Unsubscribe(id.get());
}

void OrbStuff::_Unsubscribe(const char* szSubscriptionID) noexcept {
    const TraceScope trace("OrbStuff::_Unsubscribe", ".\\OrbStuff");
    if (!szSubscriptionID || !*szSubscriptionID) {
        Log(1, "Unsub called with NULL!\n");
        return;
    }
    Log(3, "Unsub'ing %s\n", szSubscriptionID);
    GuardedCall(1, "ORBStuff::mJobControl->Unsubscribe failed!",
                [&] { Remote().Unsubscribe(CharToCString(szSubscriptionID)); });
}

LONG OrbStuff::GetSupportedEvents(PCharArray* list) noexcept {
    const TraceScope trace("OrbStuff::GetSupportedEvents", ".\\OrbStuff");
    LONG count = 0;
    GuardedCall(1, "OrbStuff::GetSupportedEvents exception\n", [&] {
        const std::unique_ptr<RemoteArray> names(Remote().GetSupportedEvents());
        Log(3, "OrbStuff::About to display rArray contents\n");
        if (!names) throw std::logic_error("no list");
        static_cast<const ORBBase&>(*names).Init();
        count = RemoteArrayPtrToPCharArray(names.get(), list);
    });
    return count;
}

LONG OrbStuff::GetEventProperties(const char* szEventName, PCharArray* list) noexcept {
    const TraceScope trace("OrbStuff::GetEventProperties", ".\\OrbStuff");
    Log(3, "Getting properties for event<%s>\n", szEventName);
    LONG count = 0;
    GuardedCall(1, "OrbStuff::GetEventProperties exception\n", [&] {
        const CString name = CharToCString(szEventName ? szEventName : "all");
        const std::unique_ptr<RemoteArray> properties(Remote().GetEventProperties(name));
        count = RemoteArrayPtrToPCharArray(properties.get(), list);
    });
    return count;
}

LONG OrbStuff::GetEventCapabilities(BSTR* pException, MallocText<WCHAR>* pszResp) noexcept {
    const TraceScope trace("OrbStuff::GetEventCapabilities", ".\\OrbStuff");
    CString result;
    GuardedCall(3, "Exception thrown while attempting to call GetEventCapabilities().\n",
                [&] { result = Remote().GetEventCapabilities(pException); });
    pszResp->reset();
    return HandOut(result, pszResp, "result event capabilities: NULL!\n\n");
}

LONG OrbStuff::SubscribeForEvents(const WCHAR* szEventSubscription, BSTR* pException,
                                  MallocText<WCHAR>* pszResp) noexcept {
    const TraceScope trace("OrbStuff::SubscribeForEvents", ".\\OrbStuff");
    if (IsNullOrEmpty(szEventSubscription)) {
        Log(1, "SubEvents called with NULL event subscription ticket!\n");
        return 0;
    }
    CString result;
    GuardedCall(3, "Exception thrown while attempting to call SubscribeForEvents().\n", [&] {
        const CString ticket = OutgoingText(szEventSubscription);
        result = Remote().SubscribeForEvents(ticket, pException);
    });
    pszResp->reset();
    HandOut(result, pszResp, "result subscription ticket: NULL!\n\n");
    return 0;
}

bool OrbStuff::Resubscribe(const WCHAR* szSubscriptionID, const WCHAR* szDuration, BSTR* pException) noexcept {
    const TraceScope trace("OrbStuff::Resubscribe", ".\\OrbStuff");
    if (IsNullOrEmpty(szSubscriptionID)) {
        Log(1, "SubEvents called with NULL subscription ID!\n");
        return false;
    }
    bool done = false;
    GuardedCall(3, "Exception thrown while attempting to call Resubscribe().\n", [&] {
        const CString id = OutgoingText(szSubscriptionID);
        const CString duration = OutgoingText(szDuration);
        Log(3, "calling Resubscribe on mJobControl\n");
        done = Remote().Resubscribe(id, duration, pException);
    });
    return done;
}

bool OrbStuff::UnsubscribeForEvents(const WCHAR* szSubscriptionID, BSTR* pException) noexcept {
    const TraceScope trace("OrbStuff::UnsubscribeForEvents", ".\\OrbStuff");
    if (IsNullOrEmpty(szSubscriptionID)) {
        Log(1, "UnSubEvents called with NULL subscription ID!\n");
        return false;
    }
    bool done = false;
    GuardedCall(3, "Exception thrown while attempting to call UnsubscribeForEvents().\n", [&] {
        const CString id = OutgoingText(szSubscriptionID);
        Log(3, "calling UnsubscribeEvents on mJobControl\n");
        done = Remote().UnsubscribeForEvents(id, pException);
    });
    return done;
}

}  // namespace wncom
