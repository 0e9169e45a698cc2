// The encoder's fast path: many characters at a time.
#pragma once

#include <windows.h>

#include <cstddef>

namespace wncom {

inline constexpr std::ptrdiff_t kLongestSequence = 3;  // bytes of a unit in UTF-8

// Encodes units in blocks while a block is sure to fit into the capacity, and what is left after them when it is
// less than a block and fits. Stores the number of bytes written and returns the number of units read; the rest is
// for the plain loop. What the room holds after the written bytes is undefined.
std::ptrdiff_t EncodeBlocks(const WCHAR* units, std::ptrdiff_t count, char* bytes, std::ptrdiff_t capacity,
                            std::ptrdiff_t* written) noexcept;

}  // namespace wncom
