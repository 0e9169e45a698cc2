// The registry functions that deal with values.
#include <algorithm>

#include "platform/registry/Registry.h"
#include "platform/registry/RegistryHandles.h"
#include "platform/registry/RegistryOutput.h"

using namespace wnplatform;

namespace {

// The handle's path from the top of the tree, if it may change values.
LSTATUS PathToChange(HKEY handle, std::string& path) {
    const RegistryView view = ViewRegistry();
    if (view.status != ERROR_SUCCESS) return view.status;
    const OpenedKey opened = ResolveKey(view, handle);
    if (const LSTATUS status = opened.Require(KEY_SET_VALUE); status != ERROR_SUCCESS) return status;
    path = opened.key->Path();
    return ERROR_SUCCESS;
}

LSTATUS ChangeKey(HKEY handle, const std::function<LSTATUS(RegistryKey&)>& change) {
    std::string path;
    if (const LSTATUS status = PathToChange(handle, path); status != ERROR_SUCCESS) return status;
    return ChangeRegistry([&](RegistryTree& tree) -> LSTATUS {
        RegistryKey* const key = tree.top.Descend(path);
        return key ? change(*key) : ERROR_KEY_DELETED;
    });
}

bool IsValidName(std::string_view name) {
    return std::none_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

}  // namespace

LSTATUS RegQueryValueExA(HKEY key, LPCSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (reserved || (data && !size)) return ERROR_INVALID_PARAMETER;
    return RegistryCall([&]() -> LSTATUS {
        const RegistryName name(valueName);
        const RegistryView view = ViewRegistry();
        if (view.status != ERROR_SUCCESS) return view.status;
        const OpenedKey opened = ResolveKey(view, key);
        if (const LSTATUS status = opened.Require(KEY_QUERY_VALUE); status != ERROR_SUCCESS) return status;
        const RegistryValue* const value = opened.key->Value(name.Text());
        return value ? PutRegistryData(*value, type, data, size) : ERROR_FILE_NOT_FOUND;
    });
}

LSTATUS RegSetValueExA(HKEY key, LPCSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
    if (reserved != 0 || (!data && size != 0)) return ERROR_INVALID_PARAMETER;
    return RegistryCall([&]() -> LSTATUS {
        const RegistryName name(valueName);
        if (!IsValidName(name.Text())) return ERROR_INVALID_PARAMETER;
        RegistryValue taken;
        TakeRegistryData(taken, type, data, size);
        return ChangeKey(key, [&](RegistryKey& changed) -> LSTATUS {
            RegistryValue& value = changed.MakeValue(name.Text());
            value.type = taken.type;
            value.data = taken.data;
            value.isPlainText = taken.isPlainText;
            return ERROR_SUCCESS;
        });
    });
}

LSTATUS RegDeleteValueA(HKEY key, LPCSTR valueName) {
    return RegistryCall([&] {
        const RegistryName name(valueName);
        return ChangeKey(key, [&](RegistryKey& changed) -> LSTATUS {
            return changed.RemoveValue(name.Text()) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
        });
    });
}

LSTATUS RegEnumValueA(HKEY key, DWORD index, LPSTR name, LPDWORD nameLength, LPDWORD reserved, LPDWORD type,
                      LPBYTE data, LPDWORD size) {
    if (!name || !nameLength || reserved || (data && !size)) return ERROR_INVALID_PARAMETER;
    return RegistryCall([&]() -> LSTATUS {
        const RegistryView view = ViewRegistry();
        if (view.status != ERROR_SUCCESS) return view.status;
        const OpenedKey opened = ResolveKey(view, key);
        if (const LSTATUS status = opened.Require(KEY_QUERY_VALUE); status != ERROR_SUCCESS) return status;
        if (index >= opened.key->values.size()) return ERROR_NO_MORE_ITEMS;
        const RegistryValue& value = opened.key->values[index];
        const LSTATUS status = PutRegistryName(value.name, name, nameLength);
        return status == ERROR_SUCCESS ? PutRegistryData(value, type, data, size) : status;
    });
}
