#include "components/ConfiguredPath.h"

#include <windows.h>

#include <array>

#include "common/OpenKey.h"
#include "components/Problem.h"

namespace wncom::components {
namespace {

std::string InWindowsDirectory(const char* name) {
    std::array<char, MAX_PATH> folder = {};
    const UINT length = GetWindowsDirectoryA(folder.data(), static_cast<UINT>(folder.size()));
    if (length == 0 || length >= folder.size()) throw Problem(E_UNEXPECTED, "the Windows directory is unknown");
    return std::string(folder.data(), length) + "\\" + name;
}

// Empty when there is none.
std::string Value(const PathSetting& setting) {
    OpenKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, setting.key, KEY_QUERY_VALUE) != ERROR_SUCCESS) return {};
    const StoredValue value = key.Read<1024>(setting.value);
    if (value.status == ERROR_FILE_NOT_FOUND) return {};
    const auto refuse = [&setting](LSTATUS code, const char* what) {
        throw Problem(HRESULT_FROM_WIN32(code), std::string("the registry value \"") + setting.value + "\" " + what);
    };
    if (!value) refuse(value.status, "cannot be read");
    if (value.type != REG_SZ) refuse(ERROR_INVALID_DATA, "is not a text");
    std::string path(value.bytes());
    // With or without a terminator, as registry texts come.
    if (path.ends_with('\0')) path.pop_back();
    if (path.find('\0') != std::string::npos) refuse(ERROR_INVALID_DATA, "holds a zero character");
    return path;
}

}  // namespace

std::string ConfiguredPath(const PathSetting& setting) {
    const std::string path = Value(setting);
    return path.empty() ? InWindowsDirectory(setting.defaultName) : path;
}

}  // namespace wncom::components
