// Writing bytes to descriptors of any sort.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace wnplatform {

// Writes all the bytes at the descriptor's position, whatever interrupts it; returns the number written. Fewer than
// given means that the rest failed with errno. A pipe without a reader fails with EPIPE and raises no signal.
std::size_t WriteAll(int descriptor, const void* bytes, std::size_t count, bool maySignal) noexcept;
// As WriteAll, at an offset; the descriptor's position stays.
std::size_t WriteAllAt(int descriptor, const void* bytes, std::size_t count, off_t offset) noexcept;
// As WriteAll for a regular file: to its end, wherever that is when the bytes are written. The position follows.
std::size_t AppendAll(int descriptor, const void* bytes, std::size_t count) noexcept;

}  // namespace wnplatform
