#include "bench/text/Peers.h"

#include <unicode/ustring.h>

#include <climits>

#include "bench/Bench.h"

namespace wncom::bench {
namespace {

template <class Char>
MallocText<Char> Room(std::size_t characters) {
    return MallocText<Char>(static_cast<Char*>(std::malloc((characters + 1) * sizeof(Char))));
}

}  // namespace

MallocText<char> IcuToUtf8(const WCHAR* text) {
    const auto units = u_strlen(text);
    const auto room = units * 3;
    auto narrow = Room<char>(static_cast<std::size_t>(room));
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(narrow.get(), room + 1, nullptr, text, units, &status);
    Require(U_SUCCESS(status), "ICU failed");
    return narrow;
}

MallocText<WCHAR> IcuFromUtf8(std::string_view text) {
    const auto bytes = static_cast<int>(text.size());
    auto wide = Room<WCHAR>(text.size());
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(wide.get(), bytes + 1, nullptr, text.data(), bytes, &status);
    Require(U_SUCCESS(status), "ICU failed");
    return wide;
}

Iconv::Iconv(const char* from, const char* to) : m_conversion(iconv_open(to, from)) {}
Iconv::~Iconv() { iconv_close(m_conversion); }

MallocText<char> Iconv::Narrow(const WCHAR* text) {
    const std::size_t units = std::char_traits<WCHAR>::length(text);
    auto narrow = Room<char>(units * 3);
    narrow[Convert(text, units * sizeof(WCHAR), narrow.get(), units * 3)] = '\0';
    return narrow;
}

MallocText<WCHAR> Iconv::Wide(std::string_view text) {
    auto wide = Room<WCHAR>(text.size());
    wide[Convert(text.data(), text.size(), wide.get(), text.size() * sizeof(WCHAR)) / sizeof(WCHAR)] = 0;
    return wide;
}

std::size_t Iconv::Convert(const void* source, std::size_t bytes, void* destination, std::size_t room) {
    char* in = const_cast<char*>(static_cast<const char*>(source));
    char* out = static_cast<char*>(destination);
    std::size_t left = room;
    Require(iconv(m_conversion, &in, &bytes, &out, &left) == 0, "iconv failed");
    return room - left;
}

IcuCodePage::IcuCodePage(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    m_converter = ucnv_open(name, &status);
    Require(U_SUCCESS(status), "ICU lacks the code page");
}
IcuCodePage::~IcuCodePage() { ucnv_close(m_converter); }

MallocText<WCHAR> IcuCodePage::Wide(std::string_view text) {
    auto wide = Room<WCHAR>(text.size());
    UErrorCode status = U_ZERO_ERROR;
    const auto room = static_cast<int>(text.size()) + 1;
    ucnv_toUChars(m_converter, wide.get(), room, text.data(), room - 1, &status);
    Require(U_SUCCESS(status), "ICU failed");
    return wide;
}

}  // namespace wncom::bench
