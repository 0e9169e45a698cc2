#include "tools/wn/RegistryKey.h"

#include "tools/wn/Command.h"
#include "tools/wn/RegistryView.h"
#include "tools/wn/Texts.h"

namespace wn {
namespace {

class OpenKey {
public:
    explicit OpenKey(HKEY key) : m_key(key) {}
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey() {
        if (m_key) RegCloseKey(m_key);
    }
    HKEY get() const { return m_key; }

private:
    HKEY m_key;
};

[[noreturn]] void Fail(const std::string& what, const std::string& place, LSTATUS error) {
    throw CommandError(what + " " + place + ": " + ErrorText(static_cast<DWORD>(error)));
}

}  // namespace

HKEY RegistryKey::Open(REGSAM access) const {
    HKEY key = nullptr;
    const LSTATUS error = RegOpenKeyExA(m_root, m_path.c_str(), 0, access | ViewAccess(), &key);
    if (error == ERROR_FILE_NOT_FOUND) return nullptr;
    if (error != ERROR_SUCCESS) Fail("Cannot open", place(), error);
    return key;
}

std::string RegistryKey::place() const {
    return (m_root == HKEY_CLASSES_ROOT ? "HKEY_CLASSES_ROOT\\" : "HKEY_LOCAL_MACHINE\\") + m_path;
}

std::string RegistryKey::place(const std::string& name) const {
    return place() + ", " + (name.empty() ? "the default value" : "value " + name);
}

std::optional<std::string> RegistryKey::Read(const std::string& name) const {
    const OpenKey key(Open(KEY_READ));
    if (!key.get()) return std::nullopt;
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExA(key.get(), name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    if (type != REG_SZ && type != REG_EXPAND_SZ) return std::nullopt;
    std::string value(size, '\0');
    const LSTATUS error =
        RegQueryValueExA(key.get(), name.c_str(), nullptr, nullptr, reinterpret_cast<LPBYTE>(value.data()), &size);
    if (error != ERROR_SUCCESS) Fail("Cannot read", place(), error);
    value.resize(size);
    return FromNarrow(value.substr(0, value.find('\0')));
}

std::optional<DWORD> RegistryKey::ReadNumber(const std::string& name) const {
    const OpenKey key(Open(KEY_READ));
    DWORD type = 0;
    DWORD number = 0;
    DWORD size = sizeof(number);
    if (!key.get() || RegQueryValueExA(key.get(), name.c_str(), nullptr, &type, reinterpret_cast<LPBYTE>(&number),
                                       &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return type == REG_DWORD && size == sizeof(number) ? std::optional(number) : std::nullopt;
}

bool RegistryKey::Exists() const { return OpenKey(Open(KEY_READ)).get() != nullptr; }

std::vector<std::string> RegistryKey::Names() const {
    constexpr DWORD kLongestName = 16384;  // characters, with the terminator
    const OpenKey key(Open(KEY_READ));
    std::vector<std::string> names;
    std::string name(kLongestName, '\0');
    for (DWORD index = 0; key.get(); ++index) {
        DWORD length = kLongestName;
        DWORD type = 0;
        if (RegEnumValueA(key.get(), index, name.data(), &length, nullptr, &type, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        if (length != 0 && (type == REG_SZ || type == REG_EXPAND_SZ))
            names.push_back(FromNarrow({name.data(), length}));
    }
    return names;
}

void RegistryKey::Write(const std::string& name, const std::string& value) const {
    const std::optional<std::string> narrow = ToNarrow(value);
    if (!narrow) {
        throw CommandError("The registry cannot hold " + value + ": the system's code page (" +
                           std::to_string(GetACP()) + ") lacks one of its characters");
    }
    HKEY created = nullptr;
    LSTATUS error = RegCreateKeyExA(m_root, m_path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                    KEY_WRITE | ViewAccess(), nullptr, &created, nullptr);
    if (error != ERROR_SUCCESS) Fail("Cannot create", place(), error);
    const OpenKey key(created);
    error = RegSetValueExA(key.get(), name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(narrow->c_str()),
                           static_cast<DWORD>(narrow->size() + 1));
    if (error != ERROR_SUCCESS) Fail("Cannot write", place(), error);
}

bool RegistryKey::Remove(const std::string& name) const {
    const OpenKey key(Open(KEY_WRITE));
    if (!key.get()) return false;
    const LSTATUS error = RegDeleteValueA(key.get(), name.c_str());
    if (error == ERROR_FILE_NOT_FOUND) return false;
    if (error != ERROR_SUCCESS) Fail("Cannot change", place(), error);
    return true;
}

}  // namespace wn
