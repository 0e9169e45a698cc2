#include "components/ConfiguredPath.h"

#include <windows.h>

#include <array>
#include <memory>

#include "components/Problem.h"

namespace wncom::components {
namespace {

struct CloseKey {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};

std::string InWindowsDirectory(const char* name) {
    std::array<char, MAX_PATH> folder = {};
    const UINT length = GetWindowsDirectoryA(folder.data(), static_cast<UINT>(folder.size()));
    if (length == 0 || length >= folder.size()) throw Problem(E_UNEXPECTED, "the Windows directory is unknown");
    return std::string(folder.data(), length) + "\\" + name;
}

// Empty when there is none.
std::string Value(const PathSetting& setting) {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, setting.key, 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS) return {};
    const std::unique_ptr<HKEY__, CloseKey> key(opened);

    std::array<char, 1024> data = {};
    auto size = static_cast<DWORD>(data.size());
    DWORD type = REG_NONE;
    const LSTATUS status =
        RegQueryValueExA(key.get(), setting.value, nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size);
    if (status == ERROR_FILE_NOT_FOUND) return {};
    const auto refuse = [&setting](LSTATUS code, const char* what) {
        throw Problem(HRESULT_FROM_WIN32(code), std::string("the registry value \"") + setting.value + "\" " + what);
    };
    if (status != ERROR_SUCCESS) refuse(status, "cannot be read");
    if (type != REG_SZ) refuse(ERROR_INVALID_DATA, "is not a text");
    std::string path(data.data(), size);
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
