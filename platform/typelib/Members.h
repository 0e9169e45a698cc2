// Finding an interface's members, its own and the inherited ones. Each answers null for none.
#pragma once

#include "platform/typelib/Tables.h"

namespace wnplatform::typelib {

const MethodRow* MemberAtSlot(const Tables& tables, const TypeRow& type, UINT slot) noexcept;
const MethodRow* MemberWithId(const Tables& tables, const TypeRow& type, MEMBERID id) noexcept;
const MethodRow* MemberNamed(const Tables& tables, const TypeRow& type, const OLECHAR* name) noexcept;

// The one with the identifier that may be invoked in one of the wanted ways (DISPATCH_ flags).
const MethodRow* MemberToInvoke(const Tables& tables, const TypeRow& type, MEMBERID id, WORD ways) noexcept;

// Named arguments go by their parameter's place, counted from 0; MEMBERID_NIL for none of that name.
MEMBERID ParameterNamed(const Tables& tables, const MethodRow& method, const OLECHAR* name) noexcept;

}  // namespace wnplatform::typelib
