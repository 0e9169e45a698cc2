#include "platform/typelib/Members.h"

#include "platform/typelib/Texts.h"

namespace wnplatform::typelib {
namespace {

template <class Wanted>
const Method* Find(const Interface& interface_, Wanted wanted) noexcept {
    for (const Interface* owner = &interface_; owner; owner = owner->base) {
        for (const Method& method : owner->methods) {
            if (wanted(method)) return &method;
        }
    }
    return nullptr;
}

}  // namespace

const Method* MemberAtSlot(const Interface& interface_, UINT slot) noexcept {
    return Find(interface_, [&](const Method& method) { return method.slot == slot; });
}

const Method* MemberWithId(const Interface& interface_, MEMBERID id) noexcept {
    return Find(interface_, [&](const Method& method) { return method.id == id; });
}

const Method* MemberNamed(const Interface& interface_, const OLECHAR* name) noexcept {
    return Find(interface_, [&](const Method& method) { return SameName(name, method.name); });
}

const Method* MemberToInvoke(const Interface& interface_, MEMBERID id, WORD ways) noexcept {
    return Find(interface_, [&](const Method& method) {
        return method.id == id && (method.kind & ways) != 0 && (method.flags & FUNCFLAG_FRESTRICTED) == 0;
    });
}

MEMBERID ParameterNamed(const Method& method, const OLECHAR* name) noexcept {
    for (std::size_t i = 0; i < method.parameters.size(); ++i) {
        if (SameName(name, method.parameters[i].name)) return static_cast<MEMBERID>(i);
    }
    return MEMBERID_NIL;
}

}  // namespace wnplatform::typelib
