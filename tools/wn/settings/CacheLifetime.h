// How long the agent keeps capabilities tickets.
#pragma once

#include <windows.h>

namespace wn {

inline constexpr const char* kIniFile = "qbos.ini";  // in the Windows directory
inline constexpr const char* kIniSection = "Cache";
inline constexpr const char* kIniKey = "CapTicket";

struct CacheDays {
    UINT days;  // 0: the cache is off
    bool configured;
};

// As the agent reads it. That a key is absent shows only in that any default comes back.
inline CacheDays CacheLifetime() {
    const UINT days = GetPrivateProfileIntA(kIniSection, kIniKey, 1, kIniFile);
    return {days, days != 1 || GetPrivateProfileIntA(kIniSection, kIniKey, 2, kIniFile) == 1};
}

}  // namespace wn
