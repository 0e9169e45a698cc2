// The cache of capabilities tickets, kept by an outside cache manager.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "common/MallocText.h"
#include "wncom/CPComPtr.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom {

// A store of tickets by the identifier of their service, which may be null.
class SimpleCache {
public:
    // True when the ticket was stored for so many days.
    virtual bool ToCache(BSTR identifier, UINT days, const WCHAR* ticket) = 0;
    // The ticket, or null.
    virtual MallocText<WCHAR> FromCache(BSTR identifier) = 0;
    // 0 when the ticket was removed or there is no cache manager, 2 when removing failed.
    virtual int RemoveFromCache(BSTR identifier) = 0;
    virtual ~SimpleCache() = default;
};

// Lives for one request: the cache manager is created with it and released with it. Without a manager every
// operation is logged and skipped; a manager that throws has failed. Nothing is thrown.
class _WNSimpleCache final : public SimpleCache {
public:
    _WNSimpleCache();
    _WNSimpleCache(const _WNSimpleCache&) = delete;
    _WNSimpleCache& operator=(const _WNSimpleCache&) = delete;
    ~_WNSimpleCache() override;

    bool ToCache(BSTR identifier, UINT days, const WCHAR* ticket) override;
    MallocText<WCHAR> FromCache(BSTR identifier) override;
    int RemoveFromCache(BSTR identifier) override;

private:
    bool m_initialised = false;
    CPComPtr<IXMLCacheMgr> m_manager;
};

}  // namespace wncom
