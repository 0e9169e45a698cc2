#include <atomic>
#include <memory>
#include <new>
#include <string>

#include "objbase.h"
#include "platform/com/ClassServers.h"
#include "platform/com/GuidText.h"
#include "platform/registry/Registry.h"
#include "platform/text/Texts.h"

using namespace wnplatform;

namespace {

thread_local ULONG t_initialisations = 0;
std::atomic<ULONG> g_initialisations{0};

// A server may be anyone's: what it throws must not get further.
template <class Body>
HRESULT ComCall(const Body& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

struct Releaser {
    void operator()(IUnknown* object) const noexcept { object->Release(); }
};

HRESULT CreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, LPVOID* object) {
    if (t_initialisations == 0) return CO_E_NOTINITIALIZED;
    if ((context & CLSCTX_INPROC_SERVER) == 0) return REGDB_E_CLASSNOTREG;
    // Held until the factory's own call is over: another thread may unload what is idle at any time.
    HeldServer server;
    void* place = nullptr;
    if (const HRESULT hr = GetServerClassObject(clsid, IID_IClassFactory, server, &place); FAILED(hr)) return hr;
    const std::unique_ptr<IClassFactory, Releaser> factory(static_cast<IClassFactory*>(place));
    return factory->CreateInstance(outer, iid, object);
}

HRESULT ClassOfProgId(const std::string& progId, CLSID& clsid) {
    if (progId.empty() || progId.find('\\') != std::string::npos) return CO_E_CLASSSTRING;
    const auto text = ReadRegistryText(HKEY_CLASSES_ROOT, progId + "\\CLSID", "");
    const auto found = text ? GuidOfText(*text) : std::nullopt;
    if (!found) return CO_E_CLASSSTRING;
    clsid = *found;
    return S_OK;
}

}  // namespace

HRESULT CoInitialize(LPVOID reserved) {
    if (reserved) return E_INVALIDARG;
    g_initialisations.fetch_add(1);
    return ++t_initialisations == 1 ? S_OK : S_FALSE;
}

void CoUninitialize() {
    if (t_initialisations == 0) return;
    --t_initialisations;
    if (g_initialisations.fetch_sub(1) == 1) UnloadIdleServers();
}

void CoFreeUnusedLibraries() { UnloadIdleServers(); }

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, LPVOID* object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    const HRESULT hr = ComCall([&] { return CreateInstance(clsid, outer, context, iid, object); });
    if (FAILED(hr)) *object = nullptr;
    return hr;
}

HRESULT CLSIDFromProgID(LPCOLESTR progId, CLSID* clsid) {
    if (!clsid) return E_INVALIDARG;
    *clsid = GUID_NULL;
    if (!progId) return E_INVALIDARG;
    return ComCall([&] { return ClassOfProgId(Utf8FromWide(progId), *clsid); });
}

int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) {
    constexpr int needed = static_cast<int>(kGuidTextLength) + 1;
    if (!text || capacity < needed) return 0;
    for (const char c : TextOfGuid(guid)) *text++ = static_cast<OLECHAR>(c);
    *text = 0;
    return needed;
}
