#include <cstddef>
#include <type_traits>

#include "common/Guard.h"
#include "common/server/Server.h"

namespace wncom::server {
namespace {

// Lives as long as the module. Holding a class object does not lock the module.
class ClassObject final : public IClassFactory {
public:
    constexpr ClassObject() noexcept = default;

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
        return Guarded([&] { return Served().create(outer, iid, object); });
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
    const ServedClass& Served() const noexcept;

    LONG m_references = 0;
};

constexpr std::size_t kMostClasses = 16;

// Neither freed nor destroyed at the process's end: statics of the client that end later may still use them.
constinit ClassObject g_classObjects[kMostClasses];
static_assert(std::is_trivially_destructible_v<ClassObject>);

const ServedClass& ClassObject::Served() const noexcept {
    return kServer.classes[static_cast<std::size_t>(this - g_classObjects)];
}

}  // namespace

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept {
    *object = nullptr;
    for (std::size_t i = 0; i < kServer.classes.size() && i < kMostClasses; ++i) {
        if (kServer.classes[i].clsid == clsid) return g_classObjects[i].QueryInterface(iid, object);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace wncom::server
