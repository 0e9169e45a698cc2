#include "platform/text/Utf8.h"

namespace wnplatform {

Utf8Character DecodeUtf8(const char* at, const char* end) noexcept {
    const auto byte = [at](std::size_t index) { return static_cast<unsigned char>(at[index]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};

    std::size_t trailing = 0;
    char32_t codePoint = 0;
    // The second byte's range is narrower after some leads: this shuts out overlong forms, surrogates and what lies
    // above U+10FFFF.
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        trailing = 1;
        codePoint = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        trailing = 2;
        codePoint = lead & 0x0FU;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        trailing = 3;
        codePoint = lead & 0x07U;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return {kReplacementCharacter, 1, false};
    }

    const auto available = static_cast<std::size_t>(end - at);
    for (std::size_t i = 1; i <= trailing; ++i) {
        if (i >= available || byte(i) < 0x80 || byte(i) > 0xBF) return {kReplacementCharacter, i, false};
        // Windows counts the trailing byte that rules the lead out as a part of the same run.
        if (byte(i) < low || byte(i) > high) return {kReplacementCharacter, i + 1, false};
        codePoint = (codePoint << 6) | (byte(i) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {codePoint, trailing + 1, true};
}

std::size_t EncodeUtf8(char32_t codePoint, char (&bytes)[4]) noexcept {
    const auto trail = [codePoint](unsigned shift) {
        return static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F));
    };
    if (codePoint < 0x80) {
        bytes[0] = static_cast<char>(codePoint);
        return 1;
    }
    if (codePoint < 0x800) {
        bytes[0] = static_cast<char>(0xC0 | (codePoint >> 6));
        bytes[1] = trail(0);
        return 2;
    }
    if (codePoint < 0x10000) {
        bytes[0] = static_cast<char>(0xE0 | (codePoint >> 12));
        bytes[1] = trail(6);
        bytes[2] = trail(0);
        return 3;
    }
    bytes[0] = static_cast<char>(0xF0 | (codePoint >> 18));
    bytes[1] = trail(12);
    bytes[2] = trail(6);
    bytes[3] = trail(0);
    return 4;
}

}  // namespace wnplatform
