#include "platform/typelib/RegistryKey.h"

#include <algorithm>
#include <memory>
#include <type_traits>

#include "winerror.h"
#include "winreg.h"

namespace wnplatform::typelib {
namespace {

// The longest name of a key.
constexpr DWORD kLongestName = 255;

struct CloseKey {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

Key Open(const std::string& name) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return nullptr;
    return Key(key);
}

}  // namespace

std::optional<std::string> ReadClassesText(const std::string& key) {
    const Key open = Open(key);
    if (!open) return std::nullopt;
    std::string text(MAX_PATH, '\0');
    for (;;) {
        DWORD type = REG_NONE;
        auto size = static_cast<DWORD>(text.size());
        const LSTATUS status =
            RegQueryValueExA(open.get(), nullptr, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
        if (status == ERROR_MORE_DATA) {
            text.resize(size);
            continue;
        }
        if (status != ERROR_SUCCESS || type != REG_SZ) return std::nullopt;
        text.resize(size);
        // The data may or may not hold a terminator.
        text.resize(std::min(text.find('\0'), text.size()));
        return text;
    }
}

bool WriteClassesText(const std::string& key, const std::string& text) {
    HKEY made = nullptr;
    if (RegCreateKeyExA(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                        &made, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    const Key open(made);
    return RegSetValueExA(open.get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                          static_cast<DWORD>(text.size() + 1)) == ERROR_SUCCESS;
}

std::vector<std::string> ClassesSubkeys(const std::string& key) {
    std::vector<std::string> names;
    const Key open = Open(key);
    if (!open) return names;
    for (DWORD index = 0;; ++index) {
        char name[kLongestName + 1];
        DWORD length = sizeof(name);
        if (RegEnumKeyExA(open.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

bool RemoveClassesTree(const std::string& key) {
    return RegDeleteTreeA(HKEY_CLASSES_ROOT, key.c_str()) == ERROR_SUCCESS;
}

}  // namespace wnplatform::typelib
