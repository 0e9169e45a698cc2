// Where a component's file is: a registry value, or a fixed name in the Windows directory.
#pragma once

#include <string>

namespace wncom::components {

struct PathSetting {
    const char* key;          // under HKEY_LOCAL_MACHINE
    const char* value;        // a text, REG_SZ
    const char* defaultName;  // in the Windows directory, when the value is absent or empty
};

// The path as it is configured at this moment, in the narrow code page. Throws Problem for a value that is no text or
// longer than 1023 bytes.
std::string ConfiguredPath(const PathSetting& setting);

}  // namespace wncom::components
