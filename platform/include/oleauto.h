// OLE Automation's functions: length-prefixed texts, variants, type libraries.
#pragma once

#include "oaidl.h"

// A BSTR carries its length in bytes before its first unit, is always terminated, and may hold zero units. Null is
// an empty text. New ones come from these functions only and are released with SysFreeString (null is allowed).
BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, UINT units);  // null text: room for that many units, not filled
BSTR SysAllocStringByteLen(LPCSTR bytes, UINT count);
void SysFreeString(BSTR text);
UINT SysStringLen(BSTR text);      // units
UINT SysStringByteLen(BSTR text);  // bytes

// The thread's error object: the reason behind a failed call, left by the one who knows it and taken by whoever tells
// the user. CreateErrorInfo makes an empty one, which the caller owns; it also answers IErrorInfo, and a text that
// was never set reads as null. SetErrorInfo keeps a reference until the next one replaces it, GetErrorInfo takes it
// or the thread ends; null takes the present one away. GetErrorInfo hands that reference to the caller: S_FALSE and
// null when there is none. The reserved number is 0 (else E_INVALIDARG). COM need not be initialised.
HRESULT CreateErrorInfo(ICreateErrorInfo** info);
HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info);
HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info);

void VariantInit(VARIANT* variant);
HRESULT VariantClear(VARIANT* variant);
// Between VT_I4 and VT_BSTR (a whole number in decimal digits), and between VT_UNKNOWN and VT_DISPATCH; VT_EMPTY is 0
// and an empty text. Else DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW, and DISP_E_BADVARTYPE for types that variants do
// not have here. References are followed. No flag means anything here. The destination may be the source, and keeps
// what it holds after a failure.
HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags, VARTYPE type);

// Type libraries. Their objects may be used from any thread and live on after their file has changed or gone. A dual
// interface shows as TKIND_DISPATCH, and GetRefTypeOfImplType(-1) leads to its table of functions. ITypeComp is not
// offered (E_NOTIMPL).
//
// The file is a module whose type-library resource number 1 counts, or holds such a resource's bytes alone.
// TYPE_E_CANTLOADLIBRARY for any other file, an absent or a damaged one, and one of another version's build tool.
HRESULT LoadTypeLib(LPCOLESTR file, ITypeLib** library);
// The version asked for or the highest later one of the same major number; TYPE_E_LIBNOTREGISTERED for none.
// A library is registered for its own locale, and looked up for a locale, then for its language, then for none.
HRESULT LoadRegTypeLib(REFGUID guid, WORD major, WORD minor, LCID lcid, ITypeLib** library);
// Both answer TYPE_E_REGISTRYACCESS when an entry cannot be written, or is not there to remove. A null help directory
// is an empty one. The system is SYS_WIN32 on every host (else E_INVALIDARG).
HRESULT RegisterTypeLib(ITypeLib* library, LPCOLESTR fullPath, LPCOLESTR helpDirectory);
HRESULT UnRegisterTypeLib(REFGUID guid, WORD major, WORD minor, LCID lcid, SYSKIND system);
