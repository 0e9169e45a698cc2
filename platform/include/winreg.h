// The registry of the home, shared by all its processes.
//
// Keys and value names compare without regard to case; values are typed and keep their data byte for byte, so a
// text may lack its terminator. Every function returns a system error code (ERROR_SUCCESS is 0) and leaves the
// thread's last error alone, as on Windows. Names may not hold control characters. Any thread may call; a change is
// seen by every process at its next call. Keys lie at most 512 levels deep (ERROR_INVALID_PARAMETER).
#pragma once

#include "windef.h"

using REGSAM = DWORD;

// The roots are fixed handles that need no opening or closing. HKEY_CLASSES_ROOT shows "SOFTWARE\Classes" of
// HKEY_LOCAL_MACHINE.
#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000000U)))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000001U)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000002U)))

#define KEY_QUERY_VALUE 0x0001
#define KEY_SET_VALUE 0x0002
#define KEY_CREATE_SUB_KEY 0x0004
#define KEY_ENUMERATE_SUB_KEYS 0x0008
#define KEY_READ 0x20019
#define KEY_WRITE 0x20006
#define KEY_ALL_ACCESS 0xF003F

#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_MULTI_SZ 7
#define REG_QWORD 11

#define REG_OPTION_NON_VOLATILE 0
#define REG_CREATED_NEW_KEY 1
#define REG_OPENED_EXISTING_KEY 2

struct SECURITY_ATTRIBUTES;
struct FILETIME;

LSTATUS RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD options, REGSAM access, HKEY* result);
LSTATUS RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                        const SECURITY_ATTRIBUTES* security, HKEY* result, LPDWORD disposition);
LSTATUS RegCloseKey(HKEY key);
LSTATUS RegQueryValueExA(HKEY key, LPCSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size);
LSTATUS RegSetValueExA(HKEY key, LPCSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LSTATUS RegDeleteValueA(HKEY key, LPCSTR valueName);
// Deletes a key with everything below it. The roots and "SOFTWARE\Classes" of HKEY_LOCAL_MACHINE stay
// (ERROR_ACCESS_DENIED).
LSTATUS RegDeleteTreeA(HKEY key, LPCSTR subKey);
// Subkeys and values come in the order of their names. The time of a key's last change is not kept: ask for none.
LSTATUS RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, LPDWORD nameLength, LPDWORD reserved, LPSTR keyClass,
                      LPDWORD keyClassLength, FILETIME* lastWrite);
LSTATUS RegEnumValueA(HKEY key, DWORD index, LPSTR name, LPDWORD nameLength, LPDWORD reserved, LPDWORD type,
                      LPBYTE data, LPDWORD size);
