// Basic Windows types, with Windows' own widths on every host.
#pragma once

#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using CHAR = char;
using WCHAR = char16_t;
using OLECHAR = WCHAR;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;
using INT = int;
using UINT = unsigned int;
using BOOL = int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using HRESULT = std::int32_t;
using SCODE = std::int32_t;
using LCID = DWORD;
using LANGID = WORD;
using LSTATUS = LONG;

static_assert(sizeof(LONG) == 4 && sizeof(DWORD) == 4 && sizeof(HRESULT) == 4 && sizeof(BOOL) == 4);
static_assert(sizeof(WCHAR) == 2 && sizeof(WORD) == 2);

using LPVOID = void*;
using LPCVOID = const void*;
using LPBYTE = BYTE*;
using LPDWORD = DWORD*;
using LPLONG = LONG*;
using LPBOOL = BOOL*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;

// A kernel object of the layer: a file, a mutex, a process. Closed with CloseHandle.
using HANDLE = void*;
using HLOCAL = HANDLE;

struct HINSTANCE__;  // a loaded module
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;
struct HKEY__;  // an open registry key
using HKEY = HKEY__*;

using FARPROC = INT_PTR (*)();

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260

// Calling conventions have one spelling only where Windows is the target.
#define WINAPI
#define CALLBACK
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define STDAPI extern "C" HRESULT STDAPICALLTYPE

#define OLESTR(text) u##text
