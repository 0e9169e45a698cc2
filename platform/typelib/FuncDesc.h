// A method as ITypeInfo describes it to callers.
#pragma once

#include <deque>
#include <vector>

#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

// The description with the memory that it points into.
class FuncDesc final : public FUNCDESC {
public:
    // A late-bound caller sees what the method hands back in place of its status. Throws when memory runs out.
    static FUNCDESC* Make(const Method& method, bool lateBound) { return new FuncDesc(method, lateBound); }
    static void Free(FUNCDESC* description) noexcept { delete static_cast<FuncDesc*>(description); }

private:
    FuncDesc(const Method& method, bool lateBound);

    TYPEDESC Describe(const Type& type);

    std::vector<ELEMDESC> m_parameters;
    std::deque<TYPEDESC> m_pointedTo;  // stays where it is while growing
};

}  // namespace wnplatform::typelib
