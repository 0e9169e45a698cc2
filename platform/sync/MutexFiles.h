// The files that stand for the named mutexes of a home. All of this happens under the home's lock.
#pragma once

#include <string>

#include "platform/files/Descriptor.h"

namespace wnplatform {

// The file of a mutex; long names may share one. It lies in the home, where a stranger can neither open it nor be the
// first to take its name.
std::string MutexFilePath(const std::string& name);

// Opens a file that exists; holds nothing, with ENOENT, when there is none.
Descriptor OpenMutexFile(const std::string& path) noexcept;
// Makes the file with its memory. Holds nothing after a failure, which errno tells.
Descriptor MakeMutexFile(const std::string& path, std::size_t bytes) noexcept;

// A file is open in some process for as long as that one holds a shared lock on it. Taking the exclusive one succeeds
// only when no other process does.
bool LockMutexFile(const Descriptor& file, int kind) noexcept;

}  // namespace wnplatform
