// The lock that the processes of a home hold while they change what they share.
#pragma once

#include <string>

#include "platform/files/Descriptor.h"
#include "windef.h"

namespace wnplatform {

// In milliseconds: how long a wait is silent before a line on standard error tells of it, and how long it lasts at
// most.
struct Patience {
    DWORD silent = 2'000;
    DWORD whole = 30'000;
};

// Holds the home's lock for a short time; a thread has at most one. It is a lock on a folder that only those who may
// write the home can open: whoever else could take it would stop all of them.
class HomeLock {
public:
    explicit HomeLock(Patience patience = {}) noexcept;
    HomeLock(const HomeLock&) = delete;
    HomeLock& operator=(const HomeLock&) = delete;
    ~HomeLock();

    // False when the lock was not taken; Error then tells why, ERROR_TIMEOUT after a wait.
    explicit operator bool() const noexcept { return m_error == 0; }
    DWORD Error() const noexcept { return m_error; }

private:
    DWORD Take(Patience patience);

    Descriptor m_folder;
    DWORD m_error;
};

// That folder. What processes share in memory lies in it, so that it needs no look at its owner.
std::string LocksFolder();

}  // namespace wnplatform
