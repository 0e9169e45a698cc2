#include "tools/wn/settings/RegistryKey.h"

#include "common/OpenKey.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/host/Host.h"

namespace wn {
namespace {

using wncom::OpenKey;

constexpr DWORD kLongestValue = 8192;  // bytes; no setting is longer

[[noreturn]] void Fail(const std::string& what, const std::string& place, LSTATUS error) {
    throw CommandError(what + " " + place, {.reason = ErrorText(static_cast<DWORD>(error))});
}

// No key when it is absent.
OpenKey Open(HKEY root, const std::string& path, const std::string& place, REGSAM access) {
    OpenKey key;
    const LSTATUS error = key.Open(root, path.c_str(), access | ViewAccess());
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) Fail("Cannot open", place, error);
    return key;
}

}  // namespace

std::string RegistryKey::place() const {
    return (m_root == HKEY_CLASSES_ROOT ? "HKEY_CLASSES_ROOT\\" : "HKEY_LOCAL_MACHINE\\") + m_path;
}

std::string RegistryKey::place(const std::string& name) const {
    return place() + ", " + (name.empty() ? "the default value" : "value " + name);
}

std::optional<std::string> RegistryKey::Read(const std::string& name) const {
    const OpenKey key = Open(m_root, m_path, place(), KEY_READ);
    if (!key) return std::nullopt;
    const auto value = key.Read<kLongestValue>(name.c_str());
    if (value.status == ERROR_FILE_NOT_FOUND) return std::nullopt;
    if (!value) Fail("Cannot read", place(name), value.status);
    return value.IsText() ? std::optional(FromNarrow(value.c_str())) : std::nullopt;
}

std::optional<DWORD> RegistryKey::ReadNumber(const std::string& name) const {
    const OpenKey key = Open(m_root, m_path, place(), KEY_READ);
    DWORD number = 0;
    if (!key || !key.Read<sizeof(number)>(name.c_str()).ToNumber(number)) return std::nullopt;
    return number;
}

bool RegistryKey::Exists() const { return static_cast<bool>(Open(m_root, m_path, place(), KEY_READ)); }

bool RegistryKey::Holds(const std::string& name) const {
    const OpenKey key = Open(m_root, m_path, place(), KEY_READ);
    return key && key.Read<kLongestValue>(name.c_str()).status != ERROR_FILE_NOT_FOUND;
}

std::vector<std::string> RegistryKey::Names() const {
    constexpr DWORD kLongestName = 16384;  // characters, with the terminator
    const OpenKey key = Open(m_root, m_path, place(), KEY_READ);
    std::vector<std::string> names;
    std::string name(kLongestName, '\0');
    for (DWORD index = 0; key; ++index) {
        DWORD length = kLongestName;
        DWORD type = 0;
        if (RegEnumValueA(key.get(), index, name.data(), &length, nullptr, &type, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        const bool text = type == REG_SZ || type == REG_EXPAND_SZ;
        if (length != 0 && text) names.push_back(FromNarrow({name.data(), length}));
    }
    return names;
}

void RegistryKey::Write(const std::string& name, const std::string& value) const {
    const std::optional<std::string> narrow = ToNarrow(value);
    if (!narrow) {
        throw WrongInput("The registry cannot hold " + value + ": the system's code page (" +
                         std::to_string(GetACP()) + ") lacks one of its characters");
    }
    OpenKey key;
    LSTATUS error = key.Create(m_root, m_path.c_str(), KEY_WRITE | ViewAccess());
    if (error != ERROR_SUCCESS) Fail("Cannot create", place(), error);
    error = key.WriteText(name.c_str(), *narrow);
    if (error != ERROR_SUCCESS) Fail("Cannot write", place(name), error);
}

bool RegistryKey::Remove(const std::string& name) const {
    const OpenKey key = Open(m_root, m_path, place(), KEY_WRITE);
    if (!key) return false;
    const LSTATUS error = RegDeleteValueA(key.get(), name.c_str());
    if (error == ERROR_FILE_NOT_FOUND) return false;
    if (error != ERROR_SUCCESS) Fail("Cannot change", place(name), error);
    return true;
}

}  // namespace wn
