#include <windows.h>

#include <ole2.h>

#include "common/CPWStringBuffer.h"
#include "common/Owned.h"
#include "wncom/CPComPtr.h"
#include "wncom/Logging.h"

namespace wncom {
namespace {

constexpr DWORD kWaitMilliseconds = 500;
constexpr DWORD kLongestWaitMilliseconds = 3000;

bool FileExists(const char* path) noexcept {
    WIN32_FIND_DATAA found;
    return static_cast<bool>(OwnedSearch(FindFirstFileA(path, &found)));
}

void MakeSmallLetters(WCHAR* text) noexcept {
    for (; *text != 0; ++text) {
        if (*text >= 'A' && *text <= 'Z') *text = static_cast<WCHAR>(*text - 'A' + 'a');
    }
}

bool EndsWith(const CPHeapBuffer& path, LPCOLESTR extension) noexcept {
    const std::size_t length = wcslen(extension);
    return path.Length() >= length && _wcsicmp(path.Text() + path.Length() - length, extension) == 0;
}

HRESULT CallRegistration(FARPROC procedure, const CPHeapBuffer& path) noexcept {
    using Registration = HRESULT(STDAPICALLTYPE*)();
    const auto registration = reinterpret_cast<Registration>(reinterpret_cast<void (*)()>(procedure));
    try {
        const HRESULT status = registration();
        if (FAILED(status)) {
            WNCOM_LOG(2, "CPComPtr<>::RegisterComponent | COM Registration Failed!!! | module=%S", path.Text());
        }
        return status;
    } catch (...) {
        WNCOM_LOG(1, "CPComPtr<>::RegisterComponent | DLL COM Registration Threw an Exception!!! | module=%S",
                  path.Text());
        return E_FAIL;
    }
}

HRESULT RegisterLibrary(CPHeapBuffer& path, bool registerModule) noexcept {
    const OwnedModule module(LoadLibraryExA(path.GetMultiByte(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!module) {
        WNCOM_LOG(1, "CPComPtr<>::RegisterComponent | LoadLibrary Failed!!!");
        return E_FAIL;
    }
    const FARPROC procedure =
        GetProcAddress(module.get(), registerModule ? "DllRegisterServer" : "DllUnregisterServer");
    if (!procedure) {
        WNCOM_LOG(1, "CPComPtr<>::RegisterComponent | GetProcAddress Failed!!!");
        return E_FAIL;
    }
    return CallRegistration(procedure, path);
}

OwnedHandle StartHidden(CPHeapBuffer& commandLine) noexcept {
    const char* narrow = commandLine.GetMultiByte();
    if (!narrow) return {};
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process{};
    // The text is the buffer's own and writable, should the system want to cut it.
    if (!CreateProcessA(nullptr, const_cast<char*>(narrow), nullptr, nullptr, FALSE,
                        DETACHED_PROCESS | NORMAL_PRIORITY_CLASS, nullptr, nullptr, &startup, &process)) {
        return {};
    }
    CloseHandle(process.hThread);
    return OwnedHandle(process.hProcess);
}

bool HasEnded(HANDLE process) noexcept {
    for (DWORD elapsed = 0; elapsed <= kLongestWaitMilliseconds; elapsed += kWaitMilliseconds) {
        if (WaitForSingleObject(process, kWaitMilliseconds) == WAIT_OBJECT_0) return true;
    }
    return false;
}

HRESULT RunRegistration(CPHeapBuffer& path, bool registerModule) noexcept {
    path.Insert(OLESTR("\""), 0);
    path.Append(registerModule ? OLESTR("\" /regserver") : OLESTR("\" /unregserver"));
    const OwnedHandle process = StartHidden(path);
    if (!process) return E_FAIL;
    if (!HasEnded(process.get())) {
        WNCOM_LOG(2, "CPComPtr<>::RegisterComponent | COM Registration Hung!!! | module=%S", path.Text());
        return E_FAIL;
    }
    DWORD code = 1;
    GetExitCodeProcess(process.get(), &code);
    if (code == 0) return S_OK;
    WNCOM_LOG(2, "CPComPtr<>::RegisterComponent | COM Registration - exited with a failure code!!! | module=%S | %d",
              path.Text(), static_cast<LONG>(code));
    return E_FAIL;
}

}  // namespace

HRESULT RegisterComponentModule(LPCOLESTR modulePath, bool registerModule) noexcept {
    WNCOM_LOG(3, "CPComPtr<>::RegisterComponent | %S | %s", modulePath, registerModule ? "Register" : "UnRegister");
    CPHeapBuffer path(modulePath);
    const char* narrow = path.GetMultiByte();
    if (!narrow || !FileExists(narrow)) return E_FAIL;
    MakeSmallLetters(path.Text());
    if (EndsWith(path, OLESTR(".dll"))) return RegisterLibrary(path, registerModule);
    if (EndsWith(path, OLESTR(".exe"))) return RunRegistration(path, registerModule);
    return S_OK;
}

}  // namespace wncom
