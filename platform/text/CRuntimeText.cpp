// The C runtime's text functions in the C locale, where only the ASCII letters have case.
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "winnls.h"

namespace {

int Lower(WCHAR unit) { return unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit; }
int Lower(char unit) { return Lower(static_cast<WCHAR>(static_cast<unsigned char>(unit))); }

template <class Unit>
int CompareNoCase(const Unit* a, const Unit* b, std::size_t count) {
    if (!a || !b) {
        errno = EINVAL;
        return INT_MAX;
    }
    for (; count > 0; --count, ++a, ++b) {
        const int difference = Lower(*a) - Lower(*b);
        if (difference != 0 || *a == Unit{}) return difference;
    }
    return 0;
}

constexpr std::size_t kWhole = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kRefused = static_cast<std::size_t>(-1);

template <class Unit>
Unit* Duplicate(const Unit* text, std::size_t length) {
    const std::size_t bytes = (length + 1) * sizeof(Unit);
    auto* const copy = static_cast<Unit*>(std::malloc(bytes));
    if (copy) std::memcpy(copy, text, bytes);
    return copy;
}

}  // namespace

std::size_t mbstowcs(WCHAR* destination, const char* source, std::size_t units) {
    if (!source) {
        errno = EINVAL;
        return kRefused;
    }
    if (!destination) return std::strlen(source);
    for (std::size_t i = 0; i < units; ++i) {
        destination[i] = static_cast<unsigned char>(source[i]);
        if (source[i] == '\0') return i;
    }
    return units;
}

std::size_t wcstombs(char* destination, const WCHAR* source, std::size_t bytes) {
    if (!source) {
        errno = EINVAL;
        return kRefused;
    }
    if (!destination) return wcslen(source);
    for (std::size_t i = 0; i < bytes; ++i) {
        if (source[i] > 0xFF) {
            errno = EILSEQ;
            return kRefused;
        }
        destination[i] = static_cast<char>(source[i]);
        if (source[i] == u'\0') return i;
    }
    return bytes;
}

// Looks at aligned blocks as a whole, beyond the text's end too: what lies there is on the same page of memory.
__attribute__((no_sanitize("address", "thread"))) std::size_t wcslen(const WCHAR* text) {
    constexpr std::size_t block = 32;
    const WCHAR* at = text;
    for (; reinterpret_cast<std::uintptr_t>(at) % (block * sizeof(WCHAR)) != 0; ++at) {
        if (*at == u'\0') return static_cast<std::size_t>(at - text);
    }
    for (;; at += block) {
        std::uint16_t zeros = 0;
        for (std::size_t i = 0; i != block; ++i)
            zeros = static_cast<std::uint16_t>(zeros | (at[i] == u'\0' ? 0xFFFF : 0));
        if (zeros != 0) break;
    }
    while (*at != u'\0') ++at;
    return static_cast<std::size_t>(at - text);
}

WCHAR* _wcsdup(const WCHAR* text) { return text ? Duplicate(text, wcslen(text)) : nullptr; }
char* _strdup(const char* text) { return text ? Duplicate(text, std::strlen(text)) : nullptr; }

int _wcsnicmp(const WCHAR* a, const WCHAR* b, std::size_t count) { return CompareNoCase(a, b, count); }
int _wcsicmp(const WCHAR* a, const WCHAR* b) { return CompareNoCase(a, b, kWhole); }
int _strnicmp(const char* a, const char* b, std::size_t count) { return CompareNoCase(a, b, count); }
int _stricmp(const char* a, const char* b) { return CompareNoCase(a, b, kWhole); }
