// Between CPWStringBuffer's text and the C locale's multibyte form.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "common/CPWStringBuffer.h"
#include "wncom/Logging.h"

namespace wncom {

inline constexpr std::size_t kUnconvertible = static_cast<std::size_t>(-1);

inline void LogUnconvertible(const char* what, int line) noexcept {
    WNCOM_LOG(1, "Assertion failed: %s, file %s, line %d", what, __FILE_NAME__, line);
}

// The characters that a multibyte text needs with its terminator; 0 when it cannot be converted.
inline std::size_t MeasureWide(const char* text) noexcept {
    const std::size_t mbcstrsize = mbstowcs(static_cast<WCHAR*>(nullptr), text, 0) + 1;
    if (mbcstrsize == kUnconvertible + 1) LogUnconvertible("mbcstrsize", __LINE__);
    return mbcstrsize;
}

template <class Allocator>
CPWStringBuffer<Allocator>& CPWStringBuffer<Allocator>::Assign(const char* text) noexcept {
    if (!text || !*text) {
        Erase();
        return *this;
    }
    const std::size_t mbcstrsize = MeasureWide(text);
    if (mbcstrsize == 0) return *this;
    Former former;
    if (!mBuffer || Capacity() <= mbcstrsize) {
        former = TakeOut();
        if (!Allocate(mbcstrsize, true)) return *this;
    }
    const std::size_t offset = NearestOffset((Capacity() - mbcstrsize) / 2);
    ConvertTo(offset, text);
    SetOffset(offset);
    return *this;
}

template <class Allocator>
CPWStringBuffer<Allocator>& CPWStringBuffer<Allocator>::Append(const char* text) noexcept {
    if (!text || !*text) return *this;
    const std::size_t mbcstrsize = MeasureWide(text);
    if (mbcstrsize == 0) return *this;
    if (!mBuffer) return Assign(text);
    const std::size_t length = Length();
    const Former former = MakeRoom(length + mbcstrsize);
    if (mBuffer) ConvertTo(Offset() + length, text);
    return *this;
}

// Writes a measured text into the storage from a character on, with room up to the storage's end.
template <class Allocator>
void CPWStringBuffer<Allocator>::ConvertTo(std::size_t start, const char* text) noexcept {
    const std::size_t room = Capacity() - start;
    // What was measured converts; were it otherwise, nothing is added.
    if (mbstowcs(mBuffer + start, text, room) >= room) mBuffer[start] = 0;
}

template <class Allocator>
const char* CPWStringBuffer<Allocator>::GetMultiByte(const char* defaultText) noexcept {
    using Header = std::uint32_t;  // the usable size in bytes
    constexpr std::size_t kSpare = 32;
    constexpr std::size_t kUsableSpare = 24;

    if (Length() == 0) {
        ReleaseMultiByte();
        return defaultText;
    }
    const std::size_t mbstrRequired = wcstombs(nullptr, Text(), 0) + 1;
    if (mbstrRequired == kUnconvertible + 1) {
        LogUnconvertible("mbstrRequired", __LINE__);
        ReleaseMultiByte();
        return defaultText;
    }
    Header usable = 0;
    if (mMultiByte) std::memcpy(&usable, mMultiByte, sizeof(usable));
    if (usable <= mbstrRequired) {
        ReleaseMultiByte();
        if (mbstrRequired > std::numeric_limits<Header>::max() - kSpare) return defaultText;
        mMultiByte = static_cast<BYTE*>(std::malloc(sizeof(Header) + mbstrRequired + kSpare));
        if (!mMultiByte) return defaultText;
        usable = static_cast<Header>(mbstrRequired + kUsableSpare);
        std::memcpy(mMultiByte, &usable, sizeof(usable));
    }
    char* text = reinterpret_cast<char*>(mMultiByte + sizeof(Header));
    // The measure above need not have looked at the characters.
    if (wcstombs(text, Text(), usable) >= usable) {
        LogUnconvertible("mbstrRequired", __LINE__);
        ReleaseMultiByte();
        return defaultText;
    }
    return text;
}

}  // namespace wncom
