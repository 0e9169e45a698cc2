#include "tests/common/SampleComponent.h"

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

#include "common/OpenKey.h"

namespace wncom::test {
namespace {

std::atomic<LONG> g_references{0};

bool IsToldTo(std::string_view behaviour) {
    const char* told = std::getenv(kSampleBehaviour);
    return told && behaviour == told;
}

// The objects of the module live as long as it does; what they count keeps it loaded.
template <class Interface>
struct Counted : Interface {
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++g_references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--g_references); }

protected:
    ~Counted() = default;
    HRESULT Answer(bool known, void** object) {
        *object = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
};

struct Sample final : Counted<ISample> {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return Answer(iid == IID_IUnknown || iid == ISample::kIid, object);
    }
    LONG STDMETHODCALLTYPE References() override { return g_references; }
};
Sample g_sample;

struct Factory final : Counted<IClassFactory> {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return Answer(iid == IID_IUnknown || iid == IID_IClassFactory, object);
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        if (IsToldTo("refuse creation")) return E_ACCESSDENIED;
        return g_sample.QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        lock ? AddRef() : Release();
        return S_OK;
    }
};
Factory g_factory;

void SetDefaultValue(const std::string& subkey, const std::string& text) {
    OpenKey key;
    if (key.Create(HKEY_CLASSES_ROOT, subkey.c_str()) == ERROR_SUCCESS) key.WriteText(nullptr, text);
}

std::string OwnPath() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&g_sample), &module);
    char path[4096] = {};
    GetModuleFileNameA(module, path, sizeof(path));
    return path;
}

}  // namespace
}  // namespace wncom::test

using namespace wncom::test;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    if (clsid == kSampleClass) return g_factory.QueryInterface(iid, object);
    *object = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return g_references == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
    if (IsToldTo("throw in registration")) throw std::runtime_error("told to");
    if (IsToldTo("refuse registration")) return E_ACCESSDENIED;
    SetDefaultValue(std::string(kSampleProgId) + "\\CLSID", kSampleClassText);
    SetDefaultValue(std::string("CLSID\\") + kSampleClassText + "\\InprocServer32", OwnPath());
    return S_OK;
}

STDAPI DllUnregisterServer() {
    RegDeleteTreeA(HKEY_CLASSES_ROOT, kSampleProgId);
    RegDeleteTreeA(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + kSampleClassText).c_str());
    return S_OK;
}
