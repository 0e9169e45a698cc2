#include <windows.h>

#include <ole2.h>

#include <utility>

#include "common/CPWStringBuffer.h"
#include "common/OpenKey.h"
#include "wncom/CPComPtr.h"
#include "wncom/Logging.h"

namespace wncom {
namespace {

constexpr char kForceKey[] = "SOFTWARE\\Quillbeck\\QBNorvel\\ForceToOutOfProc";
constexpr DWORD kForceValueBytes = 260;

// Any terminated text counts, whatever it says.
bool HasText(const OpenKey& key, const char* name) noexcept {
    const auto value = key.Read<kForceValueBytes>(name);
    return value && value.IsText() && value.bytes().ends_with('\0');
}

// Administrators keep an unstable component out of the client's process by a text value of its name.
DWORD ChooseContext(LPCOLESTR progId) noexcept {
    constexpr DWORD kAnywhere = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER;
    CPBstrBuffer temp(progId);
    WNCOM_LOG(8, "PlatformServices::CreateInstance() just created temp");

    OpenKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, kForceKey) != ERROR_SUCCESS) {
        WNCOM_LOG(8, "PlatformServices::CreateInstance() could not find forcekey");
        return kAnywhere;
    }
    WNCOM_LOG(8, "PlatformServices::CreateInstance() found forcekey");
    // A null name would read the key's default value.
    const char* name = temp.GetMultiByte();
    if (name && HasText(key, name)) {
        WNCOM_LOG(8, "PlatformServices::CreateInstance() found string value in forcekey");
        return CLSCTX_LOCAL_SERVER;
    }
    WNCOM_LOG(8, "PlatformServices::CreateInstance() string value in forcekey not found");
    return kAnywhere;
}

}  // namespace

HRESULT CreateComponentInstance(LPCOLESTR progId, LPCOLESTR moduleFile, REFIID iid, void** object) noexcept {
    WNCOM_LOG(5, "PlatformServices::CreateInstance() Entering");
    WNCOM_LOG(1, "CI 1");
    WNCOM_LOG(1, "CI 2");
    if (void* held = std::exchange(*object, nullptr)) static_cast<IUnknown*>(held)->Release();
    WNCOM_LOG(1, "CI 3");

    CLSID clsid{};
    HRESULT status = CLSIDFromProgID(progId, &clsid);
    if (FAILED(status) && moduleFile) {
        WNCOM_LOG(2, "PlatformServices::CreateInstance() CLSIDFromProgID failed");
        // Whatever came of it, the second look-up tells whether it helped.
        RegisterComponentModule(moduleFile, true);
        status = CLSIDFromProgID(progId, &clsid);
        WNCOM_LOG(1, "CI 4 ret: -- %08lx\n", status);
    }

    if (SUCCEEDED(status)) {
        WNCOM_LOG(8, "PlatformServices::CreateInstance() CLSIDFromProgID succeeded");
        status = E_FAIL;
        try {
            status = CoCreateInstance(clsid, nullptr, ChooseContext(progId), iid, object);
            // A server that claims success but gave no object has failed.
            if (SUCCEEDED(status) && !*object) status = E_POINTER;
        } catch (...) {
            WNCOM_LOG(1, "CI 5");
            // Not released: a component that threw half way may have left anything there.
            *object = nullptr;
            WNCOM_LOG(1, "PlatformServices::CreateInstance() caught exception.");
        }
    } else {
        WNCOM_LOG(1, "PlatformServices::CreateInstance() unable to resolve CLSID");
    }

    if (FAILED(status)) {
        WNCOM_LOG(1, "PlatformServices::CreateInstance() returning FAIL.");
    } else {
        WNCOM_LOG(8, "PlatformServices::CreateInstance() returning SUCCESS.");
    }
    return status;
}

}  // namespace wncom
