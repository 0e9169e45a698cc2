#include "platform/text/CaseFold.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>

#include "platform/text/Utf8.h"

namespace wnplatform {
namespace {

constexpr unsigned char UpperAscii(unsigned char c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; }

char32_t Upper(char32_t c) noexcept {
    if (c < 0x80) return UpperAscii(static_cast<unsigned char>(c));
    // The process's own locale must not decide what is the same name, so the table of a fixed one is used.
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return unicode ? static_cast<char32_t>(towupper_l(static_cast<wint_t>(c), unicode)) : c;
}

char32_t TakeUpper(std::string_view& text) noexcept {
    const Utf8Character character = DecodeUtf8(text.data(), text.data() + text.size());
    // Above every character, so that two different invalid bytes never compare equal.
    const char32_t result =
        character.valid ? Upper(character.codePoint) : 0x110000U + static_cast<unsigned char>(text.front());
    text.remove_prefix(character.valid ? character.length : 1);
    return result;
}

}  // namespace

int CompareNames(std::string_view a, std::string_view b) noexcept {
    while (!a.empty() && !b.empty()) {
        const auto first = static_cast<unsigned char>(a.front());
        const auto second = static_cast<unsigned char>(b.front());
        if (first < 0x80 && second < 0x80) {
            const int difference = UpperAscii(first) - UpperAscii(second);
            if (difference != 0) return difference;
            a.remove_prefix(1);
            b.remove_prefix(1);
        } else {
            const char32_t left = TakeUpper(a);
            const char32_t right = TakeUpper(b);
            if (left != right) return left < right ? -1 : 1;
        }
    }
    return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

}  // namespace wnplatform
