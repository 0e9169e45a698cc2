// Linked into every module: tells its DllMain, if it has one, when the module has come into the process and when it
// is about to leave it.
#include "windows.h"
#include "wnplatform/module_start.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved) __attribute__((weak));

// The linker's name for the start of this very module, which is what module handles are.
extern "C" const char __ehdr_start __attribute__((visibility("hidden")));

namespace {

bool Tell(DWORD reason) noexcept {
    if (!DllMain) return true;
    try {
        return DllMain(reinterpret_cast<HINSTANCE>(const_cast<char*>(&__ehdr_start)), reason, nullptr) != FALSE;
    } catch (...) {
        return false;
    }
}

// These run after the module's own static objects are made, and before they are destroyed.
__attribute__((constructor)) void Start() {
    if (!Tell(DLL_PROCESS_ATTACH)) wnplatform::RefuseStart();
}

__attribute__((destructor)) void End() { Tell(DLL_PROCESS_DETACH); }

}  // namespace
