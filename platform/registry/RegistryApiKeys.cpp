// The registry functions that deal with keys.
#include <algorithm>
#include <cstring>

#include "platform/registry/Registry.h"
#include "platform/registry/RegistryHandles.h"
#include "platform/registry/RegistryOutput.h"

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

// The path from the top of the tree to what a handle and a subkey name.
LSTATUS WholePath(HKEY handle, std::string_view subKey, std::string& path) {
    if (const LSTATUS status = CheckPath(subKey); status != ERROR_SUCCESS) return status;
    const RegistryView view = ViewRegistry();
    if (view.status != ERROR_SUCCESS) return view.status;
    const OpenedKey opened = ResolveKey(view, handle);
    if (opened.status != ERROR_SUCCESS) return opened.status;
    path = opened.key->Path();
    if (!subKey.empty()) path.append("\\").append(subKey);
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

bool IsRoot(const RegistryTree& tree, const RegistryKey& key) {
    return key.parent == &tree.top || &key == tree.classes;
}

LSTATUS Delete(HKEY handle, std::string_view subKey, bool withContents) {
    std::string path;
    if (const LSTATUS status = WholePath(handle, subKey, path); status != ERROR_SUCCESS) return status;
    return ChangeRegistry([&](RegistryTree& tree) -> LSTATUS {
        RegistryKey* const key = tree.top.Descend(path);
        if (!key) return ERROR_FILE_NOT_FOUND;
        if (IsRoot(tree, *key) || (!withContents && !key->children.empty())) return ERROR_ACCESS_DENIED;
        auto& siblings = key->parent->children;
        siblings.erase(siblings.find(key->name));
        return ERROR_SUCCESS;
    });
}

LSTATUS DeleteContents(HKEY handle) {
    std::string path;
    if (const LSTATUS status = WholePath(handle, {}, path); status != ERROR_SUCCESS) return status;
    return ChangeRegistry([&](RegistryTree& tree) -> LSTATUS {
        RegistryKey* const key = tree.top.Descend(path);
        if (!key) return ERROR_KEY_DELETED;
        key->children.clear();
        key->values.clear();
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
            std::string path;
            status = WholePath(key, name.Text(), path);
            if (status != ERROR_SUCCESS) return status;
            status = ChangeRegistry([&](RegistryTree& tree) -> LSTATUS {
                if (!tree.top.Descend(path)) done = REG_CREATED_NEW_KEY;
                tree.top.Make(path);
                return ERROR_SUCCESS;
            });
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

LSTATUS RegDeleteKeyA(HKEY key, LPCSTR subKey) {
    if (!subKey) return ERROR_INVALID_PARAMETER;
    return RegistryCall([&] { return Delete(key, RegistryName(subKey).Text(), false); });
}

LSTATUS RegDeleteTreeA(HKEY key, LPCSTR subKey) {
    return RegistryCall([&] {
        const RegistryName name(subKey);
        return name.Text().empty() ? DeleteContents(key) : Delete(key, name.Text(), true);
    });
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
