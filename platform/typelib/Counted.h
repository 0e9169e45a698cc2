// Reference counting for the objects of type information, which any thread may hold.
#pragma once

#include <atomic>

#include "unknwn.h"

namespace wnplatform::typelib {

// An implementation of Base, which answers the one interface id besides that of IUnknown. Starts with one reference.
template <class Base, const IID& kInterfaceId>
class Counted : public Base {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, kInterfaceId)) return E_NOINTERFACE;
        *object = static_cast<Base*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --m_references;
        if (left == 0) Destroy();
        return left;
    }

protected:
    ~Counted() = default;

private:
    virtual void Destroy() noexcept = 0;

    std::atomic<ULONG> m_references{1};
};

}  // namespace wnplatform::typelib
