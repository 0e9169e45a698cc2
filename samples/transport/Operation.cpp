#include "samples/transport/Operation.h"

#include <cstdlib>
#include <cstring>

#include "samples/transport/Texts.h"

namespace sample {

void StoreText(BSTR* slot, std::string_view text) noexcept {
    if (!slot) return;
    try {
        *slot = SysAllocString(Widened(text).c_str());
    } catch (const std::exception&) {
        *slot = nullptr;
    }
}

WCHAR* MallocText(std::string_view text) noexcept {
    try {
        const std::basic_string<WCHAR> wide = Widened(text);
        const std::size_t bytes = (wide.size() + 1) * sizeof(WCHAR);
        void* const memory = std::malloc(bytes);
        return memory ? static_cast<WCHAR*>(std::memcpy(memory, wide.c_str(), bytes)) : nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace sample
