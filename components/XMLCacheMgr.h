// The XML cache manager over one database that all processes share.
#pragma once

#include <string>

#include "components/DualObject.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::components {

class XMLCacheMgr : public DualObject<IXMLCacheMgr> {
public:
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE PutXML(LPCOLESTR key, BSTR ticket, LONG seconds, LONG flags) override;
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FetchXML(LPCOLESTR key, LONG flags, BSTR* ticket) override;
    HRESULT STDMETHODCALLTYPE RemoveXML(LPCOLESTR key) override;

private:
    // Runs use(path of the database).
    template <class Use>
    HRESULT WithPath(Use use) noexcept;

    std::string m_path;  // as it was configured at the first use; empty before
};

}  // namespace wncom::components
