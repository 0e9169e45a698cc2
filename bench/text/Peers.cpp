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
