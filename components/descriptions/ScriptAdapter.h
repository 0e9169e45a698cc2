// The late-bound side of an object that a script holds as a plain IUnknown.
#pragma once

#include "components/DualObject.h"
#include "wncom/ScriptAccess.h"

namespace wncom::components {

class ScriptAdapter : public DualObject<IScriptAccess> {
public:
    HRESULT STDMETHODCALLTYPE AsObject(IUnknown* object, IDispatch** dispatch) override {
        if (!dispatch) return E_POINTER;
        *dispatch = nullptr;
        return object ? object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch)) : S_OK;
    }
};

}  // namespace wncom::components
