// What a security descriptor says about who may open a new object.
#pragma once

#include "winbase.h"

namespace wnplatform {

// True when the attributes hold a descriptor whose access list is present and null.
bool EveryoneMayOpen(const SECURITY_ATTRIBUTES* attributes) noexcept;

}  // namespace wnplatform
