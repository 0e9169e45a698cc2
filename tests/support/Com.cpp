#include "tests/support/Com.h"

#include <cstdio>

namespace wncom::test {

std::string Hex(HRESULT status) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%08x", static_cast<unsigned>(status));
    return text;
}

std::basic_string<OLECHAR> Wide(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

std::string Narrow(BSTR text) {
    std::string narrow;
    for (UINT i = 0; i < SysStringLen(text); ++i) narrow += text[i] < 0x80 ? static_cast<char>(text[i]) : '?';
    return narrow;
}

Bstr Text(std::string_view ascii) { return Bstr(std::basic_string_view<OLECHAR>(Wide(ascii))); }

void SetRegistryValue(const std::string& key, const char* name, const std::string& value) {
    HKEY handle = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                              nullptr, &handle, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExA(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                             static_cast<DWORD>(value.size() + 1)),
              ERROR_SUCCESS);
    RegCloseKey(handle);
}

std::string RegistryValue(HKEY root, const std::string& key, const char* name) {
    HKEY handle = nullptr;
    if (RegOpenKeyExA(root, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return "(absent)";
    char data[1024] = {};
    DWORD size = sizeof(data) - 1;
    const LSTATUS status = RegQueryValueExA(handle, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(data), &size);
    RegCloseKey(handle);
    return status == ERROR_SUCCESS ? data : "(absent)";
}

bool RegistryKeyExists(HKEY root, const std::string& key) {
    HKEY handle = nullptr;
    if (RegOpenKeyExA(root, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return false;
    RegCloseKey(handle);
    return true;
}

}  // namespace wncom::test
