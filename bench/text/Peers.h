// The conversions of ICU as a caller would use them in our place: from one terminated text to another, on
// the C runtime heap, in one call.
#pragma once

#include <windows.h>

#include <unicode/ucnv.h>

#include <string_view>

#include "common/MallocText.h"

namespace wncom::bench {

MallocText<char> IcuToUtf8(const WCHAR* text);
MallocText<WCHAR> IcuFromUtf8(std::string_view text);

// A code page of one byte a character.
class IcuCodePage {
public:
    explicit IcuCodePage(const char* name);
    IcuCodePage(const IcuCodePage&) = delete;
    IcuCodePage& operator=(const IcuCodePage&) = delete;
    ~IcuCodePage();

    MallocText<WCHAR> Wide(std::string_view text);

private:
    UConverter* m_converter;
};

}  // namespace wncom::bench
