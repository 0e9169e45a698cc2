// The folders that the registry names.
#pragma once

#include "common/CPWStringBuffer.h"

namespace wncom {

// One value of the key that holds the catalogue's and the libraries' folders, of any type, read as narrow text in
// the C locale. Throws CPException when it is missing, unreadable, or longer than 1023 bytes.
CPHeapBuffer GetPathFromRegistry(const char* valueName);

}  // namespace wncom
