#include "transport/RegistryPaths.h"

#include <windows.h>

#include <new>

#include "common/CPException.h"
#include "common/OpenKey.h"
#include "wncom/Logging.h"

namespace wncom {
namespace {

constexpr const char* kConfigurationKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";
constexpr DWORD kLongestValue = 1024;  // in bytes, with the terminator

[[noreturn]] void Fail(const char* message) {
    Log(4, message);
    throw CPException(message, E_FAIL);
}

}  // namespace

CPHeapBuffer GetPathFromRegistry(const char* valueName) {
    Log(4, "Starting GetPathFromRegistry().");
    OpenKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, kConfigurationKey, KEY_QUERY_VALUE) != ERROR_SUCCESS)
        Fail("GetPathFromRegistry() - RegOpenKeyEx() failed");
    Log(4, "GetPathFromRegistry() - RegOpenKeyEx() succeeded");

    const auto value = key.Read<kLongestValue>(valueName);
    if (!value || !value.FitsTerminated()) Fail("GetPathFromRegistry() - RegQueryValueEx() failed");
    Log(4, "GetPathFromRegistry() - RegQueryValueEx() succeeded");

    CPHeapBuffer path;
    path.Assign(value.c_str());
    if (*value.c_str() && path.Length() == 0) throw std::bad_alloc();
    if (key.Close() != ERROR_SUCCESS) Fail("GetPathFromRegistry() - RegCloseKey() failed");
    Log(4, "GetPathFromRegistry() - RegCloseKey() succeeded");
    return path;
}

}  // namespace wncom
