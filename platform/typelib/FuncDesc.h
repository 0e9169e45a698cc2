// A method as ITypeInfo describes it to callers.
#pragma once

#include "platform/typelib/Tables.h"

namespace wnplatform::typelib {

// The description with the memory that it points into.
class FuncDesc final : public FUNCDESC {
public:
    // A late-bound caller sees what the method hands back in place of its status.
    FuncDesc(const Tables& tables, const MethodRow& method, bool lateBound) noexcept;

    // Takes what the constructor made, as its base.
    static void Free(FUNCDESC* description) noexcept { delete static_cast<FuncDesc*>(description); }

private:
    static TYPEDESC Describe(const ParameterRow& parameter, TYPEDESC (&pointedTo)[2]) noexcept;

    ELEMDESC m_parameters[kMostParameters];
    TYPEDESC m_pointedTo[kMostParameters][2];
};

}  // namespace wnplatform::typelib
