// The service description: what the client knows of the service it wants an agent for.
#pragma once

#include "components/DualObject.h"
#include "components/TextProperty.h"
#include "wncom/Descriptions.h"

namespace wncom::components {

class ServiceDesc : public DualObject<IServiceDesc> {
public:
    HRESULT STDMETHODCALLTYPE GetID(BSTR* id) override { return m_id.Get(id); }
    HRESULT STDMETHODCALLTYPE SetID(BSTR id) override { return m_id.Put(id); }
    HRESULT STDMETHODCALLTYPE GetAddress(BSTR* address) override { return m_address.Get(address); }
    HRESULT STDMETHODCALLTYPE SetAddress(BSTR address) override { return m_address.Put(address); }

private:
    TextProperty m_id;
    TextProperty m_address;
};

}  // namespace wncom::components
