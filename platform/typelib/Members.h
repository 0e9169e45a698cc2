// Finding an interface's members, its own and the inherited ones. Each answers null for none.
#pragma once

#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

const Method* MemberAtSlot(const Interface& interface_, UINT slot) noexcept;
const Method* MemberWithId(const Interface& interface_, MEMBERID id) noexcept;
const Method* MemberNamed(const Interface& interface_, const OLECHAR* name) noexcept;

// The one with the identifier that may be invoked in one of the wanted ways (DISPATCH_ flags).
const Method* MemberToInvoke(const Interface& interface_, MEMBERID id, WORD ways) noexcept;

// Named arguments go by their parameter's place, counted from 0; MEMBERID_NIL for none of that name.
MEMBERID ParameterNamed(const Method& method, const OLECHAR* name) noexcept;

}  // namespace wnplatform::typelib
