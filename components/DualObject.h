// What the components' classes share: one dual interface each, served to early-bound and late-bound callers.
#pragma once

#include <windows.h>

#include <ole2.h>

#include "common/server/Dispatch.h"
#include "common/server/Object.h"
#include "wncom/CPComPtr.h"

namespace wncom::components {

// A base for classes with one dual interface; see common/server/Object.h for how such a class becomes an object.
template <class Interface>
class DualObject : public server::Dispatch<Interface> {
public:
    void* FindInterface(REFIID iid) noexcept {
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == Interface::kIid;
        return known ? static_cast<Interface*>(this) : nullptr;
    }
};

// Makes a standalone object of a class of this module and hands it to fill(Implementation&), which gives it its
// content, before anyone else sees it. The reference is the caller's; may throw what the two throw.
template <class Implementation, class Interface, class Fill>
HRESULT MakeObject(Interface** object, Fill fill) {
    CPComPtr<Interface> made;
    const HRESULT status = server::CreateObject<Implementation>(nullptr, Interface::kIid, made.put_void());
    if (FAILED(status)) return status;
    fill(static_cast<Implementation&>(*made.get()));
    *object = made.detach();
    return S_OK;
}

}  // namespace wncom::components
