// An open key of the registry and the values in it.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>
#include <string_view>

#include "common/Owned.h"

namespace wncom {

// A value as the registry keeps it: any bytes, with a type that somebody claimed for them. One that does not fit into
// Room bytes has the status ERROR_MORE_DATA and no bytes.
template <DWORD Room>
struct StoredValue {
    LSTATUS status = ERROR_FILE_NOT_FOUND;
    DWORD type = REG_NONE;
    DWORD size = 0;  // in bytes
    char data[Room + 1];

    explicit operator bool() const noexcept { return status == ERROR_SUCCESS; }
    bool IsText() const noexcept { return type == REG_SZ || type == REG_EXPAND_SZ; }
    // All bytes.
    std::string_view bytes() const noexcept { return {data, size}; }
    // Up to the first terminator; a text may have been stored without one.
    const char* c_str() const noexcept { return data; }
    // Whether the text and a terminator fit into Room bytes.
    bool FitsTerminated() const noexcept { return std::memchr(data, '\0', Room) != nullptr; }
    // False, and the number untouched, unless the value is a REG_DWORD.
    bool ToNumber(DWORD& number) const noexcept {
        if (status != ERROR_SUCCESS || type != REG_DWORD || size != sizeof(number)) return false;
        std::memcpy(&number, data, sizeof(number));
        return true;
    }
};

// A key, or none. Statuses are those of the registry.
class OpenKey {
public:
    LSTATUS Open(HKEY root, const char* path, REGSAM access = KEY_READ) noexcept {
        return RegOpenKeyExA(root, path, 0, access, m_key.put());
    }
    // Opens the key, made with the keys above it where it is absent.
    LSTATUS Create(HKEY root, const char* path, REGSAM access = KEY_READ | KEY_WRITE) noexcept {
        return RegCreateKeyExA(root, path, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, m_key.put(),
                               nullptr);
    }
    LSTATUS Close() noexcept { return RegCloseKey(m_key.detach()); }

    explicit operator bool() const noexcept { return static_cast<bool>(m_key); }
    HKEY get() const noexcept { return m_key.get(); }

    // Null names the default value.
    template <DWORD Room>
    StoredValue<Room> Read(const char* name) const noexcept {
        StoredValue<Room> value;
        DWORD size = Room;
        value.status =
            RegQueryValueExA(get(), name, nullptr, &value.type, reinterpret_cast<BYTE*>(value.data), &size);
        value.size = value.status == ERROR_SUCCESS ? size : 0;
        value.data[value.size] = '\0';
        return value;
    }
    // A REG_SZ; null names the default value.
    LSTATUS WriteText(const char* name, const std::string& text) const noexcept {
        return RegSetValueExA(get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() + 1));
    }

private:
    struct GiveBackKey {
        void operator()(HKEY key) const noexcept { RegCloseKey(key); }
    };

    Owned<HKEY, GiveBackKey> m_key;
};

}  // namespace wncom
