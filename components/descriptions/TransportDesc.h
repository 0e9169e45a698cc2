// The transport description: what became of the last submission, filled in by the agent and read by its client.
#pragma once

#include "components/DualObject.h"
#include "components/TextProperty.h"
#include "wncom/Descriptions.h"

namespace wncom::components {

class TransportDesc : public DualObject<ITransportDesc> {
public:
    // The two codes are kept as they are given. On a failure the whole old target stays.
    HRESULT STDMETHODCALLTYPE SetTargetURI(BSTR address, LONG reserved, LONG addressType,
                                           LONG deliveryMethod) override {
        if (reserved != 0) return E_INVALIDARG;
        const HRESULT status = m_target.Put(address);
        if (FAILED(status)) return status;
        m_addressType = addressType;
        m_deliveryMethod = deliveryMethod;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTargetURI(BSTR* address) override { return m_target.Get(address); }
    HRESULT STDMETHODCALLTYPE GetAddressType(LONG* addressType) override { return Get(m_addressType, addressType); }
    HRESULT STDMETHODCALLTYPE GetDeliveryMethod(LONG* deliveryMethod) override {
        return Get(m_deliveryMethod, deliveryMethod);
    }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSessionContext(BSTR* context) override { return m_sessionContext.Get(context); }
    HRESULT STDMETHODCALLTYPE SetSessionContext(BSTR context) override { return m_sessionContext.Put(context); }
    HRESULT STDMETHODCALLTYPE GetJobURI(BSTR* address) override { return m_job.Get(address); }
    HRESULT STDMETHODCALLTYPE SetJobURI(BSTR address) override { return m_job.Put(address); }

private:
    static constexpr LONG kNone = -1;

    static HRESULT Get(LONG value, LONG* place) noexcept {
        if (!place) return E_POINTER;
        *place = value;
        return S_OK;
    }

    TextProperty m_target;
    LONG m_addressType = kNone;
    LONG m_deliveryMethod = kNone;
    TextProperty m_sessionContext;
    TextProperty m_job;
};

}  // namespace wncom::components
