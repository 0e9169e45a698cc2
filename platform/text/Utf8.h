// UTF-8, one character at a time.
#pragma once

#include <cstddef>

namespace wnplatform {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

struct Utf8Character {
    char32_t codePoint;  // U+FFFD where the bytes are not valid
    std::size_t length;  // bytes taken, at least 1; of an invalid run the lead with the trailing bytes read so far
    bool valid;
};

// Reads the character that begins at a place that is not the end.
Utf8Character DecodeUtf8(const char* at, const char* end) noexcept;

// Writes a character's bytes and returns their number. The code point is no surrogate and at most U+10FFFF.
std::size_t EncodeUtf8(char32_t codePoint, char (&bytes)[4]) noexcept;

}  // namespace wnplatform
