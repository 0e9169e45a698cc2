#include "platform/text/Utf8Runs.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace wnplatform {
namespace {

static_assert(std::endian::native == std::endian::little);

constexpr std::ptrdiff_t kBlock = 32;

enum class Content { Ascii, Short, Other };

// Short: no byte leads a character of more than two.
Content ContentOf(const std::uint8_t* bytes) noexcept {
    std::uint8_t any = 0;
    std::uint8_t longer = 0;
    for (std::ptrdiff_t i = 0; i != kBlock; ++i) {
        any = static_cast<std::uint8_t>(any | bytes[i]);
        longer = static_cast<std::uint8_t>(longer | (bytes[i] & bytes[i] << 1 & bytes[i] << 2));
    }
    if (any < 0x80) return Content::Ascii;
    return longer < 0x80 ? Content::Short : Content::Other;
}

// A block of characters of one and two bytes. Each byte's unit is computed as if a character began there, side by
// side, and the units of trailing bytes are then written over: where an accented letter stands cannot be foreseen.
// The block begins with a character, and at least one byte follows it. False when a character is not valid.
bool WidenShortBlock(const std::uint8_t*& at, WCHAR*& units) noexcept {
    std::uint16_t found[kBlock];
    std::uint16_t begins[kBlock];
    std::uint16_t wrong = 0;
    for (std::ptrdiff_t i = 0; i != kBlock; ++i) {
        const std::uint16_t byte = at[i];
        const std::uint16_t next = at[i + 1];
        const auto leads = static_cast<std::uint16_t>(byte >> 7 & byte >> 6);
        const auto nextTrails = static_cast<std::uint16_t>(next >> 7 & ~(next >> 6));
        // 0xC0 and 0xC1 would begin over-long forms.
        const auto overLong = static_cast<std::uint16_t>((byte & 0xFE) == 0xC0);
        wrong = static_cast<std::uint16_t>(wrong | overLong | (leads ^ (nextTrails & 1)));
        const auto mask = static_cast<std::uint16_t>(0 - leads);
        const auto two = static_cast<std::uint16_t>((byte & 0x1F) << 6 | (next & 0x3F));
        found[i] = static_cast<std::uint16_t>((two & mask) | (byte & ~mask));
        begins[i] = static_cast<std::uint16_t>(1 - (byte >> 7 & ~(byte >> 6)));
    }
    if (wrong != 0 || begins[0] == 0) return false;
    for (std::ptrdiff_t i = 0; i != kBlock; ++i) {
        *units = static_cast<WCHAR>(found[i]);
        units += begins[i];
    }
    at += kBlock + (at[kBlock - 1] >= 0xC0 ? 1 : 0);
    return true;
}

// Characters of three bytes that follow one another.
Utf8Run WidenLongRun(const std::uint8_t* begin, const std::uint8_t* end, WCHAR* units) noexcept {
    std::size_t count = 0;
    for (const std::uint8_t* at = begin; end - at >= 4; at += 3, ++count) {
        std::uint32_t next;
        std::memcpy(&next, at, sizeof next);
        const std::uint32_t unit = ((next & 0xF) << 12) | ((next >> 2) & 0xFC0) | ((next >> 16) & 0x3F);
        if ((next & 0xC0C0F0) != 0x8080E0 || unit < 0x800 || (unit & 0xF800) == 0xD800) break;
        units[count] = static_cast<WCHAR>(unit);
    }
    return {3 * count, count};
}

}  // namespace

Utf8Run WidenUtf8Run(const char* begin, const char* end, WCHAR* units) noexcept {
    const auto* const first = reinterpret_cast<const std::uint8_t*>(begin);
    const auto* const last = reinterpret_cast<const std::uint8_t*>(end);
    const auto* at = first;
    WCHAR* out = units;
    while (last - at > kBlock) {
        const Utf8Run run = WidenLongRun(at, last, out);
        at += run.bytes;
        out += run.units;
        if (last - at <= kBlock) break;
        const Content content = ContentOf(at);
        if (content == Content::Ascii) {
            for (std::ptrdiff_t i = 0; i != kBlock; ++i) out[i] = at[i];
            at += kBlock;
            out += kBlock;
        } else if (content == Content::Short) {
            if (!WidenShortBlock(at, out)) break;
        } else if (*at < 0x80) {
            while (*at < 0x80) *out++ = *at++;
        } else {
            break;
        }
    }
    return {static_cast<std::size_t>(at - first), static_cast<std::size_t>(out - units)};
}

}  // namespace wnplatform
