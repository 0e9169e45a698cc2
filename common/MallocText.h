// The owner of a text on the C runtime heap, as texts cross from one layer to the next.
#pragma once

#include <cstdlib>
#include <memory>

namespace wncom {

struct MallocDeleter {
    void operator()(void* memory) const noexcept { std::free(memory); }
};

// Owns one zero-terminated text from the malloc family, or null, and frees it.
template <class Char>
using MallocText = std::unique_ptr<Char[], MallocDeleter>;

}  // namespace wncom
