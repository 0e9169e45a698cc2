#include <windows.h>

#include <ole2.h>

STDAPI DllCanUnloadNow() { return S_OK; }
