// SQLite opens files by itself: it needs a path as the host's own functions take it, and a file that everybody who
// shares it may write.
#pragma once

#include <string>

namespace wncom::components {

// The path in UTF-8, for one in the narrow code page as CreateFileA takes it. Where the host's rights do not come
// from the folder, an absent file is made first, empty. One source file a kind of host; the build chooses. Throws
// Problem for a path that cannot be converted.
std::string DatabaseFile(const std::string& path);

}  // namespace wncom::components
