#include "platform/typelib/FuncDesc.h"

#include "platform/typelib/TypeInfo.h"

namespace wnplatform::typelib {

FuncDesc::FuncDesc(const Method& method, bool lateBound) : FUNCDESC{} {
    for (const Parameter& parameter : method.parameters) {
        ELEMDESC element{};
        element.tdesc = Describe(parameter.type);
        element.paramdesc.wParamFlags = parameter.flags;
        m_parameters.push_back(element);
    }
    memid = method.id;
    funckind = lateBound ? FUNC_DISPATCH : FUNC_PUREVIRTUAL;
    invkind = method.kind;
    callconv = CC_STDCALL;
    oVft = static_cast<SHORT>(method.slot * sizeof(void*));
    wFuncFlags = method.flags;
    elemdescFunc.tdesc = Describe(method.result);
    if (lateBound && method.result.vt == VT_HRESULT) {
        const bool returns = !method.parameters.empty() && (method.parameters.back().flags & PARAMFLAG_FRETVAL) != 0;
        if (returns) {
            elemdescFunc.tdesc = *m_parameters.back().tdesc.lptdesc;
            m_parameters.pop_back();
        } else {
            elemdescFunc.tdesc.vt = VT_VOID;
        }
    }
    cParams = static_cast<SHORT>(m_parameters.size());
    lprgelemdescParam = m_parameters.empty() ? nullptr : m_parameters.data();
}

TYPEDESC FuncDesc::Describe(const Type& type) {
    TYPEDESC description{};
    description.vt = type.vt;
    if (type.target) description.hreftype = ReferenceTo(*type.target);
    for (unsigned i = 0; i < type.pointers; ++i) {
        TYPEDESC pointer{};
        pointer.vt = VT_PTR;
        pointer.lptdesc = &m_pointedTo.emplace_back(description);
        description = pointer;
    }
    return description;
}

}  // namespace wnplatform::typelib
