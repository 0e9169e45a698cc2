// A server of one class whose objects only count; as it leaves, it sets the last error to 4711.
#include <windows.h>

#include <objbase.h>

#include <atomic>
#include <new>

namespace {

std::atomic<LONG> g_objects{0};
HINSTANCE g_module = nullptr;

constexpr CLSID kClass{0x1B1F5C1E, 0x0C57, 0x4B0E, {0x9A, 0x5B, 0x2A, 0x63, 0x11, 0x7E, 0x40, 0x01}};

class Object final : public IUnknown {
public:
    Object() { ++g_objects; }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (!IsEqualIID(iid, IID_IUnknown)) return E_NOINTERFACE;
        AddRef();
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }

private:
    ~Object() { --g_objects; }

    std::atomic<ULONG> m_references{1};
};

void (*g_duringCreation)() = nullptr;

// Lives as long as the module, and is no lock on it.
class Factory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (g_duringCreation) g_duringCreation();
        if (outer) return CLASS_E_NOAGGREGATION;
        auto* made = new (std::nothrow) Object;
        if (!made) return E_OUTOFMEMORY;
        const HRESULT hr = made->QueryInterface(iid, object);
        made->Release();
        return hr;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        g_objects += lock ? 1 : -1;
        return S_OK;
    }
};
Factory g_factory;

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) g_module = module;
    if (reason == DLL_PROCESS_DETACH) SetLastError(4711);
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    if (!IsEqualCLSID(clsid, kClass)) return CLASS_E_CLASSNOTAVAILABLE;
    return g_factory.QueryInterface(iid, object);
}

STDAPI DllCanUnloadNow() { return g_objects == 0 ? S_OK : S_FALSE; }

// The handle that the module was started with.
extern "C" HINSTANCE Answer() { return g_module; }

// What is called in the middle of a creation, null for nothing.
extern "C" void DuringCreation(void (*call)()) { g_duringCreation = call; }
