#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "oleauto.h"
#include "winnls.h"
#include "wnplatform/inspect.h"

namespace {

// The length stands right before the text. The block starts a little earlier, so that the text keeps an alignment of
// eight bytes.
struct Header {
    std::uint32_t padding;
    std::uint32_t bytes;
};
static_assert(sizeof(Header) == 8);

std::atomic<long> g_live{0};

BSTR Allocate(std::size_t bytes) {
    // Room for the header, a terminator of two bytes and the rounding to whole units.
    constexpr std::size_t limit = std::numeric_limits<std::uint32_t>::max() - 16;
    if (bytes > limit) return nullptr;
    const std::size_t whole = (bytes + 1) & ~std::size_t{1};
    void* const block = std::malloc(sizeof(Header) + whole + sizeof(OLECHAR));
    if (!block) return nullptr;
    auto* const header = static_cast<Header*>(block);
    *header = {0, static_cast<std::uint32_t>(bytes)};
    char* const text = static_cast<char*>(block) + sizeof(Header);
    std::memset(text + bytes, 0, whole - bytes + sizeof(OLECHAR));
    g_live.fetch_add(1, std::memory_order_relaxed);
    return reinterpret_cast<BSTR>(text);
}

Header* HeaderOf(BSTR text) { return reinterpret_cast<Header*>(text) - 1; }

BSTR Copy(const void* source, std::size_t bytes) {
    const BSTR text = Allocate(bytes);
    if (text && source) std::memcpy(text, source, bytes);
    return text;
}

}  // namespace

namespace wnplatform {

long LiveTexts() noexcept { return g_live.load(std::memory_order_relaxed); }

}  // namespace wnplatform

BSTR SysAllocString(const OLECHAR* text) { return text ? Copy(text, wcslen(text) * sizeof(OLECHAR)) : nullptr; }

BSTR SysAllocStringLen(const OLECHAR* text, UINT units) { return Copy(text, std::size_t{units} * sizeof(OLECHAR)); }

BSTR SysAllocStringByteLen(LPCSTR bytes, UINT count) { return Copy(bytes, count); }

void SysFreeString(BSTR text) {
    if (!text) return;
    g_live.fetch_sub(1, std::memory_order_relaxed);
    std::free(HeaderOf(text));
}

UINT SysStringByteLen(BSTR text) { return text ? HeaderOf(text)->bytes : 0; }

UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / UINT{sizeof(OLECHAR)}; }
