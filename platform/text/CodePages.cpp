#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <type_traits>

#include "platform/core/Errors.h"
#include "platform/registry/Registry.h"
#include "platform/text/CodePage1252.h"
#include "platform/text/Texts.h"
#include "platform/text/Utf8.h"
#include "platform/text/Utf8Runs.h"
#include "winnls.h"

namespace wnplatform {
namespace {

constexpr UINT kWestern = 1252;
constexpr UINT kUnknown = 0;

// The page that a parameter stands for; kUnknown for one that is not offered.
UINT Resolve(UINT codePage) {
    switch (codePage) {
        case CP_ACP:
        case CP_THREAD_ACP:
            return GetACP();
        case kWestern:
        case CP_UTF8:
            return codePage;
        default:
            return kUnknown;
    }
}

// Counts everything, and writes as long as there is room.
template <class Unit>
class Output {
public:
    Output(Unit* place, int capacity) noexcept : m_place(place), m_capacity(static_cast<std::size_t>(capacity)) {}

    void Put(Unit unit) noexcept {
        if (m_used < m_capacity) m_place[m_used] = unit;
        ++m_used;
    }
    // Puts the units at the start of a source that are the same in the destination, and returns where they end. They
    // are looked at in blocks, because nearly all text is nothing else.
    template <class SourceUnit, class IsSame>
    const SourceUnit* PutRun(const SourceUnit* const begin, const SourceUnit* const end, IsSame isSame) noexcept {
        constexpr std::ptrdiff_t block = 32;
        const SourceUnit* run = begin;
        while (end - run >= block && AllOfBlock<block>(run, isSame)) run += block;
        while (run != end && isSame(*run)) ++run;
        const auto length = static_cast<std::size_t>(run - begin);
        if (m_used < m_capacity) {
            const auto* const last = begin + std::min(length, m_capacity - m_used);
            std::transform(begin, last, m_place + m_used,
                           [](SourceUnit unit) { return static_cast<Unit>(std::make_unsigned_t<SourceUnit>(unit)); });
        }
        m_used += length;
        return run;
    }
    template <class SourceUnit>
    const SourceUnit* PutAscii(const SourceUnit* const begin, const SourceUnit* const end) noexcept {
        return PutRun(begin, end, [](SourceUnit unit) { return std::make_unsigned_t<SourceUnit>(unit) < 0x80; });
    }
    // The place for the next unit when there is room for so many units in all, else null; Skip counts what was put
    // there.
    Unit* Room(std::size_t units) const noexcept { return units <= m_capacity ? m_place + m_used : nullptr; }
    void Skip(std::size_t units) noexcept { m_used += units; }
    // The function's answer. A capacity of 0 only asks for the size.
    int Result() const noexcept {
        if (m_used > static_cast<std::size_t>(std::numeric_limits<int>::max())) return Fail(ERROR_INVALID_PARAMETER);
        if (m_capacity != 0 && m_used > m_capacity) return Fail(ERROR_INSUFFICIENT_BUFFER);
        return static_cast<int>(m_used);
    }

private:
    // Without an early end, so that the units are looked at side by side.
    template <std::ptrdiff_t Count, class SourceUnit, class IsSame>
    static bool AllOfBlock(const SourceUnit* at, IsSame isSame) noexcept {
        unsigned char others = 0;
        for (std::ptrdiff_t i = 0; i < Count; ++i)
            others = static_cast<unsigned char>(others | (isSame(at[i]) ? 0 : 1));
        return others == 0;
    }

    Unit* m_place;
    std::size_t m_capacity;
    std::size_t m_used = 0;
};

void PutUtf16(Output<WCHAR>& output, char32_t codePoint) {
    if (codePoint >= 0x10000) {
        output.Put(static_cast<WCHAR>(0xD800 + ((codePoint - 0x10000) >> 10)));
        output.Put(static_cast<WCHAR>(0xDC00 + ((codePoint - 0x10000) & 0x3FF)));
    } else {
        output.Put(static_cast<WCHAR>(codePoint));
    }
}

int WidenUtf8(std::string_view source, bool strict, Output<WCHAR> output) {
    const char* at = source.data();
    const char* const end = at + source.size();
    for (;;) {
        if (WCHAR* const place = output.Room(source.size())) {
            const Utf8Run run = WidenUtf8Run(at, end, place);
            at += run.bytes;
            output.Skip(run.units);
        }
        if ((at = output.PutAscii(at, end)) == end) break;
        const Utf8Character character = DecodeUtf8(at, end);
        if (!character.valid && strict) return Fail(ERROR_NO_UNICODE_TRANSLATION);
        PutUtf16(output, character.codePoint);
        at += character.length;
    }
    return output.Result();
}

int WidenWestern(std::string_view source, Output<WCHAR> output) {
    const char* at = source.data();
    const char* const end = at + source.size();
    const auto isItsOwnNumber = [](char byte) { return (static_cast<unsigned char>(byte) & 0xE0) != 0x80; };
    while ((at = output.PutRun(at, end, isItsOwnNumber)) != end) {
        output.Put(WideFrom1252(static_cast<unsigned char>(*at++)));
    }
    return output.Result();
}

constexpr bool IsLeadSurrogate(WCHAR unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsTrailSurrogate(WCHAR unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Takes the character that begins at a place that is not the end; empty for a surrogate without its partner.
std::optional<char32_t> TakeUtf16(const WCHAR*& at, const WCHAR* end) {
    const WCHAR unit = *at++;
    if (!IsLeadSurrogate(unit) && !IsTrailSurrogate(unit)) return unit;
    if (IsTrailSurrogate(unit) || at == end || !IsTrailSurrogate(*at)) return std::nullopt;
    return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (*at++ - 0xDC00U);
}

int NarrowUtf8(std::basic_string_view<WCHAR> source, bool strict, Output<char> output) {
    const WCHAR* at = source.data();
    const WCHAR* const end = at + source.size();
    while ((at = output.PutAscii(at, end)) != end) {
        const auto codePoint = TakeUtf16(at, end);
        if (!codePoint && strict) return Fail(ERROR_NO_UNICODE_TRANSLATION);
        char bytes[4];
        const std::size_t length = EncodeUtf8(codePoint.value_or(kReplacementCharacter), bytes);
        for (std::size_t i = 0; i < length; ++i) output.Put(bytes[i]);
    }
    return output.Result();
}

int NarrowWestern(std::basic_string_view<WCHAR> source, char defaultChar, LPBOOL usedDefault, Output<char> output) {
    BOOL used = FALSE;
    const WCHAR* at = source.data();
    const WCHAR* const end = at + source.size();
    while ((at = output.PutAscii(at, end)) != end) {
        const auto byte = Narrow1252(*at++);
        if (!byte) used = TRUE;
        output.Put(byte ? static_cast<char>(*byte) : defaultChar);
    }
    if (usedDefault) *usedDefault = used;
    return output.Result();
}

template <class Source, class Destination>
bool ArgumentsAreValid(const Source* source, int sourceLength, const Destination* destination, int capacity) {
    const bool samePlace = static_cast<const void*>(source) == static_cast<const void*>(destination);
    return source && sourceLength != 0 && capacity >= 0 && (capacity == 0 || (destination && !samePlace));
}

// A negative length means a terminated text, converted with its terminator.
template <class Unit>
std::basic_string_view<Unit> Source(const Unit* source, int length) {
    return {source, length < 0 ? std::char_traits<Unit>::length(source) + 1 : static_cast<std::size_t>(length)};
}

UINT ReadCodePage() noexcept {
    try {
        const auto setting =
            ReadRegistryText(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", "ACP");
        return setting == "65001" ? CP_UTF8 : kWestern;
    } catch (...) {
        return kWestern;
    }
}

template <class Result, class Convert>
Result Converted(Convert convert) {
    Result result;
    const int size = convert(nullptr, 0);
    if (size > 0) {
        result.resize(static_cast<std::size_t>(size));
        convert(result.data(), size);
    }
    return result;
}

using WideText = std::basic_string<WCHAR>;

WideText Widen(UINT codePage, std::string_view text) {
    return Converted<WideText>([&](WCHAR* destination, int size) {
        return MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), destination, size);
    });
}

std::string Narrow(UINT codePage, std::basic_string_view<WCHAR> text) {
    return Converted<std::string>([&](char* destination, int size) {
        return WideCharToMultiByte(codePage, 0, text.data(), static_cast<int>(text.size()), destination, size,
                                   nullptr, nullptr);
    });
}

}  // namespace

std::string Utf8FromWide(std::basic_string_view<WCHAR> text) { return Narrow(CP_UTF8, text); }

std::string Utf8FromNarrow(std::string_view text) { return Narrow(CP_UTF8, Widen(CP_ACP, text)); }

std::string NarrowFromUtf8(std::string_view text) { return Narrow(CP_ACP, Widen(CP_UTF8, text)); }

bool IsAscii(std::string_view text) noexcept {
    unsigned char all = 0;
    for (const char c : text) all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
    return all < 0x80;
}

}  // namespace wnplatform

using namespace wnplatform;

UINT GetACP() {
    static const UINT page = ReadCodePage();
    return page;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR source, int sourceBytes, LPWSTR destination,
                        int destinationUnits) {
    if (!ArgumentsAreValid(source, sourceBytes, destination, destinationUnits)) return Fail(ERROR_INVALID_PARAMETER);
    const UINT page = Resolve(codePage);
    if (page == kUnknown) return Fail(ERROR_INVALID_PARAMETER);
    const DWORD allowed = page == CP_UTF8 ? MB_ERR_INVALID_CHARS : MB_ERR_INVALID_CHARS | MB_PRECOMPOSED;
    if ((flags & ~allowed) != 0) return Fail(ERROR_INVALID_FLAGS);

    const std::string_view text = Source(source, sourceBytes);
    const Output<WCHAR> output(destination, destinationUnits);
    return page == CP_UTF8 ? WidenUtf8(text, (flags & MB_ERR_INVALID_CHARS) != 0, output)
                           : WidenWestern(text, output);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR source, int sourceUnits, LPSTR destination,
                        int destinationBytes, LPCSTR defaultChar, LPBOOL usedDefaultChar) {
    if (!ArgumentsAreValid(source, sourceUnits, destination, destinationBytes)) return Fail(ERROR_INVALID_PARAMETER);
    const UINT page = Resolve(codePage);
    // UTF-8 has every character, so asking for a default one is a mistake.
    if (page == kUnknown || (page == CP_UTF8 && (defaultChar || usedDefaultChar))) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const DWORD allowed = page == CP_UTF8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    if ((flags & ~allowed) != 0) return Fail(ERROR_INVALID_FLAGS);

    const std::basic_string_view<WCHAR> text = Source(source, sourceUnits);
    const Output<char> output(destination, destinationBytes);
    if (page == CP_UTF8) return NarrowUtf8(text, (flags & WC_ERR_INVALID_CHARS) != 0, output);
    return NarrowWestern(text, defaultChar ? *defaultChar : '?', usedDefaultChar, output);
}
