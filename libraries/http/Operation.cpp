#include "libraries/http/Operation.h"

#include <objbase.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

#include "common/CodePageText.h"

namespace wncom::http {
namespace {

constexpr std::size_t kLongestId = 128;

// Sentences come with a line end, which is no part of them.
WideText SlotText(std::string_view text) {
    return Widen(CP_UTF8, text.substr(0, text.find_last_not_of(" \r\n") + 1));
}

}  // namespace

bool IsPlainId(std::string_view text) noexcept {
    return !text.empty() && text.size() <= kLongestId && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '_';
    });
}

std::string RequestIdHeader() {
    GUID guid;
    if (FAILED(CoCreateGuid(&guid))) throw std::runtime_error("cannot create a request id");
    std::string header = "Request-Id: ";
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&guid);
    for (std::size_t i = 0; i < sizeof(guid); ++i) {
        header += "0123456789abcdef"[bytes[i] >> 4];
        header += "0123456789abcdef"[bytes[i] & 0x0F];
    }
    return header;
}

void StoreText(BSTR* slot, std::string_view text) noexcept {
    if (!slot) return;
    try {
        const WideText wide = SlotText(text);
        if (!wide.empty()) *slot = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    } catch (const std::bad_alloc&) {
        // The caller learns of the failure all the same, without its reason.
    }
}

void StoreText(MallocSlot slot, std::string_view text) noexcept {
    if (!slot.place) return;
    try {
        const WideText wide = SlotText(text);
        const std::size_t bytes = (wide.size() + 1) * sizeof(WCHAR);
        auto* const copy = wide.empty() ? nullptr : static_cast<WCHAR*>(std::malloc(bytes));
        if (copy) *slot.place = static_cast<WCHAR*>(std::memcpy(copy, wide.c_str(), bytes));
    } catch (const std::bad_alloc&) {
        // As above.
    }
}

}  // namespace wncom::http
