#include "components/cache/CacheManager.h"

#include "common/Guard.h"
#include "components/ConfiguredPath.h"
#include "components/Problem.h"
#include "components/cache/TicketStore.h"
#include "wncom/Bstr.h"

namespace wncom::components {
namespace {

constexpr PathSetting kSetting = {"SOFTWARE\\Quillbeck\\QBNorvel\\XMLCache", "cachefile", "xmlcache.db"};

}  // namespace

template <class Use>
HRESULT CacheManager::WithPath(Use use) noexcept {
    return Guarded([&]() -> HRESULT {
        try {
            if (m_path.empty()) m_path = ConfiguredPath(kSetting);
        } catch (const Problem& problem) {
            OutputDebugStringA((std::string("XMLCacheMgr: ") + problem.what() + "\n").c_str());
            return problem.status();
        }
        return use(m_path);
    });
}

HRESULT CacheManager::PutXML(LPCOLESTR key, BSTR ticket, LONG seconds, LONG flags) {
    if (!key || seconds <= 0 || flags != kCacheFlags) return E_INVALIDARG;
    return WithPath([&](const std::string& path) {
        return PutTicket(path, key, WideView(ticket, SysStringLen(ticket)), seconds);
    });
}

HRESULT CacheManager::FetchXML(LPCOLESTR key, LONG flags, BSTR* ticket) {
    if (!ticket) return E_POINTER;
    *ticket = nullptr;
    if (!key || flags != kCacheFlags) return E_INVALIDARG;
    return WithPath([&](const std::string& path) {
        Bstr found;
        const HRESULT status = FetchTicket(path, key, found);
        *ticket = found.detach();
        return status;
    });
}

HRESULT CacheManager::RemoveXML(LPCOLESTR key) {
    if (!key) return E_INVALIDARG;
    return WithPath([&](const std::string& path) { return RemoveTicket(path, key); });
}

}  // namespace wncom::components
