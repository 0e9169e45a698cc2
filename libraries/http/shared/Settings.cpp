#include "libraries/http/shared/Settings.h"

#include "common/OpenKey.h"
#include "wncom/Logging.h"

namespace wncom::http {
namespace {

constexpr const char* kKey = "SOFTWARE\\Quillbeck\\QBNorvel\\HttpTransport";
constexpr DWORD kLongestTimeout = 3'600'000;  // milliseconds
constexpr DWORD kLargestLimit = 1024 * 1024;  // KB

void Read(const OpenKey& key, const char* name, DWORD largest, DWORD& setting) noexcept {
    const auto value = key.Read<sizeof(DWORD)>(name);
    if (value.status == ERROR_FILE_NOT_FOUND) return;
    DWORD number = 0;
    if (!value.ToNumber(number) || number == 0 || number > largest) {
        Log(2, "HttpTransport: the registry value \"%s\" is invalid, using %u", name, setting);
        return;
    }
    setting = number;
}

}  // namespace

Settings ReadSettings() noexcept {
    Settings settings;
    OpenKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, kKey, KEY_QUERY_VALUE) != ERROR_SUCCESS) return settings;
    Read(key, "connecttimeout", kLongestTimeout, settings.connectTimeout);
    Read(key, "calltimeout", kLongestTimeout, settings.callTimeout);
    Read(key, "answerlimit", kLargestLimit, settings.answerLimit);
    return settings;
}

}  // namespace wncom::http
