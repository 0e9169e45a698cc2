#include "bridge/TextConversions.h"

#include <wchar.h>

#include <climits>
#include <cstdint>
#include <cstring>

#include "bridge/Utf8Blocks.h"
#include "wncom/Logging.h"

namespace wncom {
namespace {

// Returns the sequence's length.
std::ptrdiff_t Encode(WCHAR unit, char (&sequence)[kLongestSequence]) noexcept {
    const std::uint32_t u = static_cast<std::uint16_t>(unit);
    if (u < 0x80) {
        sequence[0] = static_cast<char>(u);
        return 1;
    }
    if (u < 0x800) {
        sequence[0] = static_cast<char>(0xC0 | (u >> 6));
        sequence[1] = static_cast<char>(0x80 | (u & 0x3F));
        return 2;
    }
    sequence[0] = static_cast<char>(0xE0 | (u >> 12));
    sequence[1] = static_cast<char>(0x80 | ((u >> 6) & 0x3F));
    sequence[2] = static_cast<char>(0x80 | (u & 0x3F));
    return 3;
}

bool Continues(std::uint32_t byte) noexcept { return (byte & 0xC0) == 0x80; }

}  // namespace

int u16_utf8(const WCHAR* units, std::ptrdiff_t count, char* bytes, std::ptrdiff_t capacity,
             std::ptrdiff_t* written) noexcept {
    std::ptrdiff_t read = EncodeBlocks(units, count, bytes, capacity, written);
    std::ptrdiff_t lacking = 0;
    capacity -= *written;
    while (read < count && capacity > 0) {
        char sequence[kLongestSequence];
        const std::ptrdiff_t length = Encode(units[read++], sequence);
        if (length > capacity) {
            lacking = length - capacity;
            break;
        }
        std::memcpy(bytes + *written, sequence, static_cast<std::size_t>(length));
        *written += length;
        capacity -= length;
    }
    return read < count ? 4 : static_cast<int>(lacking);
}

MallocText<char> WCharToUtf8(const WCHAR* text) noexcept {
    if (!text) return nullptr;
    const std::size_t units = wcslen(text);
    if (units > (PTRDIFF_MAX - 1) / kLongestSequence) return nullptr;
    const std::size_t capacity = units * kLongestSequence + 1;
    MallocText<char> encoded(static_cast<char*>(std::malloc(capacity)));
    if (!encoded) return nullptr;
    std::ptrdiff_t written = 0;
    u16_utf8(text, static_cast<std::ptrdiff_t>(units), encoded.get(), static_cast<std::ptrdiff_t>(capacity),
             &written);
    encoded[static_cast<std::size_t>(written)] = '\0';
    return encoded;
}

int utf8_u16(const char* bytes, std::ptrdiff_t count, std::ptrdiff_t* consumed, WCHAR* units,
             std::ptrdiff_t capacity) noexcept {
    *consumed = 0;
    std::ptrdiff_t stored = 0;
    while (*consumed < count) {
        if (stored >= capacity) return 1;
        const auto* next = reinterpret_cast<const unsigned char*>(bytes) + *consumed;
        const std::ptrdiff_t left = count - *consumed;
        const std::uint32_t b0 = next[0];
        std::uint32_t unit = b0;
        std::ptrdiff_t length = 1;
        if ((b0 & 0xE0) == 0xC0) {
            length = 2;
            if (left < length) return 2;
            const std::uint32_t b1 = next[1];
            if (!Continues(b1)) {
                Log(1,
                    "utf8_u16 Error: Illegal UTF8 sequence --        Second byte of 2-byte sequence cannot be 0x%02X\n",
                    b1);
                return -2;
            }
            unit = ((b0 & 0x1F) << 6) | (b1 & 0x3F);
        } else if ((b0 & 0xF0) == 0xE0) {
            length = 3;
            if (left < length) return 3;
            const std::uint32_t b1 = next[1];
            if (!Continues(b1)) {
                Log(1,
                    "utf8_u16 Error: Illegal UTF8 sequence --        Second byte of 3-byte sequence cannot be 0x%02X\n",
                    b1);
                return -2;
            }
            const std::uint32_t b2 = next[2];
            if (!Continues(b2)) {
                Log(1,
                    "utf8_u16 Error: Illegal UTF8 sequence --        Third byte of 3-byte sequence cannot be 0x%02X\n",
                    b2);
                return -3;
            }
            unit = ((b0 & 0x0F) << 12) | ((b1 & 0x3F) << 6) | (b2 & 0x3F);
        } else if (b0 >= 0x80) {
            Log(1, "utf8_u16 Error: Illegal UTF8 sequence --        Sequence cannot start with 0x%02X\n", b0);
            return -1;
        }
        *consumed += length;
        units[stored++] = static_cast<WCHAR>(unit);
    }
    return 0;
}

MallocText<WCHAR> Utf8ToWChar(const char* text) noexcept {
    if (!text) return nullptr;
    const std::size_t bytes = std::strlen(text);
    MallocText<WCHAR> decoded(static_cast<WCHAR*>(std::calloc(bytes + 1, sizeof(WCHAR))));
    if (!decoded) return nullptr;
    const auto count = static_cast<std::ptrdiff_t>(bytes);
    std::ptrdiff_t consumed = 0;
    utf8_u16(text, count, &consumed, decoded.get(), count);
    return decoded;
}

CString CharToCString(const char* text) {
    WNCOM_LOG(4, "In CharToCString, str is %s", text);
    CString value(text);
    WNCOM_LOG(4, "In CharToCString, result is %S", CStringToWChar(value).get());
    return value;
}

MallocText<WCHAR> CStringToWChar(const CString& value) noexcept {
    if (value.length() > INT_MAX) return nullptr;
    const int bytes = static_cast<int>(value.length());
    // A narrow code page has no character of more UTF-16 units than bytes.
    MallocText<WCHAR> wide(static_cast<WCHAR*>(std::malloc((value.length() + 1) * sizeof(WCHAR))));
    if (!wide) return nullptr;
    const int units = bytes > 0 ? MultiByteToWideChar(CP_ACP, 0, value.c_str(), bytes, wide.get(), bytes) : 0;
    wide[static_cast<std::size_t>(units)] = 0;
    return wide;
}

}  // namespace wncom
