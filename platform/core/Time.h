// Clocks for waits.
#pragma once

#include "windef.h"

namespace wnplatform {

// From an arbitrary start, never set back.
LONGLONG MonotonicMilliseconds() noexcept;

}  // namespace wnplatform
