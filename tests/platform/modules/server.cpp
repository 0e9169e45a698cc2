// A server of one class whose objects only count; as it leaves, it sets the last error to 4711.
#include <windows.h>

#include <objbase.h>

#include <atomic>
#include <new>

namespace {

std::atomic<LONG> g_objects{0};
HINSTANCE g_module = nullptr;

constexpr CLSID kClass{0x1B1F5C1E, 0x0C57, 0x4B0E, {0x9A, 0x5B, 0x2A, 0x63, 0x11, 0x7E, 0x40, 0x01}};

template <class Interface>
class Counted : public Interface {
public:
    Counted() { ++g_objects; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }

protected:
    virtual ~Counted() { --g_objects; }

    HRESULT Query(REFIID own, REFIID iid, void** object) {
        *object = nullptr;
        if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, own)) return E_NOINTERFACE;
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }

private:
    std::atomic<ULONG> m_references{1};
};

class Object final : public Counted<IUnknown> {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return Query(IID_IUnknown, iid, object);
    }
};

class Factory final : public Counted<IClassFactory> {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return Query(IID_IClassFactory, iid, object);
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
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

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) g_module = module;
    if (reason == DLL_PROCESS_DETACH) SetLastError(4711);
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    if (!IsEqualCLSID(clsid, kClass)) return CLASS_E_CLASSNOTAVAILABLE;
    auto* factory = new (std::nothrow) Factory;
    if (!factory) return E_OUTOFMEMORY;
    const HRESULT hr = factory->QueryInterface(iid, object);
    factory->Release();
    return hr;
}

STDAPI DllCanUnloadNow() { return g_objects == 0 ? S_OK : S_FALSE; }

// The handle that the module was started with.
extern "C" HINSTANCE Answer() { return g_module; }
