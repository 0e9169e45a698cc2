#include "platform/typelib/FuncDesc.h"

namespace wnplatform::typelib {

FuncDesc::FuncDesc(const Tables& tables, const MethodRow& method, bool lateBound) noexcept : FUNCDESC{} {
    for (std::uint32_t i = 0; i < method.parameterCount; ++i) {
        const ParameterRow& parameter = tables.ParametersOf(method)[i];
        m_parameters[i] = {};
        m_parameters[i].tdesc = Describe(parameter, m_pointedTo[i]);
        m_parameters[i].paramdesc.wParamFlags = parameter.flags;
    }
    memid = method.id;
    funckind = lateBound ? FUNC_DISPATCH : FUNC_PUREVIRTUAL;
    invkind = static_cast<INVOKEKIND>(method.kind);
    callconv = CC_STDCALL;
    oVft = static_cast<SHORT>(method.slot * sizeof(void*));
    wFuncFlags = method.flags;
    elemdescFunc.tdesc.vt = method.result;
    cParams = static_cast<SHORT>(method.parameterCount);
    if (lateBound && tables.HasResult(method)) {
        elemdescFunc.tdesc = *m_parameters[--cParams].tdesc.lptdesc;
    } else if (lateBound && method.result == VT_HRESULT) {
        elemdescFunc.tdesc.vt = VT_VOID;
    }
    lprgelemdescParam = cParams > 0 ? m_parameters : nullptr;
}

TYPEDESC FuncDesc::Describe(const ParameterRow& parameter, TYPEDESC (&pointedTo)[2]) noexcept {
    TYPEDESC description{};
    description.vt = parameter.vt;
    if (parameter.vt == VT_USERDEFINED) description.hreftype = parameter.target;
    for (unsigned i = 0; i < parameter.pointers; ++i) {
        pointedTo[i] = description;
        description = {};
        description.vt = VT_PTR;
        description.lptdesc = &pointedTo[i];
    }
    return description;
}

}  // namespace wnplatform::typelib
