// Paths as the user gives them: in UTF-8, while most of the system's calls take the narrow code page. Every command
// keeps its paths in UTF-8 and comes here for the rest.
#pragma once

#include <string>

namespace wn {

// What the narrow calls take. Throws CommandError when the path cannot be said in the narrow code page.
std::string NarrowPath(const std::string& path);

// From the root on, so that it holds for every process. Throws CommandError for what is no path, and as NarrowPath.
std::string WholePath(const std::string& path);

// The same for a directory, which must exist, or for a file whose directory must exist while it is no directory
// itself.
std::string WholeDirectory(const std::string& path);
std::string WholeFile(const std::string& path);

// The path of a file in the Windows directory. Throws CommandError when that is unknown.
std::string InWindowsDirectory(const std::string& name);

bool Exists(const std::string& path);
bool IsDirectory(const std::string& path);

}  // namespace wn
