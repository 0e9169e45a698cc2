// The fake cache manager: keeps tickets for the process in the script's answers, as long as the test lets it.
#pragma once

#include "components/cache/ReservedCacheSlots.h"
#include "tests/fakes/FakeObject.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::test {

// "XMLCacheMgr.FetchXML" answers the text that the test scripted for "XMLCacheMgr.FetchXML " and the key, or S_FALSE
// when there is none. "XMLCacheMgr.PutXML" scripts it so.
class FakeCacheMgr final : public components::ReservedCacheSlots<FakeObject<IXMLCacheMgr>> {
public:
    HRESULT STDMETHODCALLTYPE PutXML(LPCOLESTR key, BSTR ticket, LONG seconds, LONG flags) override;
    HRESULT STDMETHODCALLTYPE FetchXML(LPCOLESTR key, LONG flags, BSTR* ticket) override;
    HRESULT STDMETHODCALLTYPE RemoveXML(LPCOLESTR key) override;
};

}  // namespace wncom::test
