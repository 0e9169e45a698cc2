#include "agent/WNSimpleCache.h"

#include <wchar.h>

#include <limits>

#include "common/CPWStringBuffer.h"
#include "common/Guard.h"
#include "wncom/Bstr.h"
#include "wncom/Logging.h"
#include "wncom/TraceScope.h"

namespace wncom {
namespace {

constexpr UINT kSecondsPerDay = 86400;

// A lifetime beyond what the manager's seconds can count lasts as long as they can.
LONG LifetimeInSeconds(UINT days) {
    constexpr UINT kLongest = std::numeric_limits<LONG>::max() / kSecondsPerDay;
    return days > kLongest ? std::numeric_limits<LONG>::max() : static_cast<LONG>(days * kSecondsPerDay);
}

class CacheKey {
public:
    explicit CacheKey(BSTR identifier) {
        m_text.Assign(identifier ? identifier : OLESTR(""), false);
        // The suffix alone is a key too: that of tickets without an identifier.
        if (m_text.Text()) m_text.Append(OLESTR("-capTicket"));
    }
    // Null when memory ran out.
    const WCHAR* get() { return m_text.GetBuffer(); }

private:
    CPWStringBuffer<CPBstrAllocator> m_text;
};

}  // namespace

_WNSimpleCache::_WNSimpleCache() {
    const TraceScope trace("_WNSimpleCache::_WNSimpleCache", "WNSimpleCache");
    // A creation may succeed with nothing.
    m_initialised = SUCCEEDED(m_manager.CreateInstance(kProgIdXMLCacheMgr)) && m_manager;
}

_WNSimpleCache::~_WNSimpleCache() {
    const TraceScope trace("_WNSimpleCache::~_WNSimpleCache", "WNSimpleCache");
    if (m_initialised) m_manager.Release();
    m_initialised = false;
}

bool _WNSimpleCache::ToCache(BSTR identifier, UINT days, const WCHAR* ticket) {
    const TraceScope trace("_WNSimpleCache::ToCache", "WNSimpleCache");
    if (!m_initialised) {
        Log(1, "WNSimpleCache::SimpleCache not init'ed\n");
        return false;
    }
    CacheKey key(identifier);
    const Bstr text(ticket);
    HRESULT status = E_FAIL;
    if (text && key.get()) {
        Log(3, "WNSimpleCache::ToCache attempting to cache %lu bytes of XML as %S for %u days\n", text.length(),
            key.get(), days);
        status =
            Guarded([&] { return m_manager->PutXML(key.get(), text.get(), LifetimeInSeconds(days), kCacheFlags); });
    }
    if (FAILED(status)) {
        Log(1, "WNSimpleCache::ToCache failed %lx\n", status);
        return false;
    }
    return true;
}

MallocText<WCHAR> _WNSimpleCache::FromCache(BSTR identifier) {
    const TraceScope trace("_WNSimpleCache::FromCache", "WNSimpleCache");
    if (!m_initialised) {
        Log(1, "WNSimpleCache::SimpleCache not init'ed\n");
        return nullptr;
    }
    CacheKey key(identifier);
    Log(3, "WNSimpleCache::FromCache attempting to retrieve XML as %S\n", key.get());
    Bstr ticket;
    const HRESULT status = Guarded(
        [&] { return key.get() ? m_manager->FetchXML(key.get(), kCacheFlags, ticket.put()) : E_OUTOFMEMORY; });
    if (FAILED(status) || !ticket) {
        Log(2, "WNSimpleCache::FromCache failed %lx\n", status);
        return nullptr;
    }
    Log(3, "WNSimpleCache::FromCache retrieved %lu bytes of XML from cache\n", ticket.length());
    return MallocText<WCHAR>(_wcsdup(ticket.get()));
}

int _WNSimpleCache::RemoveFromCache(BSTR identifier) {
    const TraceScope trace("_WNSimpleCache::RemoveFromCache", "WNSimpleCache");
    if (!m_initialised) {
        Log(1, "WNSimpleCache::SimpleCache not init'ed\n");
        return 0;
    }
    CacheKey key(identifier);
    Log(3, "WNSimpleCache::RemoveFromCache attempting to delete %S from cache\n", key.get());
    const HRESULT status = Guarded([&] { return key.get() ? m_manager->RemoveXML(key.get()) : E_OUTOFMEMORY; });
    if (FAILED(status)) {
        Log(2, "WNSimpleCache::RemoveFromCache failed %lx\n", status);
        return 2;
    }
    Log(3, "WNSimpleCache::RemoveFromCache succeeded\n");
    return 0;
}

}  // namespace wncom
