// The four entry points of a COM server module, and its start.
#include "common/server/Server.h"

namespace wncom::server {
namespace {

HMODULE g_module = nullptr;
LONG g_locks = 0;

}  // namespace

HMODULE ModuleHandle() noexcept { return g_module; }
void AddModuleLock() noexcept { InterlockedIncrement(&g_locks); }
void ReleaseModuleLock() noexcept { InterlockedDecrement(&g_locks); }

}  // namespace wncom::server

using namespace wncom;

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        server::g_module = module;
        // Nothing here is kept per thread. The call may fail where the compiler's runtime does keep something, and
        // the module then merely hears of threads that it ignores.
        DisableThreadLibraryCalls(module);
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    if (!object) return E_POINTER;
    return server::GetClassObject(clsid, iid, object);
}

STDAPI DllCanUnloadNow() { return __atomic_load_n(&server::g_locks, __ATOMIC_SEQ_CST) == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() { return server::RegisterServer(); }

STDAPI DllUnregisterServer() { return server::UnregisterServer(); }
