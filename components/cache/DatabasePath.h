// SQLite opens files by itself, so it needs a path as the host's own functions take it.
#pragma once

#include <string>

namespace wncom::components {

// In UTF-8, for a path in the narrow code page as CreateFileA takes it. One source file a kind of host; the build
// chooses. Throws Problem for a path that cannot be said so.
std::string DatabasePath(const std::string& path);

}  // namespace wncom::components
