#include "platform/text/CodePage1252.h"

#include <algorithm>
#include <iterator>

namespace wnplatform {
namespace {

constexpr unsigned char kFirst = 0x80;

// The bytes 0x80 to 0x9F; all others are their own number.
constexpr WCHAR kCharacters[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

}  // namespace

WCHAR WideFrom1252(unsigned char byte) noexcept {
    const bool special = byte >= kFirst && byte < kFirst + std::size(kCharacters);
    return special ? kCharacters[byte - kFirst] : byte;
}

std::optional<unsigned char> Narrow1252(WCHAR unit) noexcept {
    if (unit < kFirst || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<unsigned char>(unit);
    const auto* found = std::find(std::begin(kCharacters), std::end(kCharacters), unit);
    if (found == std::end(kCharacters)) return std::nullopt;
    return static_cast<unsigned char>(kFirst + (found - std::begin(kCharacters)));
}

}  // namespace wnplatform
