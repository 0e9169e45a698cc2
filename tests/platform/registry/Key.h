// What the tests of the registry do again and again.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <string_view>

namespace wncom::test {

// A key of the machine, made when absent.
class Key {
public:
    explicit Key(const std::string& path, REGSAM access = KEY_ALL_ACCESS) {
        EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, access, nullptr, &m_key, nullptr),
                  0)
            << path;
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { RegCloseKey(m_key); }
    HKEY get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

inline LSTATUS Set(HKEY key, LPCSTR name, std::string_view bytes, DWORD type = REG_BINARY) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                          static_cast<DWORD>(bytes.size()));
}

inline LSTATUS SetText(HKEY key, LPCSTR name, const std::string& text) {
    return Set(key, name, {text.c_str(), text.size() + 1}, REG_SZ);
}

// The bytes of a value; "(status)" when there is none.
inline std::string Get(HKEY key, LPCSTR name, DWORD* type = nullptr) {
    std::string data(8192, '\0');
    auto size = static_cast<DWORD>(data.size());
    const LSTATUS status = RegQueryValueExA(key, name, nullptr, type, reinterpret_cast<LPBYTE>(data.data()), &size);
    return status == ERROR_SUCCESS ? data.substr(0, size) : "(" + std::to_string(status) + ")";
}

// The text of a value of the machine, up to its terminator; "(status)" when there is no key or value.
inline std::string GetText(LPCSTR path, LPCSTR name) {
    HKEY key;
    if (const LSTATUS status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key)) {
        return "(" + std::to_string(status) + ")";
    }
    const std::string text = Get(key, name);
    RegCloseKey(key);
    return text.c_str();
}

}  // namespace wncom::test
