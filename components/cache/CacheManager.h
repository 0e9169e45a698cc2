// The XML cache manager over one database that all processes share.
#pragma once

#include <string>

#include "components/DualObject.h"
#include "components/cache/ReservedCacheSlots.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::components {

class CacheManager : public ReservedCacheSlots<DualObject<IXMLCacheMgr>> {
public:
    HRESULT STDMETHODCALLTYPE PutXML(LPCOLESTR key, BSTR ticket, LONG seconds, LONG flags) override;
    HRESULT STDMETHODCALLTYPE FetchXML(LPCOLESTR key, LONG flags, BSTR* ticket) override;
    HRESULT STDMETHODCALLTYPE RemoveXML(LPCOLESTR key) override;

private:
    // Runs use(path of the database).
    template <class Use>
    HRESULT WithPath(Use use) noexcept;

    std::string m_path;  // as it was configured at the first use; empty before
};

}  // namespace wncom::components
