// The border between the layer's own code and its callers.
#pragma once

#include <new>
#include <type_traits>

#include "platform/core/Errors.h"

namespace wnplatform {

// Runs the body of a function of the layer. What it throws, which is memory that ran out, becomes the failure value
// and a last error.
template <class Body>
std::invoke_result_t<Body> Guarded(std::invoke_result_t<Body> failure, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}

}  // namespace wnplatform
