#include "platform/sync/Security.h"

#include "platform/core/Errors.h"

namespace {

// Bits of a descriptor's Control.
constexpr WORD kDaclPresent = 0x0004;
constexpr WORD kDaclDefaulted = 0x0008;

}  // namespace

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision) {
    if (!descriptor) return wnplatform::Fail(ERROR_INVALID_PARAMETER);
    if (revision != SECURITY_DESCRIPTOR_REVISION) return wnplatform::Fail(ERROR_UNKNOWN_REVISION);
    *static_cast<SECURITY_DESCRIPTOR*>(descriptor) = {SECURITY_DESCRIPTOR_REVISION, 0, 0, nullptr};
    return TRUE;
}

BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL list, BOOL defaulted) {
    auto* target = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
    if (!target) return wnplatform::Fail(ERROR_INVALID_PARAMETER);
    if (target->Revision != SECURITY_DESCRIPTOR_REVISION) return wnplatform::Fail(ERROR_UNKNOWN_REVISION);
    target->Control = present ? static_cast<WORD>(kDaclPresent | (defaulted ? kDaclDefaulted : 0)) : WORD{0};
    target->Dacl = present ? list : nullptr;
    return TRUE;
}

namespace wnplatform {

bool EveryoneMayOpen(const SECURITY_ATTRIBUTES* attributes) noexcept {
    if (!attributes || !attributes->lpSecurityDescriptor) return false;
    const auto* descriptor = static_cast<const SECURITY_DESCRIPTOR*>(attributes->lpSecurityDescriptor);
    return (descriptor->Control & kDaclPresent) != 0 && !descriptor->Dacl;
}

}  // namespace wnplatform
