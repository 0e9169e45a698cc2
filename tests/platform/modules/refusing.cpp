// A module that does not want to start.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) { return reason != DLL_PROCESS_ATTACH; }

extern "C" int Answer() { return 1; }
