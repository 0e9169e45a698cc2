// A module whose start fails with an exception.
#include <windows.h>

#include <stdexcept>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) throw std::runtime_error("no");
    return TRUE;
}

extern "C" int Answer() { return 1; }
