#include "platform/typelib/Members.h"

#include "platform/typelib/Texts.h"

namespace wnplatform::typelib {
namespace {

template <class Wanted>
const MethodRow* Find(const Tables& tables, const TypeRow& type, Wanted wanted) noexcept {
    if (type.isClass != 0) return nullptr;
    for (const TypeRow* owner = &type;; owner = &tables.types[owner->base]) {
        const MethodRow* method = tables.methods.data() + owner->first;
        for (const MethodRow* end = method + owner->count; method != end; ++method) {
            if (wanted(*method)) return method;
        }
        if (owner->base == kNone) return nullptr;
    }
}

}  // namespace

const MethodRow* MemberAtSlot(const Tables& tables, const TypeRow& type, UINT slot) noexcept {
    return Find(tables, type, [&](const MethodRow& method) { return method.slot == slot; });
}

const MethodRow* MemberWithId(const Tables& tables, const TypeRow& type, MEMBERID id) noexcept {
    return Find(tables, type, [&](const MethodRow& method) { return method.id == id; });
}

const MethodRow* MemberNamed(const Tables& tables, const TypeRow& type, const OLECHAR* name) noexcept {
    return Find(tables, type, [&](const MethodRow& method) { return SameName(name, tables.Text(method.name)); });
}

const MethodRow* MemberToInvoke(const Tables& tables, const TypeRow& type, MEMBERID id, WORD ways) noexcept {
    return Find(tables, type, [&](const MethodRow& method) {
        return method.id == id && (method.kind & ways) != 0 && (method.flags & FUNCFLAG_FRESTRICTED) == 0;
    });
}

MEMBERID ParameterNamed(const Tables& tables, const MethodRow& method, const OLECHAR* name) noexcept {
    for (std::uint32_t i = 0; i < method.parameterCount; ++i) {
        if (SameName(name, tables.Text(tables.ParametersOf(method)[i].name))) return static_cast<MEMBERID>(i);
    }
    return MEMBERID_NIL;
}

}  // namespace wnplatform::typelib
