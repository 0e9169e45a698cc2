// The agent's event operations.
#include <utility>

#include "agent/Array2XML.h"
#include "agent/CopyOut.h"
#include "agent/Wendrel.h"
#include "bridge/TextConversions.h"
#include "common/Guard.h"
#include "wncom/Bstr.h"
#include "wncom/TraceScope.h"

namespace wncom {
namespace {

// The list's document in UTF-16, read in the system's narrow code page; null when memory runs out.
MallocText<WCHAR> ListDocument(const PCharArray& list, const char* root, const char* element) {
    const MallocText<char> narrow = Array2XML(list.get(), root, element);
    if (!narrow) return nullptr;
    const int units = MultiByteToWideChar(CP_ACP, 0, narrow.get(), -1, nullptr, 0);
    if (units <= 0) return nullptr;
    MallocText<WCHAR> wide(static_cast<WCHAR*>(std::malloc(static_cast<std::size_t>(units) * sizeof(WCHAR))));
    if (wide && MultiByteToWideChar(CP_ACP, 0, narrow.get(), -1, wide.get(), units) != units) return nullptr;
    return wide;
}

HRESULT HandOutList(const WCHAR* document, BSTR* exceptionInfo, BSTR* list) {
    if (exceptionInfo) *exceptionInfo = nullptr;
    return list ? CopyOut(document, list) : S_OK;
}

}  // namespace

HRESULT CWendrel::Subscribe(BSTR SubscriptionInfo, BSTR FilterProperties, BSTR ConsumerInterface, BSTR,
                            BSTR* ExceptionInfo, BSTR* SubscriptionID) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::Subscribe", "Wendrel");
        if (!m_serviceDesc) return E_UNEXPECTED;
        Bstr address;
        const HRESULT status = m_serviceDesc->GetAddress(address.put());
        if (FAILED(status) || !address) {
            Log(1, "failed SD->GetAddress()==%08lx\n", status);
            address.attach(nullptr);
        }
        Log(3, "ServiceURI=%S\n", address.get());
        m_bridge.SetServiceURI(address.get());

        const MallocText<WCHAR> id = m_bridge.Subscribe(SubscriptionInfo, FilterProperties, ConsumerInterface);
        if (ExceptionInfo) *ExceptionInfo = SysAllocString(OLESTR("No Info"));
        HRESULT result = E_FAIL;
        const WCHAR* stored = OLESTR("noID");
        if (id && *id.get()) {
            Log(3, "Orb.Subscribe succeeded (%S)\n", id.get());
            result = SubscriptionID ? CopyOut(id.get(), SubscriptionID) : S_OK;
            if (SubscriptionID && *SubscriptionID) stored = *SubscriptionID;
        }
        Log(3, "Returning %08lx (%S)\n", result, stored);
        return result;
    });
}

HRESULT CWendrel::Unsubscribe(BSTR SubscriptionID, BSTR, BSTR*) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::Unsubscribe", "Wendrel");
        if (!SubscriptionID || !*SubscriptionID) return S_OK;
        Log(3, "Unsubscribing %S\n", SubscriptionID);
        const HRESULT status = StartSession();
        if (SUCCEEDED(status)) m_bridge.Unsubscribe(SubscriptionID);
        return status;
    });
}

HRESULT CWendrel::GetSupportedEvents(BSTR, BSTR* ExceptionInfo, BSTR* EventList) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::GetSupportedEvents", "Wendrel");
        if (!m_serviceDesc) return E_UNEXPECTED;
        PCharArray list;
        m_bridge.GetSupportedEvents(&list);
        const MallocText<WCHAR> document = ListDocument(list, "SupportedEvents", "Event");
        if (!document) return E_FAIL;
        Log(3, "Supported Events: %S\n", document.get());
        return HandOutList(document.get(), ExceptionInfo, EventList);
    });
}

HRESULT CWendrel::GetEventProperties(BSTR EventName, BSTR, BSTR* ExceptionInfo, BSTR* EventPropertyList) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::GetEventProperties", "Wendrel");
        if (!m_serviceDesc) return E_UNEXPECTED;
        const MallocText<char> name = WCharToUtf8(EventName);
        // Null would ask for the properties of all events.
        if (EventName && !name) return E_OUTOFMEMORY;
        PCharArray list;
        m_bridge.GetEventProperties(name.get(), &list);
        const MallocText<WCHAR> document = ListDocument(list, "EventProperties", "Name");
        if (!document) return E_FAIL;
        Log(3, "Event Properties: %S\n", document.get());
        return HandOutList(document.get(), ExceptionInfo, EventPropertyList);
    });
}

HRESULT CWendrel::GetSubscriptionIDList(BSTR, BSTR*, BSTR*) {
    const TraceScope trace("CWendrel::GetSubscriptionIDList", "Wendrel");
    return E_NOTIMPL;
}

HRESULT CWendrel::GetSubscriptionDetails(BSTR, BSTR, BSTR*, BSTR*) {
    const TraceScope trace("CWendrel::GetSubscriptionDetails", "Wendrel");
    return E_NOTIMPL;
}

HRESULT CWendrel::GetEventSystemCapabilities(BSTR, BSTR*, BSTR*) {
    const TraceScope trace("CWendrel::GetEventSystemCapabilities", "Wendrel");
    return E_NOTIMPL;
}

HRESULT CWendrel::GetEventCapabilities(BSTR* ExceptionInfo, BSTR* eventCapabilitiesTicket) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::GetEventCapabilities", "Wendrel");
        if (const HRESULT status = StartSession(); FAILED(status)) return status;
        if (ExceptionInfo) *ExceptionInfo = nullptr;
        if (eventCapabilitiesTicket) *eventCapabilitiesTicket = nullptr;
        MallocText<WCHAR> ticket;
        const LONG length = m_bridge.GetEventCapabilities(ExceptionInfo, &ticket);
        if (length < 0 || !ticket) {
            Log(1, "Orb.GetEventCapabilities failed with %d length ticket\n", length);
            return E_FAIL;
        }
        return eventCapabilitiesTicket ? CopyOut(ticket.get(), eventCapabilitiesTicket) : S_OK;
    });
}

HRESULT CWendrel::SubscribeForEvents(BSTR eventSubscription, BSTR* ExceptionInfo, BSTR* subscriptionResultTicket) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::SubscribeForEvents", "Wendrel");
        if (const HRESULT status = StartSession(); FAILED(status)) return status;
        if (ExceptionInfo) *ExceptionInfo = nullptr;
        if (subscriptionResultTicket) *subscriptionResultTicket = nullptr;
        MallocText<WCHAR> ticket;
        const LONG length = m_bridge.SubscribeForEvents(eventSubscription, ExceptionInfo, &ticket);
        if (length < 0 || !ticket) {
            Log(1, "Orb.SubscribeForEvents failed with %d length ticket\n", length);
            return E_FAIL;
        }
        return subscriptionResultTicket ? CopyOut(ticket.get(), subscriptionResultTicket) : S_OK;
    });
}

HRESULT CWendrel::Resubscribe(BSTR SubscriptionID, BSTR duration, BSTR* ExceptionInfo) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::Resubscribe", "Wendrel");
        if (const HRESULT status = StartSession(); FAILED(status)) return status;
        if (ExceptionInfo) *ExceptionInfo = nullptr;
        if (m_bridge.Resubscribe(SubscriptionID, duration, ExceptionInfo)) return S_OK;
        Log(1, "Orb.Resubscribe returned false\n");
        return E_FAIL;
    });
}

HRESULT CWendrel::UnsubscribeForEvents(BSTR SubscriptionID, BSTR* ExceptionInfo) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::UnsubscribeForEvents", "Wendrel");
        if (const HRESULT status = StartSession(); FAILED(status)) return status;
        if (ExceptionInfo) *ExceptionInfo = nullptr;
        if (m_bridge.UnsubscribeForEvents(SubscriptionID, ExceptionInfo)) return S_OK;
        Log(1, "Orb.UnsubscribeForEvents returned false\n");
        return E_FAIL;
    });
}

}  // namespace wncom
