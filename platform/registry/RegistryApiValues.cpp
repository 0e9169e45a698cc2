// The registry functions that deal with values.
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/registry/Registry.h"
#include "platform/registry/RegistryHandles.h"
#include "platform/registry/RegistryOutput.h"
#include "platform/registry/RegistryText.h"

using namespace wnplatform;

namespace {

// Changes a value of a key by the line that the function makes of what the key has under that name; it is given null
// for none.
template <class MakeLine>
LSTATUS ChangeValue(HKEY handle, std::string_view name, const MakeLine& makeLine) {
    return ChangeRegistry([&](const RegistryView& view, std::string& lines) -> LSTATUS {
        const OpenedKey opened = ResolveKey(view, handle);
        if (const LSTATUS status = opened.Require(KEY_SET_VALUE); status != ERROR_SUCCESS) return status;
        std::string line;
        const LSTATUS status = makeLine(opened.key->Value(name), line);
        if (status == ERROR_SUCCESS && !line.empty()) lines = KeyLine(opened.key->Path()) + line;
        return status;
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
        return ChangeValue(key, name.Text(), [&](const RegistryValue* known, std::string& line) -> LSTATUS {
            // Modules that register themselves again say what is known.
            if (!known || !known->HasDataOf(taken)) line = ValueLine(name.Text(), taken);
            return ERROR_SUCCESS;
        });
    });
}

LSTATUS RegDeleteValueA(HKEY key, LPCSTR valueName) {
    return RegistryCall([&] {
        const RegistryName name(valueName);
        return ChangeValue(key, name.Text(), [&](const RegistryValue* known, std::string& line) -> LSTATUS {
            if (!known) return ERROR_FILE_NOT_FOUND;
            line = RemovedValueLine(name.Text());
            return ERROR_SUCCESS;
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
        const auto found = std::next(opened.key->values.begin(), static_cast<std::ptrdiff_t>(index));
        const LSTATUS status = PutRegistryName(found->first, name, nameLength);
        return status == ERROR_SUCCESS ? PutRegistryData(found->second, type, data, size) : status;
    });
}
