#include "platform/com/GuidText.h"

namespace wnplatform {
namespace {

// The places of the 16 bytes in the order in which their digits stand in the text.
constexpr std::size_t kPlaces[16] = {1, 3, 5, 7, 10, 12, 15, 17, 20, 22, 25, 27, 29, 31, 33, 35};
constexpr char kForm[] = "{00000000-0000-0000-0000-000000000000}";
static_assert(sizeof(kForm) == kGuidTextLength + 1);

std::array<std::uint8_t, 16> BytesInTextOrder(REFGUID guid) {
    const auto byte = [](std::uint32_t number, unsigned shift) { return static_cast<std::uint8_t>(number >> shift); };
    std::array<std::uint8_t, 16> bytes{byte(guid.Data1, 24), byte(guid.Data1, 16), byte(guid.Data1, 8),
                                       byte(guid.Data1, 0),  byte(guid.Data2, 8),  byte(guid.Data2, 0),
                                       byte(guid.Data3, 8),  byte(guid.Data3, 0)};
    std::memcpy(&bytes[8], guid.Data4, sizeof guid.Data4);
    return bytes;
}

// -1 for what is no digit.
int Digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const int letter = c | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

}  // namespace

std::array<char, kGuidTextLength> TextOfGuid(REFGUID guid) noexcept {
    constexpr char digits[] = "0123456789ABCDEF";
    std::array<char, kGuidTextLength> text;
    std::memcpy(text.data(), kForm, text.size());
    const auto bytes = BytesInTextOrder(guid);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text[kPlaces[i]] = digits[bytes[i] >> 4];
        text[kPlaces[i] + 1] = digits[bytes[i] & 0xF];
    }
    return text;
}

std::optional<GUID> GuidOfText(std::string_view text) noexcept {
    if (text.size() != kGuidTextLength) return std::nullopt;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool fits = kForm[i] == '0' ? Digit(text[i]) >= 0 : text[i] == kForm[i];
        if (!fits) return std::nullopt;
    }
    std::uint8_t bytes[16];
    for (std::size_t i = 0; i < sizeof bytes; ++i) {
        bytes[i] = static_cast<std::uint8_t>(Digit(text[kPlaces[i]]) * 16 + Digit(text[kPlaces[i] + 1]));
    }
    GUID guid;
    guid.Data1 =
        (std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) | (std::uint32_t{bytes[2]} << 8) | bytes[3];
    guid.Data2 = static_cast<std::uint16_t>((bytes[4] << 8) | bytes[5]);
    guid.Data3 = static_cast<std::uint16_t>((bytes[6] << 8) | bytes[7]);
    std::memcpy(guid.Data4, &bytes[8], sizeof guid.Data4);
    return guid;
}

}  // namespace wnplatform
