// Where exceptions end: the bodies of COM methods and exports.
#pragma once

#include <windows.h>

#include <new>
#include <utility>

namespace wncom {

// Runs a body that answers an HRESULT and turns an exception out of it into one: out of memory into E_OUTOFMEMORY,
// anything else into E_UNEXPECTED.
template <class Body>
HRESULT Guarded(Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace wncom
