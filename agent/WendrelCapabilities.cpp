// The agent's capabilities ticket.
#include "agent/CopyOut.h"
#include "agent/WNSimpleCache.h"
#include "agent/Wendrel.h"
#include "common/Guard.h"
#include "wncom/Bstr.h"
#include "wncom/TraceScope.h"

namespace wncom {
namespace {

// Days that a ticket stays in the cache; 0 turns the cache off. The bare name is looked up in the Windows directory,
// anew at each call.
UINT CacheLifetime() { return GetPrivateProfileIntA("Cache", "CapTicket", 1, "qbos.ini"); }

}  // namespace

HRESULT CWendrel::GetCapabilitiesTicket(BSTR* pTicket) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::GetCapabilitiesTicket", "Wendrel");
        if (!pTicket) {
            Log(3, "CWendrel::GetCapabilitiesTicket Parameter \"pTicket\" is NULL!");
            return E_FAIL;
        }
        if (!m_serviceDesc) return E_UNEXPECTED;
        Bstr identifier;
        // Without an identifier, for whatever reason, there is still a ticket.
        Guarded([&] { return m_serviceDesc->GetID(identifier.put()); });

        _WNSimpleCache cache;
        const UINT days = CacheLifetime();
        Log(3, "Read cap ticket cache life from settings -- %d days.\n", static_cast<INT>(days));
        MallocText<WCHAR> ticket;
        if (days != 0) ticket = cache.FromCache(identifier.get());
        if (!ticket) {
            Log(3, "CapTicket not in cache, trying via Orb\n");
            ticket = GetCapabilitiesTicketViaOrb(identifier.get());
            if (days == 0) {
                Log(2, "capabilities ticket cache disabled\n");
            } else if (ticket && !cache.ToCache(identifier.get(), days, ticket.get())) {
                Log(2, "Failed to cache capabilities ticket\n");
            }
        }
        return ticket ? CopyOut(ticket.get(), pTicket) : E_FAIL;
    });
}

MallocText<WCHAR> CWendrel::GetCapabilitiesTicketViaOrb(BSTR identifier) {
    const TraceScope trace("CWendrel::GetCapabilitiesTicketViaOrb", "Wendrel");
    if (FAILED(StartSession())) return nullptr;
    MallocText<WCHAR> ticket;
    const LONG length = m_bridge.GetCapTicket(identifier, &ticket);
    if (length == 0 || !ticket) {
        Log(2, "GetCapabiltiesTicket failed with a %d len ticket\n", length);
        return nullptr;
    }
    return ticket;
}

}  // namespace wncom
