// Code pages and wide-text helpers of the C runtime.
//
// The narrow (ANSI) code page is a setting of the home: the registry value "ACP" under HKEY_LOCAL_MACHINE
// "SYSTEM\CurrentControlSet\Control\Nls\CodePage", as on Windows. 1252 is the default and 65001 (UTF-8) the one
// alternative; it is read once, at the process's first conversion.
#pragma once

#include "windef.h"

#define CP_ACP 0
#define CP_THREAD_ACP 3
#define CP_UTF8 65001
#define MB_PRECOMPOSED 0x00000001
#define MB_ERR_INVALID_CHARS 0x00000008
#define WC_ERR_INVALID_CHARS 0x00000080
#define WC_NO_BEST_FIT_CHARS 0x00000400

#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LOCALE_USER_DEFAULT 0x0400
#define LANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define MAKELANGID(primary, sub) (static_cast<WORD>((static_cast<WORD>(sub) << 10) | static_cast<WORD>(primary)))

UINT GetACP();

// Both return the number of units written, or needed when the destination size is 0, and 0 on failure with the
// last error set (ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_PARAMETER, ERROR_NO_UNICODE_TRANSLATION). A source
// length of -1 means zero-terminated, and the terminator is then converted too. A character that 1252 lacks becomes
// the default character, never one that looks like it, whatever the flags say.
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR source, int sourceBytes, LPWSTR destination,
                        int destinationUnits);
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR source, int sourceUnits, LPSTR destination,
                        int destinationBytes, LPCSTR defaultChar, LPBOOL usedDefaultChar);

struct SYSTEMTIME;

// Format a date or time by a picture of d dd M MM y yy, H HH m mm s ss, 'quoted text' and signs; other letters and
// names are not offered, and neither are the current time for null nor a picture of the locale's. The result is the
// number of bytes written with the terminator, or needed when size is 0, else 0.
int GetDateFormatA(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCSTR format, LPSTR text, int size);
int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR text, int size);

// The C runtime in the C locale: bytes and characters below 256 map one to one, others are refused with
// static_cast<size_t>(-1). A size query (null destination) of wcstombs does not look at the characters.
std::size_t mbstowcs(WCHAR* destination, const char* source, std::size_t units);
std::size_t wcstombs(char* destination, const WCHAR* source, std::size_t bytes);

std::size_t wcslen(const WCHAR* text);
WCHAR* _wcsdup(const WCHAR* text);  // malloc'ed copy, null for null or when memory runs out
int _wcsnicmp(const WCHAR* a, const WCHAR* b, std::size_t count);
int _wcsicmp(const WCHAR* a, const WCHAR* b);
int _stricmp(const char* a, const char* b);
int _strnicmp(const char* a, const char* b, std::size_t count);
char* _strdup(const char* text);  // malloc'ed copy, null for null or when memory runs out
