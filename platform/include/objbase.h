// The COM runtime: initialisation, class lookup and creation of in-process servers.
//
// Classes are found under HKEY_CLASSES_ROOT. Servers are loaded once per process, shared by all threads, and
// unloaded by CoFreeUnusedLibraries or the process's last CoUninitialize once their DllCanUnloadNow agrees. Servers
// in processes of their own are not offered on this host: asking for one fails as for a class that has none.
#pragma once

#include "unknwn.h"
#include "winbase.h"

enum CLSCTX : DWORD {
    CLSCTX_INPROC_SERVER = 0x1,
    CLSCTX_INPROC_HANDLER = 0x2,
    CLSCTX_LOCAL_SERVER = 0x4,
};

// Counted per thread: S_OK the first time, S_FALSE after; each is paired with CoUninitialize.
HRESULT CoInitialize(LPVOID reserved);
void CoUninitialize();
void CoFreeUnusedLibraries();

// CO_E_NOTINITIALIZED without CoInitialize on this thread, REGDB_E_CLASSNOTREG for an unknown class or a class
// without a server of the wanted kinds.
HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, LPVOID* object);
HRESULT CLSIDFromProgID(LPCOLESTR progId, CLSID* clsid);
// Writes "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"; returns the characters written with the terminator (39), or 0
// when the capacity is less.
int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity);
// A fresh random identifier (version 4), made of the kernel's random bytes, which each thread fetches for many at a
// time; a forked child never repeats its parent's. E_FAIL when the kernel has none.
HRESULT CoCreateGuid(GUID* guid);

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object);
STDAPI DllCanUnloadNow();
STDAPI DllRegisterServer();
STDAPI DllUnregisterServer();
