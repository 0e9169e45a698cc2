#include "transport/RegistryPaths.h"

#include <windows.h>

#include <cstring>
#include <new>
#include <utility>

#include "common/CPException.h"
#include "transport/JobControlFactory.h"
#include "wncom/Logging.h"

namespace wncom {
namespace {

constexpr const char* kConfigurationKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";
constexpr DWORD kLongestValue = 1024;  // in bytes, with the terminator

class RegistryKey {
public:
    RegistryKey() noexcept = default;
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;
    ~RegistryKey() {
        if (m_key) RegCloseKey(m_key);
    }

    LSTATUS Open(const char* subKey) noexcept {
        return RegOpenKeyExA(HKEY_LOCAL_MACHINE, subKey, 0, KEY_QUERY_VALUE, &m_key);
    }
    LSTATUS Close() noexcept { return RegCloseKey(std::exchange(m_key, nullptr)); }
    HKEY get() const noexcept { return m_key; }

private:
    HKEY m_key = nullptr;
};

[[noreturn]] void Fail(const char* message) {
    Log(4, message);
    throw CPException(message, E_FAIL);
}

// A value may have been stored without its terminator.
bool ReadText(HKEY key, const char* valueName, char (&text)[kLongestValue]) noexcept {
    DWORD size = kLongestValue;
    const LSTATUS status = RegQueryValueExA(key, valueName, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    if (status != ERROR_SUCCESS || size > kLongestValue) return false;
    if (size < kLongestValue) text[size] = '\0';
    return std::memchr(text, '\0', kLongestValue) != nullptr;
}

}  // namespace

CPHeapBuffer GetPathFromRegistry(const char* valueName) {
    Log(4, "Starting GetPathFromRegistry().");
    RegistryKey key;
    if (key.Open(kConfigurationKey) != ERROR_SUCCESS) Fail("GetPathFromRegistry() - RegOpenKeyEx() failed");
    Log(4, "GetPathFromRegistry() - RegOpenKeyEx() succeeded");

    char text[kLongestValue];
    if (!ReadText(key.get(), valueName, text)) Fail("GetPathFromRegistry() - RegQueryValueEx() failed");
    Log(4, "GetPathFromRegistry() - RegQueryValueEx() succeeded");

    CPHeapBuffer path;
    path.Assign(text);
    if (*text && path.Length() == 0) throw std::bad_alloc();
    if (key.Close() != ERROR_SUCCESS) Fail("GetPathFromRegistry() - RegCloseKey() failed");
    Log(4, "GetPathFromRegistry() - RegCloseKey() succeeded");
    return path;
}

CPHeapBuffer JobControlFactory::GetPathToTransportsXMLFromRegistry() {
    Log(4, "Starting GetPathToTransportsXMLFromRegistry().");
    try {
        return GetPathFromRegistry("pathtotransportsxml");
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::GetPathToTransportsXMLFromRegistry() got exception from GetPathFromRegistry(): %s",
            exception.what());
        throw CPException(
            "JobControlFactory::GetPathToTransportsXMLFromRegistry() got exception from GetPathFromRegistry()",
            E_FAIL);
    }
}

CPHeapBuffer JobControlFactory::GetPathToBuildDllsFromRegistry() {
    Log(4, "Starting GetPathToBuildDllsFromRegistry().");
    try {
        return GetPathFromRegistry("builddllpath");
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::GetPathToBuildDllsFromRegistry() got exception from GetPathFromRegistry(): %s",
            exception.what());
        throw CPException(
            "JobControlFactory::GetPathToBuildDllsFromRegistry() got exception from GetPathFromRegistry()", E_FAIL);
    }
}

}  // namespace wncom
