// Handing names and data out of the registry, by the rules for sizes that all its functions share.
#pragma once

#include <string_view>

#include "platform/registry/RegistryKeys.h"
#include "winerror.h"

namespace wnplatform {

// Writes a name in the narrow code page. The length is the room with the terminator before, without it after; a name
// that does not fit gives ERROR_MORE_DATA and leaves the length alone.
LSTATUS PutRegistryName(std::string_view name, LPSTR place, LPDWORD length);

// Writes a value's type and data; each of the places may be null. Null data only asks for the size.
LSTATUS PutRegistryData(const RegistryValue& value, LPDWORD type, LPBYTE data, LPDWORD size);

// Takes a caller's data into a value, as text where it is one that a person can read and that comes back the same.
void TakeRegistryData(RegistryValue& value, DWORD type, const BYTE* data, DWORD size);

}  // namespace wnplatform
