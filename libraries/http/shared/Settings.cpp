#include "libraries/http/shared/Settings.h"

#include "wncom/Logging.h"

namespace wncom::http {
namespace {

constexpr const char* kKey = "SOFTWARE\\Quillbeck\\QBNorvel\\HttpTransport";
constexpr DWORD kLongestTimeout = 3'600'000;  // milliseconds
constexpr DWORD kLargestLimit = 1024 * 1024;  // KB

void Read(HKEY key, const char* name, DWORD largest, DWORD& setting) noexcept {
    DWORD value = 0;
    DWORD type = REG_NONE;
    DWORD size = sizeof(value);
    const LSTATUS status = RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<LPBYTE>(&value), &size);
    if (status == ERROR_FILE_NOT_FOUND) return;
    if (status != ERROR_SUCCESS || type != REG_DWORD || size != sizeof(value) || value == 0 || value > largest) {
        Log(2, "HttpTransport: the registry value \"%s\" is not usable, %u stays", name, setting);
        return;
    }
    setting = value;
}

}  // namespace

Settings ReadSettings() noexcept {
    Settings settings;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return settings;
    Read(key, "connecttimeout", kLongestTimeout, settings.connectTimeout);
    Read(key, "calltimeout", kLongestTimeout, settings.callTimeout);
    Read(key, "answerlimit", kLargestLimit, settings.answerLimit);
    RegCloseKey(key);
    return settings;
}

}  // namespace wncom::http
