#include "platform/registry/RegistryOutput.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/text/Texts.h"
#include "winreg.h"

namespace wnplatform {
namespace {

bool IsTextType(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

bool IsPlainText(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

LSTATUS Put(std::string_view bytes, bool terminated, bool isText, LPBYTE data, LPDWORD size) {
    const std::size_t needed = bytes.size() + (terminated ? 1 : 0);
    const DWORD room = size && data ? *size : 0;
    if (size) *size = static_cast<DWORD>(needed);
    if (!data) return ERROR_SUCCESS;
    if (room < needed) return ERROR_MORE_DATA;
    std::copy(bytes.begin(), bytes.end(), data);
    if (terminated) data[bytes.size()] = 0;
    // A text that lacks its terminator gets one where there is room; the size does not tell of it.
    if (isText && room > needed && (needed == 0 || data[needed - 1] != 0)) data[needed] = 0;
    return ERROR_SUCCESS;
}

}  // namespace

LSTATUS PutRegistryName(std::string_view name, LPSTR place, LPDWORD length) {
    const std::string narrow = IsAscii(name) ? std::string(name) : NarrowFromUtf8(name);
    if (*length <= narrow.size()) return ERROR_MORE_DATA;
    std::memcpy(place, narrow.c_str(), narrow.size() + 1);
    *length = static_cast<DWORD>(narrow.size());
    return ERROR_SUCCESS;
}

LSTATUS PutRegistryData(const RegistryValue& value, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (type) *type = value.type;
    if (value.isPlainText && !IsAscii(value.data)) {
        return Put(NarrowFromUtf8(value.data), true, true, data, size);
    }
    return Put(value.data, value.isPlainText, IsTextType(value.type), data, size);
}

void TakeRegistryData(RegistryValue& value, DWORD type, const BYTE* data, DWORD size) {
    value.type = type;
    value.data.assign(reinterpret_cast<const char*>(data), size);
    value.isPlainText = false;
    if (type != REG_SZ || size == 0 || value.data.back() != '\0') return;
    const std::string_view text(value.data.data(), size - 1);
    if (!IsPlainText(text)) return;
    std::string converted = IsAscii(text) ? std::string(text) : Utf8FromNarrow(text);
    if (!IsAscii(text) && NarrowFromUtf8(converted) != text) return;
    value.data = std::move(converted);
    value.isPlainText = true;
}

}  // namespace wnplatform
