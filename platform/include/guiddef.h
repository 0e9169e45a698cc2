// 128-bit globally unique identifiers.
#pragma once

#include <cstring>

#include "windef.h"

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
static_assert(sizeof(GUID) == 16);

using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline BOOL IsEqualGUID(REFGUID a, REFGUID b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }
inline BOOL IsEqualIID(REFIID a, REFIID b) { return IsEqualGUID(a, b); }
inline BOOL IsEqualCLSID(REFCLSID a, REFCLSID b) { return IsEqualGUID(a, b); }
inline bool operator==(REFGUID a, REFGUID b) { return IsEqualGUID(a, b) != 0; }
inline bool operator!=(REFGUID a, REFGUID b) { return !(a == b); }

extern const GUID GUID_NULL;
