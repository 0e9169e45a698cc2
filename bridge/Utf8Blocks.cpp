#include "bridge/Utf8Blocks.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace wncom {
namespace {

// The sequences of a block are computed side by side, which compilers do for several units in one instruction, and
// then stored one over the end of the other: a sequence as a whole integer, little end first, whatever its length.
static_assert(std::endian::native == std::endian::little);

constexpr std::ptrdiff_t kBlock = 32;
constexpr std::ptrdiff_t kBlockRoom = kBlock * kLongestSequence + 1;

// The bitwise or of the units tells in which range all of them lie.
unsigned AnyOf(const WCHAR* units) noexcept {
    unsigned any = 0;
    for (std::ptrdiff_t i = 0; i != kBlock; ++i) any |= static_cast<std::uint16_t>(units[i]);
    return any;
}

char* CopyAscii(const WCHAR* units, char* bytes) noexcept {
    for (std::ptrdiff_t i = 0; i != kBlock; ++i) bytes[i] = static_cast<char>(units[i]);
    return bytes + kBlock;
}

// Of a unit below 0x800, two bytes long unless it is ASCII.
std::uint32_t TwoBytes(std::uint32_t u) noexcept { return 0x80C0 | (u >> 6) | ((u & 0x3F) << 8); }
std::uint32_t ThreeBytes(std::uint32_t u) noexcept {
    return 0x8080E0 | (u >> 12) | ((u << 2) & 0x3F00) | ((u & 0x3F) << 16);
}

// All units lie below 0x800. Two of them at a time and without branches, for where an accented letter stands cannot
// be foreseen.
char* EncodeShortBlock(const WCHAR* units, char* bytes) noexcept {
    constexpr std::ptrdiff_t kPairs = kBlock / 2;
    std::uint32_t sequences[kPairs];
    std::uint32_t lengths[kPairs];
    std::uint32_t pairs[kPairs];
    std::memcpy(pairs, units, sizeof pairs);
    for (std::ptrdiff_t i = 0; i != kPairs; ++i) {
        const std::uint32_t pair = pairs[i];
        const std::uint32_t two = 0x80C080C0 | ((pair >> 6) & 0x001F001F) | ((pair & 0x003F003F) << 8);
        // One in each half that is no ASCII.
        const std::uint32_t longer = ((pair + 0x7F807F80) >> 15) & 0x00010001;
        const std::uint32_t mask = (longer << 16) - longer;
        const std::uint32_t both = (pair & ~mask) | (two & mask);
        const std::uint32_t joined = (both & 0xFF) | ((both >> 8) & 0xFFFF00);
        const std::uint32_t firstMask = 0U - (longer & 1);
        sequences[i] = (both & firstMask) | (joined & ~firstMask);
        lengths[i] = 2 + (longer & 1) + (longer >> 16);
    }
    for (std::ptrdiff_t i = 0; i != kPairs; ++i) {
        std::memcpy(bytes, &sequences[i], sizeof sequences[i]);
        bytes += lengths[i];
    }
    return bytes;
}

// Whether all units of a run need three bytes. Four of them are looked at as one word: adding 0x1F to a unit's upper
// five bits carries into the next bit unless they are zero.
constexpr std::ptrdiff_t kRun = 8;
bool AllLong(const WCHAR* units) noexcept {
    constexpr std::uint64_t kEach = 0x0001000100010001;
    std::uint64_t words[kRun * sizeof(WCHAR) / sizeof(std::uint64_t)];
    std::memcpy(words, units, sizeof words);
    std::uint64_t all = kEach * 0x20;
    for (const std::uint64_t word : words) all &= ((word >> 11) & (kEach * 0x1F)) + kEach * 0x1F;
    return all == kEach * 0x20;
}

char* EncodeMixedBlock(const WCHAR* units, char* bytes) noexcept {
    static_assert(kBlock % kRun == 0);
    std::uint32_t sequences[kBlock];
    for (std::ptrdiff_t i = 0; i != kBlock; ++i) sequences[i] = ThreeBytes(static_cast<std::uint16_t>(units[i]));
    for (std::ptrdiff_t run = 0; run != kBlock; run += kRun) {
        if (AllLong(units + run)) {
            for (std::ptrdiff_t i = run; i != run + kRun; ++i, bytes += 3) {
                std::memcpy(bytes, &sequences[i], sizeof sequences[i]);
            }
            continue;
        }
        for (std::ptrdiff_t i = run; i != run + kRun; ++i) {
            const std::uint32_t u = static_cast<std::uint16_t>(units[i]);
            const std::uint32_t sequence = u < 0x80 ? u : u < 0x800 ? TwoBytes(u) : sequences[i];
            std::memcpy(bytes, &sequence, sizeof sequence);
            bytes += u < 0x80 ? 1 : u < 0x800 ? 2 : 3;
        }
    }
    return bytes;
}

// Writes at most kBlockRoom bytes, the last of them perhaps beyond the encoding's end.
char* EncodeBlock(const WCHAR* units, char* bytes) noexcept {
    const unsigned any = AnyOf(units);
    if (any < 0x80) return CopyAscii(units, bytes);
    return any < 0x800 ? EncodeShortBlock(units, bytes) : EncodeMixedBlock(units, bytes);
}

}  // namespace

std::ptrdiff_t EncodeBlocks(const WCHAR* units, std::ptrdiff_t count, char* bytes, std::ptrdiff_t capacity,
                            std::ptrdiff_t* written) noexcept {
    char* at = bytes;
    std::ptrdiff_t read = 0;
    for (; count - read >= kBlock && capacity - (at - bytes) >= kBlockRoom; read += kBlock) {
        at = EncodeBlock(units + read, at);
    }
    *written = at - bytes;
    const std::ptrdiff_t left = count - read;
    if (left <= 0 || left >= kBlock) return read;
    WCHAR lastUnits[kBlock] = {};
    char lastBytes[kBlockRoom];
    std::copy_n(units + read, left, lastUnits);
    const std::ptrdiff_t length = EncodeBlock(lastUnits, lastBytes) - lastBytes - (kBlock - left);
    if (length > capacity - *written) return read;
    std::memcpy(at, lastBytes, static_cast<std::size_t>(length));
    *written += length;
    return count;
}

}  // namespace wncom
