#include <memory>
#include <mutex>
#include <new>
#include <vector>

#include "common/Guard.h"
#include "common/server/Server.h"

namespace wncom::server {
namespace {

// Lives as long as the module, whoever holds it: a held class object is no module lock.
class ClassObject final : public IClassFactory {
public:
    explicit ClassObject(const ServedClass& served) noexcept : m_served(served) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        if (iid != IID_IUnknown && iid != IID_IClassFactory) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    // Class objects are asked for by any apartment.
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(InterlockedDecrement(&m_references)); }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        // The outer object must get the inner IUnknown, or it could never tell the inner object's from its own.
        if (outer && iid != IID_IUnknown) return CLASS_E_NOAGGREGATION;
        return Guarded([&] { return m_served.create(outer, iid, object); });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        if (lock) {
            AddModuleLock();
        } else {
            ReleaseModuleLock();
        }
        return S_OK;
    }

private:
    const ServedClass& m_served;
    LONG m_references = 0;
};

std::mutex g_section;  // serialises the first creation of a class object
std::vector<std::unique_ptr<ClassObject>> g_classObjects;

}  // namespace

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept {
    *object = nullptr;
    return Guarded([&]() -> HRESULT {
        for (std::size_t i = 0; i < kServer.classes.size(); ++i) {
            if (kServer.classes[i].clsid != clsid) continue;
            const std::lock_guard lock(g_section);
            g_classObjects.resize(kServer.classes.size());
            if (!g_classObjects[i]) g_classObjects[i] = std::make_unique<ClassObject>(kServer.classes[i]);
            return g_classObjects[i]->QueryInterface(iid, object);
        }
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}

}  // namespace wncom::server
