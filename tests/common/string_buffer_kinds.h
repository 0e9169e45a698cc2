// The storage kinds that buffer tests run with, and how they look at a buffer.
#pragma once

#include <cstdlib>
#include <string>

#include "common/CPWStringBuffer.h"

namespace wncom::test {

using WideText = std::basic_string<WCHAR>;

// Fails when told to.
struct FailingAllocator {
    static inline int allocationsToFailure = 0;  // 0: none fails
    static inline bool failed = false;

    static WCHAR* Allocate(std::size_t capacity) noexcept {
        if (allocationsToFailure > 0 && --allocationsToFailure == 0) {
            failed = true;
            return nullptr;
        }
        return CPHeapAllocator::Allocate(capacity);
    }
    static void Release(WCHAR* storage) noexcept { CPHeapAllocator::Release(storage); }
};

// What the buffer holds; empty without storage.
template <class Buffer>
WideText TextOf(const Buffer& buffer) {
    return buffer.Text() ? WideText(buffer.Text()) : WideText();
}

// A text of that length without a repetition that could hide a shift.
inline WideText Letters(std::size_t length) {
    WideText text;
    for (std::size_t i = 0; i < length; ++i) text.push_back(static_cast<WCHAR>('a' + (i + i / 26) % 26));
    return text;
}

}  // namespace wncom::test
