// What tests and tools may ask the layer about itself; product code has no need of it.
#pragma once

#include <windows.h>

#include <string>

namespace wnplatform {

// The number of BSTRs that live in this process.
long LiveTexts() noexcept;

// The folder that stands for the machine, as this process uses it, without a trailing separator.
const std::string& Home();

// The host's path for a path of this layer: separators turned, drive folder put in, components matched without
// regard to case where the exact name is absent (a component that matches nothing stays as given).
// The narrow form is in the narrow code page. Null gives an empty path.
std::string HostPath(const char* path);
std::string HostPath(const WCHAR* path);

}  // namespace wnplatform
