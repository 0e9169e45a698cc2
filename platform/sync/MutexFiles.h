// The files in memory that stand for the named mutexes of a home.
#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/files/Descriptor.h"

namespace wnplatform {

// Held while files are made, opened or removed, so that other threads and processes of the home see each change as
// one step.
class MutexFilesLock {
public:
    MutexFilesLock() noexcept;
    MutexFilesLock(const MutexFilesLock&) = delete;
    MutexFilesLock& operator=(const MutexFilesLock&) = delete;
    ~MutexFilesLock();

    // False when the home cannot be opened.
    explicit operator bool() const noexcept { return static_cast<bool>(m_home); }

private:
    Descriptor m_home;
};

// The file of a mutex, which tells homes and names apart; long names may share one. It lies in memory, because what
// it holds means nothing after a restart of the host.
std::string MutexFilePath(const std::string& name);

// Opens a file that exists; the result holds nothing when there is none (ENOENT) or when it was left there by
// somebody who has no business with the home (EACCES).
Descriptor OpenMutexFile(const std::string& path) noexcept;
// Makes the file with its memory; everyone tells whether other users may open it. Holds nothing after a failure,
// which errno tells.
Descriptor MakeMutexFile(const std::string& path, std::size_t bytes, bool everyone) noexcept;

// A file is open in some process for as long as that one holds a shared lock on it. Taking the exclusive one succeeds
// only when no other process does.
bool LockMutexFile(const Descriptor& file, int kind) noexcept;

}  // namespace wnplatform
