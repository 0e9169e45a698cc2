// The registry functions that deal with keys.
#include <iterator>
#include <string>
#include <string_view>

#include "platform/registry/Registry.h"
#include "platform/registry/RegistryHandles.h"
#include "platform/registry/RegistryOutput.h"
#include "platform/registry/RegistryText.h"

using namespace wnplatform;

namespace {

constexpr std::size_t kMaxNameBytes = 255;

// Every name of a path must be one that can be stored and found again.
LSTATUS CheckPath(std::string_view path) {
    if (path.starts_with('\\')) return ERROR_BAD_PATHNAME;
    std::size_t length = 0;
    for (const char c : path) {
        length = c == '\\' ? 0 : length + 1;
        if (length > kMaxNameBytes || static_cast<unsigned char>(c) < 0x20) return ERROR_INVALID_PARAMETER;
    }
    return ERROR_SUCCESS;
}

LSTATUS Open(HKEY handle, std::string_view subKey, REGSAM access, HKEY* result) {
    if (const LSTATUS status = CheckPath(subKey); status != ERROR_SUCCESS) return status;
    const RegistryView view = ViewRegistry();
    if (view.status != ERROR_SUCCESS) return view.status;
    const OpenedKey opened = ResolveKey(view, handle);
    if (opened.status != ERROR_SUCCESS) return opened.status;
    const RegistryKey* const key = opened.key->Descend(subKey);
    if (!key) return ERROR_FILE_NOT_FOUND;
    *result = AddKeyHandle(view, *key, access);
    return ERROR_SUCCESS;
}

LSTATUS Create(HKEY handle, std::string_view subKey, DWORD& disposition) {
    return ChangeRegistry([&](const RegistryView& view, std::string& lines) -> LSTATUS {
        const OpenedKey opened = ResolveKey(view, handle);
        if (opened.status != ERROR_SUCCESS) return opened.status;
        if (opened.key->Descend(subKey)) return ERROR_SUCCESS;
        const std::string path = opened.key->Path().append("\\").append(subKey);
        if (RegistryDepth(path) > kMaxRegistryDepth) return ERROR_INVALID_PARAMETER;
        disposition = REG_CREATED_NEW_KEY;
        lines = KeyLine(path);
        return ERROR_SUCCESS;
    });
}

LSTATUS DeleteTree(HKEY handle, std::string_view subKey) {
    return ChangeRegistry([&](const RegistryView& view, std::string& lines) -> LSTATUS {
        const OpenedKey opened = ResolveKey(view, handle);
        if (opened.status != ERROR_SUCCESS) return opened.status;
        const RegistryKey* const key = opened.key->Descend(subKey);
        if (!key) return ERROR_FILE_NOT_FOUND;
        if (!view.tree->MayRemove(*key)) return ERROR_ACCESS_DENIED;
        lines = RemovedKeyLine(key->Path());
        return ERROR_SUCCESS;
    });
}

}  // namespace

LSTATUS RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD, REGSAM access, HKEY* result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    return RegistryCall([&] { return Open(key, RegistryName(subKey).Text(), access, result); });
}

LSTATUS RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD reserved, LPSTR, DWORD, REGSAM access,
                        const SECURITY_ATTRIBUTES*, HKEY* result, LPDWORD disposition) {
    if (!result || !subKey || reserved != 0) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    return RegistryCall([&]() -> LSTATUS {
        const RegistryName name(subKey);
        DWORD done = REG_OPENED_EXISTING_KEY;
        LSTATUS status = Open(key, name.Text(), access, result);
        if (status == ERROR_FILE_NOT_FOUND) {
            status = Create(key, name.Text(), done);
            if (status == ERROR_SUCCESS) status = Open(key, name.Text(), access, result);
        }
        if (status == ERROR_SUCCESS && disposition) *disposition = done;
        return status;
    });
}

LSTATUS RegCloseKey(HKEY key) {
    if (IsRootKey(key)) return ERROR_SUCCESS;
    return RegistryCall(
        [&]() -> LSTATUS { return RemoveKeyHandle(LockRegistry(), key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE; });
}

LSTATUS RegDeleteTreeA(HKEY key, LPCSTR subKey) {
    if (!subKey || !*subKey) return ERROR_INVALID_PARAMETER;
    return RegistryCall([&] { return DeleteTree(key, RegistryName(subKey).Text()); });
}

LSTATUS RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, LPDWORD nameLength, LPDWORD reserved, LPSTR keyClass,
                      LPDWORD keyClassLength, FILETIME* lastWrite) {
    if (!name || !nameLength || reserved || (keyClass && !keyClassLength) || lastWrite)
        return ERROR_INVALID_PARAMETER;
    return RegistryCall([&]() -> LSTATUS {
        const RegistryView view = ViewRegistry();
        if (view.status != ERROR_SUCCESS) return view.status;
        const OpenedKey opened = ResolveKey(view, key);
        if (const LSTATUS status = opened.Require(KEY_ENUMERATE_SUB_KEYS); status != ERROR_SUCCESS) return status;
        if (index >= opened.key->children.size()) return ERROR_NO_MORE_ITEMS;
        const auto child = std::next(opened.key->children.begin(), static_cast<std::ptrdiff_t>(index));
        const LSTATUS status = PutRegistryName(child->second->name, name, nameLength);
        if (status == ERROR_SUCCESS && keyClass) PutRegistryName({}, keyClass, keyClassLength);
        return status;
    });
}
