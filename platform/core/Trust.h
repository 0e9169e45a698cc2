// Whom a home trusts: whoever may write it. What the layer makes for its processes is given to exactly those.
#pragma once

#include <sys/stat.h>

#include <string>

namespace wnplatform {

// What those who may not write the home may do with a file or folder that is given to those who may.
enum class Others { Nothing, Read };

// Gives an open file or folder, just made, to those who may write the home: to the home's group where it counts, and
// to the home's owner when this process is root. Others may read at most what the umask left them.
bool ShareWithHome(int file, Others others) noexcept;

// Makes a folder in a home, given a path, and shares it so; one that exists stays as it is. False with errno set.
bool MakeSharedFolder(const std::string& home, const char* name, Others others);

// Gives an open file the owner, group and mode of the one it is to replace. A group that this process may not give
// gets nothing.
bool KeepAccess(int file, const struct stat& replaced) noexcept;

// Access for a new file or folder at a host path. A null access list is meant for those who may write the home,
// wherever the file lies; without one, what lies in the home is shared as the home is, and the rest is the umask's.
void SetNewAccess(int file, const std::string& path, bool nullAccessList) noexcept;

// Whether nobody but those who may write the home can enter an open folder in it. Where the home's mode has changed
// since the folder was made, the folder's owner sets it right.
bool IsOnlyForWriters(int folder) noexcept;

}  // namespace wnplatform
